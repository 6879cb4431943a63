#include "progress_bar.h"

#include <algorithm>

namespace host {
namespace {

constexpr uint64_t kWidth = 20;

}  // namespace

std::string progressBar(uint64_t done, uint64_t total) {
    if (total == 0) return "";
    const uint64_t percent = std::min<uint64_t>(done, total) * 100 / total;
    std::string number = std::to_string(percent);
    number.insert(0, 3 - number.size(), ' ');
    const size_t marks = percent * kWidth / 100;
    return "[" + std::string(marks, '#') + std::string(kWidth - marks, '.') + "] " + number + " %";
}

}  // namespace host
