#include "inbox.h"

#include <exception>
#include <utility>

namespace host {
namespace {

constexpr size_t kMaxWaiting = 10000;

}  // namespace

void Inbox::put(Report report) noexcept {
    {
        const std::lock_guard lock(mutex_);
        try {
            if (reports_.size() < kMaxWaiting)
                reports_.push_back(std::move(report));
            else
                ++lost_;
        } catch (const std::exception&) {
            ++lost_;
        }
    }
    waiter_.wake();
}

std::optional<Report> Inbox::pop() {
    const std::lock_guard lock(mutex_);
    if (reports_.empty()) return std::nullopt;
    std::optional<Report> next(std::move(reports_.front()));
    reports_.pop_front();
    return next;
}

std::optional<Report> Inbox::take(Clock::time_point until) {
    for (;;) {
        if (waiter_.interrupted()) return std::nullopt;
        if (auto next = pop()) return next;
        if (Clock::now() >= until) return std::nullopt;
        waiter_.wait(until);
    }
}

size_t Inbox::lost() const {
    const std::lock_guard lock(mutex_);
    return lost_;
}

}  // namespace host
