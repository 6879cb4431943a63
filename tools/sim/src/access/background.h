#pragma once

#include <chrono>
#include <string>

namespace veltasim {

// A work that the device reports as going on for a while. What it changes has changed from the beginning.
class Background {
 public:
    void start(std::chrono::milliseconds duration, bool succeeds = true) {
        until_ = Clock::now() + duration;
        succeeds_ = succeeds;
    }
    bool isRunning() const { return Clock::now() < until_; }
    const char* status() const { return isRunning() ? "processing" : succeeds_ ? "success" : "failed"; }

 private:
    using Clock = std::chrono::steady_clock;
    Clock::time_point until_{};
    bool succeeds_ = true;
};

}  // namespace veltasim
