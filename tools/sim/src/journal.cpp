#include "journal.h"

#include <algorithm>

namespace veltasim {

void Journal::add(Report report) {
    const std::lock_guard lock(mutex_);
    report.number = ++count_;
    reports_.push_back(std::move(report));
    if (reports_.size() > capacity_) reports_.pop_front();
}

std::vector<Report> Journal::after(uint64_t number, size_t most) const {
    const std::lock_guard lock(mutex_);
    const size_t count =
        std::min({static_cast<size_t>(count_ - std::min(number, count_)), reports_.size(), most});
    return {reports_.end() - static_cast<std::ptrdiff_t>(count), reports_.end()};
}

}  // namespace veltasim
