#include "table.h"

#include <algorithm>

namespace host {
namespace {

constexpr size_t kGap = 2;

// Characters, not bytes.
size_t widthOf(const std::string& text) {
    return static_cast<size_t>(
        std::count_if(text.begin(), text.end(), [](char c) { return (c & '\xC0') != '\x80'; }));
}

}  // namespace

std::string table(const std::vector<std::vector<std::string>>& rows) {
    std::vector<size_t> widths;
    return table(rows, widths);
}

std::string table(const std::vector<std::vector<std::string>>& rows, std::vector<size_t>& widths) {
    for (const auto& row : rows) {
        widths.resize(std::max(widths.size(), row.size()));
        for (size_t i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths[i], widthOf(row[i]));
    }
    std::string text;
    for (const auto& row : rows) {
        std::string line;
        for (size_t i = 0; i < row.size(); ++i)
            line += row[i] + std::string(widths[i] + kGap - widthOf(row[i]), ' ');
        line.erase(line.find_last_not_of(' ') + 1);
        text += (text.empty() ? "" : "\n") + line;
    }
    return text;
}

}  // namespace host
