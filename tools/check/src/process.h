// This program once more, as the process of one check.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <string>
#include <vector>

#include "memory_file.h"

namespace check {

class Process {
 public:
    using Clock = std::chrono::steady_clock;

    explicit Process(const std::vector<std::string>& arguments);  // throws std::system_error
    ~Process();                                                   // kills it, if it has not ended
    Process(Process&& other) noexcept;
    Process& operator=(Process&&) = delete;

    int endFd() const { return endFd_; }  // can be read as soon as the process has ended
    Clock::time_point start() const { return start_; }
    void kill() const;
    int wait();  // for its end; the status of waitpid

    std::string report() const { return report_.content(); }
    std::string output() const { return output_.content(); }  // standard output and error

 private:
    const Clock::time_point start_ = Clock::now();
    MemoryFile report_;
    MemoryFile output_;
    pid_t pid_ = -1;  // -1: it has been waited for
    int endFd_ = -1;
};

}  // namespace check
