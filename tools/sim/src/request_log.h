#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <optional>
#include <vector>

#include <veltasim/request.h>

namespace veltasim {

// The last requests. [any thread]
class RequestLog {
 public:
    RequestLog(size_t maxRecords, size_t maxBody) : maxRecords_(maxRecords), maxBody_(maxBody) {}

    // Numbers the record and keeps it. Returns it as kept.
    RequestRecord add(RequestRecord record);
    std::vector<RequestRecord> all() const;
    std::vector<RequestRecord> briefAfter(uint64_t number, size_t most) const;  // the newest, without bodies
    std::optional<RequestRecord> find(uint64_t number) const;
    void clear();
    std::optional<RequestRecord> waitFor(const std::function<bool(const RequestRecord&)>& fits,
                                         std::chrono::milliseconds timeout) const;

 private:
    const size_t maxRecords_;
    const size_t maxBody_;
    mutable std::mutex mutex_;
    mutable std::condition_variable grown_;
    std::deque<RequestRecord> records_;  // guarded by mutex_
    uint64_t count_ = 0;                 // guarded by mutex_
};

}  // namespace veltasim
