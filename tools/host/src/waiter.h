// Waiting on the main thread for what happens on other threads, for time to pass, and for Ctrl-C.
#pragma once

#include <chrono>
#include <functional>

namespace host {

using Clock = std::chrono::steady_clock;

class Fd {
 public:
    explicit Fd(int fd) : fd_(fd) {}
    ~Fd();
    Fd(const Fd&) = delete;
    Fd& operator=(const Fd&) = delete;
    int get() const { return fd_; }

 private:
    const int fd_;
};

class Waiter {
 public:
    // From here on SIGINT, SIGTERM and SIGHUP are taken by wait(), on every thread that is started later too,
    // and a reader that goes away is an error of writing. After the first signal the next one ends the
    // process at once.
    Waiter();

    // Ends a wait() that is going on, or the next one. [any thread]
    void wake() noexcept;

    // Returns when woken, interrupted or late. [main thread, and so are the rest]
    void wait(Clock::time_point until);
    // True as soon as fd can be read; false when interrupted.
    bool waitForInput(int fd);
    bool interrupted() const { return interrupted_; }
    void throwIfInterrupted() const;  // Failure

    // Calls what blocks on a thread of its own, so that a signal is noticed meanwhile; returns when it has
    // ended. onInterrupt is called when a signal makes the user wait for that end. Exceptions of work come
    // out here.
    void runAside(const std::function<void()>& work, const std::function<void()>& onInterrupt);

 private:
    bool poll(int fd, Clock::time_point until);

    const Fd signals_;
    const Fd wakeUp_;
    bool interrupted_ = false;
};

}  // namespace host
