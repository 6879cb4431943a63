#include "waiter.h"

#include <poll.h>
#include <pthread.h>
#include <signal.h>
#include <sys/eventfd.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdint>
#include <future>

#include "failure.h"

namespace host {
namespace {

constexpr auto kLong = std::chrono::hours(1);

sigset_t endingSignals() {
    sigset_t set;
    sigemptyset(&set);
    for (const int number : {SIGINT, SIGTERM, SIGHUP})
        sigaddset(&set, number);
    return set;
}

int openSignals() {
    const sigset_t set = endingSignals();
    pthread_sigmask(SIG_BLOCK, &set, nullptr);
    signal(SIGPIPE, SIG_IGN);
    return signalfd(-1, &set, SFD_NONBLOCK | SFD_CLOEXEC);
}

}  // namespace

Fd::~Fd() {
    if (fd_ >= 0) close(fd_);
}

Waiter::Waiter() : signals_(openSignals()), wakeUp_(eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)) {
    if (signals_.get() < 0 || wakeUp_.get() < 0)
        throw Failure(ExitCode::Failed, "no file descriptor is left for this process");
}

void Waiter::wake() noexcept {
    const uint64_t one = 1;
    [[maybe_unused]] const ssize_t written =
        write(wakeUp_.get(), &one, sizeof one);  // full is as good as woken
}

bool Waiter::poll(int fd, Clock::time_point until) {
    using std::chrono::milliseconds;
    const auto left = std::chrono::ceil<milliseconds>(until - Clock::now());
    const auto timeout = std::clamp<milliseconds>(left, milliseconds(0), kLong);
    // After the first signal the descriptor stays silent: the next signal ends the process.
    std::array<pollfd, 3> watched{
        {{interrupted_ ? -1 : signals_.get(), POLLIN, 0}, {wakeUp_.get(), POLLIN, 0}, {fd, POLLIN, 0}}};
    if (::poll(watched.data(), watched.size(), static_cast<int>(timeout.count())) <= 0) return false;
    if (watched[0].revents != 0) {
        signalfd_siginfo info{};
        if (read(signals_.get(), &info, sizeof info) == sizeof info) interrupted_ = true;
        const sigset_t set = endingSignals();
        pthread_sigmask(SIG_UNBLOCK, &set, nullptr);
    }
    uint64_t count = 0;
    if (watched[1].revents != 0) [[maybe_unused]]
        const ssize_t drained = read(wakeUp_.get(), &count, sizeof count);
    return watched[2].revents != 0;
}

void Waiter::wait(Clock::time_point until) {
    poll(-1, until);
}

bool Waiter::waitForInput(int fd) {
    while (!interrupted_) {
        if (poll(fd, Clock::now() + kLong)) return true;
    }
    return false;
}

void Waiter::throwIfInterrupted() const {
    if (interrupted_) throw Failure(ExitCode::Failed, "interrupted");
}

void Waiter::runAside(const std::function<void()>& work, const std::function<void()>& onInterrupt) {
    std::atomic<bool> ended = false;
    std::future<void> result = std::async(std::launch::async, [&] {
        struct Ending {
            Waiter& waiter;
            std::atomic<bool>& ended;
            ~Ending() {
                ended = true;
                waiter.wake();
            }
        };
        const Ending ending{*this, ended};
        work();
    });
    const bool before = interrupted_;
    while (!ended && interrupted_ == before)
        wait(Clock::now() + kLong);
    if (!ended) onInterrupt();
    result.get();
}

}  // namespace host
