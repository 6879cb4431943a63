#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <unordered_map>
#include <vector>

#include "fd.h"

namespace veltasim {

// The thread of a device: it waits for sockets, timers and tasks of other threads.
class Loop {
 public:
    using Clock = std::chrono::steady_clock;
    using Task = std::function<void()>;
    using Watcher = std::function<void(uint32_t epollEvents)>;
    using TimerId = std::pair<Clock::time_point, uint64_t>;

    Loop();
    ~Loop();  // stop()
    Loop(const Loop&) = delete;
    Loop& operator=(const Loop&) = delete;

    void start();
    void stop();  // tasks still waiting are not run

    // [any thread] Runs the task on the loop's thread, soon.
    void post(Task task);
    // [any thread but the loop's] Runs the task on the loop's thread and waits for it; an exception passes to
    // the caller. Before start() the task runs right here.
    void call(const Task& task);

    // The rest is for the loop's thread, or for before start().

    // Called once per turn to do the work that is due; tells how long it can wait for its sockets (nothing:
    // for ever).
    using Pump = std::function<std::optional<std::chrono::milliseconds>()>;
    void setPump(Pump pump) { pump_ = std::move(pump); }

    void watch(int fd, uint32_t epollEvents, Watcher watcher);
    void rewatch(int fd, uint32_t epollEvents);
    void unwatch(int fd);

    TimerId after(Clock::duration delay, Task task);
    void cancel(TimerId id) { timers_.erase(id); }

 private:
    void run();
    void turn();
    void runTasks();
    void runTimers();
    int waitMilliseconds();
    void wake();

    Fd epoll_;
    Fd wakeUp_;
    Pump pump_;
    std::unordered_map<int, uint64_t> keys_;
    std::unordered_map<uint64_t, std::shared_ptr<Watcher>> watchers_;  // by key: a descriptor may be reused
    std::map<TimerId, Task> timers_;
    uint64_t lastKey_ = 0;

    std::mutex mutex_;
    std::vector<Task> tasks_;  // guarded by mutex_
    bool stopping_ = false;    // guarded by mutex_
    std::thread thread_;
};

}  // namespace veltasim
