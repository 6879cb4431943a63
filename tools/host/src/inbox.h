// What the plug-in's threads report, copied there and read on the main thread.
#pragma once

#include <cstddef>
#include <deque>
#include <mutex>
#include <optional>
#include <string>
#include <variant>

#include <velta/event.h>

#include "waiter.h"

namespace host {

struct StatusReport {
    size_t session = 0;
    int status = 0;
    std::string info;
};

struct EventReport {
    size_t session = 0;
    std::string sourceId;
    tagEVENT_BASE_INFO base{};
    std::string picturePart;  // headers and JPEG; empty: none
};

using Report = std::variant<StatusReport, EventReport>;

class Inbox {
 public:
    explicit Inbox(Waiter& waiter) : waiter_(waiter) {}

    // Keeps a copy, or counts it as lost when nobody has read for too long. [any thread]
    void put(Report report) noexcept;
    // The next report; nothing when interrupted or late. [main thread]
    std::optional<Report> take(Clock::time_point until);
    size_t lost() const;

 private:
    std::optional<Report> pop();

    Waiter& waiter_;
    mutable std::mutex mutex_;
    std::deque<Report> reports_;  // guarded by mutex_, and so is lost_
    size_t lost_ = 0;
};

}  // namespace host
