#include <limits.h>
#include <xpr/thread.h>
#include <xpr/timer.h>

#include <algorithm>
#include <map>
#include <memory>
#include <new>
#include <utility>

#include "failure.h"
#include "monotonic.h"

using xpr::fail;
using xpr::SystemLock;

namespace {

struct Timer {
    XPR_TimerFunction function;
    void* user;
    int64_t interval;  // nanoseconds
    int64_t due;       // monotonic nanoseconds
};

constexpr int kNone = -1;

/* One life of the timer thread, from a first timer to the end of a last one. */
struct TimerThread {
    std::map<int, Timer> timers;
    int running = kNone;  // the timer whose callback runs
    bool ended = false;   // it needs nothing here any more and only has to be joined
    XPR_HANDLE handle = XPR_INVALID_HANDLE;
};

/* Guards everything below and in every TimerThread. Nothing here has a destructor: when the host exits
 * without shutting down, the thread runs on until the process ends. */
pthread_mutex_t state = PTHREAD_MUTEX_INITIALIZER;
pthread_cond_t changed;  // timers came or went, or a callback ended; made with the first timer
bool changedExists = false;
TimerThread* current = nullptr;
int nextId = 0;

thread_local bool onTimerThread = false;

int64_t nextDue(const Timer& timer) {
    const int64_t late = std::max<int64_t>(xpr::monotonicNanos() - timer.due, 0);
    return timer.due + (late / timer.interval + 1) * timer.interval;
}

void beat(TimerThread* self, int id, Timer timer) {
    self->running = id;
    pthread_mutex_unlock(&state);
    timer.function(id, timer.user);
    pthread_mutex_lock(&state);
    self->running = kNone;
    pthread_cond_broadcast(&changed);
    const auto alive = self->timers.find(id);
    if (alive != self->timers.end()) alive->second.due = nextDue(timer);
}

int serve(void* argument) {
    auto* self = static_cast<TimerThread*>(argument);
    onTimerThread = true;
    const SystemLock lock(&state);
    while (!self->timers.empty()) {
        const auto next =
            std::ranges::min_element(self->timers, {}, [](const auto& entry) { return entry.second.due; });
        if (next->second.due <= xpr::monotonicNanos()) {
            beat(self, next->first, next->second);
            continue;
        }
        const timespec due = xpr::timespecOf(next->second.due);
        pthread_cond_timedwait(&changed, &state, &due);
    }
    self->ended = true;
    return 0;
}

void join(TimerThread* thread) {
    XPR_Thread_Wait(thread->handle);
    delete thread;
}

/* Takes out the current thread if it has no timer and runs no callback, so that it can be joined without the
 * lock and without waiting for somebody else's callback. */
TimerThread* takeIdleThread() {
    const bool idle = current != nullptr && current->timers.empty() && current->running == kNone;
    return idle ? std::exchange(current, nullptr) : nullptr;
}

int newId(const TimerThread& thread) {
    int id = 0;
    do {
        id = nextId;
        nextId = nextId == INT_MAX ? 0 : nextId + 1;
    } while (thread.timers.contains(id) || thread.running == id);
    return id;
}

int addTimer(const Timer& timer, int* timerId) {
    if (current != nullptr && current->ended) join(std::exchange(current, nullptr));
    std::unique_ptr<TimerThread> fresh;
    if (current == nullptr) fresh = std::make_unique<TimerThread>();
    TimerThread* thread = fresh ? fresh.get() : current;

    const int id = newId(*thread);
    thread->timers.emplace(id, timer);
    if (fresh) {
        fresh->handle = XPR_Thread_Create(serve, thread, 0);
        if (fresh->handle == XPR_INVALID_HANDLE) return XPR_GetLastError();
        current = fresh.release();
    }
    pthread_cond_broadcast(&changed);
    *timerId = id;
    return XPR_OK;
}

/* A thread whose last timer was killed by a callback has ended by itself; its remains go with the library. */
__attribute__((destructor)) void joinEndedThread() {
    TimerThread* ended = nullptr;
    if (onTimerThread) return;  // exit() called by a callback
    {
        const SystemLock lock(&state);
        if (current != nullptr && current->timers.empty()) ended = std::exchange(current, nullptr);
    }
    if (ended != nullptr) join(ended);
}

}  // namespace

int XPR_SetTimer(XPR_TimerFunction function, void* user, uint32_t intervalMs, int* timerId, int flags) {
    if (function == nullptr || intervalMs == 0 || timerId == nullptr || flags != 0)
        return fail(XPR_ERROR_PARAMETER);
    const int64_t interval = intervalMs * xpr::kNanosPerMilli;
    const SystemLock lock(&state);
    if (!changedExists) {
        const int error = xpr::createCondition(&changed);
        if (error != 0) return fail(XPR_FAILED, error);
        changedExists = true;
    }
    try {
        return addTimer({function, user, interval, xpr::monotonicNanos() + interval}, timerId);
    } catch (const std::bad_alloc&) {
        return fail(XPR_ERROR_OUT_OF_MEMORY);
    }
}

int XPR_KillTimer(int timerId) {
    TimerThread* idle = nullptr;
    bool known = false;
    {
        const SystemLock lock(&state);
        known = current != nullptr && current->timers.erase(timerId) != 0;
        if (known) pthread_cond_broadcast(&changed);
        if (!onTimerThread) {
            // Also for a timer that its own callback has just killed.
            while (timerId != kNone && current != nullptr && current->running == timerId) {
                pthread_cond_wait(&changed, &state);
            }
            idle = takeIdleThread();
        }
    }
    if (idle != nullptr) join(idle);
    return known ? XPR_OK : fail(XPR_ERROR_PARAMETER);
}
