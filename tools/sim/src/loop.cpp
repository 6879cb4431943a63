#include "loop.h"

#include <sys/epoll.h>
#include <sys/eventfd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <future>
#include <system_error>

namespace veltasim {
namespace {

constexpr uint64_t kWakeUpKey = 0;

}  // namespace

Loop::Loop() : epoll_(epoll_create1(EPOLL_CLOEXEC)), wakeUp_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    if (epoll_.get() < 0 || wakeUp_.get() < 0)
        throw std::system_error(errno, std::generic_category(), "cannot make an event loop");
    epoll_event event{};
    event.events = EPOLLIN;
    event.data.u64 = kWakeUpKey;
    epoll_ctl(epoll_.get(), EPOLL_CTL_ADD, wakeUp_.get(), &event);
}

Loop::~Loop() {
    stop();
}

void Loop::start() {
    thread_ = std::thread([this] { run(); });
}

void Loop::stop() {
    if (!thread_.joinable()) return;
    {
        const std::lock_guard lock(mutex_);
        stopping_ = true;
    }
    wake();
    thread_.join();
}

void Loop::post(Task task) {
    {
        const std::lock_guard lock(mutex_);
        tasks_.push_back(std::move(task));
        if (tasks_.size() > 1) return;  // the loop has been woken for the first one
    }
    wake();
}

void Loop::call(const Task& task) {
    if (!thread_.joinable()) {
        task();
        return;
    }
    const auto packaged = std::make_shared<std::packaged_task<void()>>(task);
    auto done = packaged->get_future();
    post([packaged] { (*packaged)(); });
    done.get();
}

void Loop::watch(int fd, uint32_t epollEvents, Watcher watcher) {
    const uint64_t key = ++lastKey_;
    epoll_event event{};
    event.events = epollEvents;
    event.data.u64 = key;
    if (epoll_ctl(epoll_.get(), EPOLL_CTL_ADD, fd, &event) != 0)
        throw std::system_error(errno, std::generic_category(), "epoll_ctl");
    keys_[fd] = key;
    watchers_[key] = std::make_shared<Watcher>(std::move(watcher));
}

void Loop::rewatch(int fd, uint32_t epollEvents) {
    epoll_event event{};
    event.events = epollEvents;
    event.data.u64 = keys_.at(fd);
    epoll_ctl(epoll_.get(), EPOLL_CTL_MOD, fd, &event);
}

void Loop::unwatch(int fd) {
    const auto found = keys_.find(fd);
    if (found == keys_.end()) return;
    watchers_.erase(found->second);
    keys_.erase(found);
    epoll_ctl(epoll_.get(), EPOLL_CTL_DEL, fd, nullptr);
}

Loop::TimerId Loop::after(Clock::duration delay, Task task) {
    const TimerId id{Clock::now() + delay, ++lastKey_};
    timers_.emplace(id, std::move(task));
    return id;
}

void Loop::run() {
    for (;;) {
        try {
            turn();
        } catch (const std::exception& error) {
            std::fprintf(stderr, "velta-sim: %s\n", error.what());
        }
        const std::lock_guard lock(mutex_);
        if (stopping_) return;
    }
}

void Loop::turn() {
    runTasks();
    runTimers();
    std::array<epoll_event, 64> events{};
    const int count = epoll_wait(epoll_.get(), events.data(), events.size(), waitMilliseconds());
    for (int i = 0; i < count; ++i) {
        const epoll_event& event = events[static_cast<size_t>(i)];
        if (event.data.u64 == kWakeUpKey) {
            eventfd_t ignored = 0;
            eventfd_read(wakeUp_.get(), &ignored);
            continue;
        }
        const auto found = watchers_.find(event.data.u64);
        if (found == watchers_.end()) continue;  // an earlier watcher of this turn removed it
        const auto watcher = found->second;
        (*watcher)(event.events);
    }
}

void Loop::runTasks() {
    std::vector<Task> tasks;
    {
        const std::lock_guard lock(mutex_);
        tasks.swap(tasks_);
    }
    for (const Task& task : tasks)
        task();
}

void Loop::runTimers() {
    const auto now = Clock::now();
    while (!timers_.empty() && timers_.begin()->first.first <= now) {
        const auto node = timers_.extract(timers_.begin());
        node.mapped()();
    }
}

int Loop::waitMilliseconds() {
    using std::chrono::milliseconds;
    constexpr milliseconds kLongest{60000};
    milliseconds wait = pump_ ? pump_().value_or(kLongest) : kLongest;
    if (!timers_.empty())
        wait = std::min(wait, std::chrono::ceil<milliseconds>(timers_.begin()->first.first - Clock::now()));
    return static_cast<int>(std::clamp(wait, milliseconds(0), kLongest).count());
}

void Loop::wake() {
    eventfd_write(wakeUp_.get(), 1);
}

}  // namespace veltasim
