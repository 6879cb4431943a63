#pragma once

#include <chrono>
#include <deque>
#include <string_view>

#include <veltasim/event.h>

namespace veltasim {

struct LoggedEvent {
    uint64_t serialNo;
    std::chrono::sys_seconds instant;
    AccessEvent event;         // with its time, without its picture
    std::string_view picture;  // a built-in one; empty: none or one of its own, which the log does not keep
};

// The last events, the newest at the end.
class EventLog {
 public:
    explicit EventLog(size_t capacity) : capacity_(capacity) {}

    void add(LoggedEvent event);
    const std::deque<LoggedEvent>& events() const { return events_; }

 private:
    size_t capacity_;
    std::deque<LoggedEvent> events_;
};

}  // namespace veltasim
