#pragma once

#include <deque>
#include <mutex>
#include <vector>

#include <veltasim/view.h>

namespace veltasim {

// The last events that went out, alarms too, for whoever watches the device. [any thread]
class Journal {
 public:
    explicit Journal(size_t capacity) : capacity_(capacity) {}

    // Numbers the report and keeps it.
    void add(Report report);
    std::vector<Report> after(uint64_t number, size_t most) const;  // the newest, oldest first

 private:
    const size_t capacity_;
    mutable std::mutex mutex_;
    std::deque<Report> reports_;  // guarded by mutex_
    uint64_t count_ = 0;          // guarded by mutex_
};

}  // namespace veltasim
