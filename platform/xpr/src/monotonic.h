/* The monotonic clock, and conditions whose timed waits follow it. */
#ifndef XPR_MONOTONIC_H
#define XPR_MONOTONIC_H

#include <pthread.h>
#include <stdint.h>
#include <time.h>

namespace xpr {

constexpr int64_t kNanosPerMilli = 1'000'000;
constexpr int64_t kNanosPerSecond = 1'000'000'000;

int64_t nanosOf(clockid_t clock) noexcept;
inline int64_t monotonicNanos() noexcept {
    return nanosOf(CLOCK_MONOTONIC);
}

timespec timespecOf(int64_t nanos) noexcept;

/* The point in monotonic time that lies so many milliseconds ahead. */
timespec deadlineIn(uint32_t milliseconds) noexcept;

/* A mutex and a condition that waits on the monotonic clock. Both exist, or neither. Returns 0 or an errno.
 */
int createMonitor(pthread_mutex_t* mutex, pthread_cond_t* condition) noexcept;
void destroyMonitor(pthread_mutex_t* mutex, pthread_cond_t* condition) noexcept;
int createCondition(pthread_cond_t* condition) noexcept;

/* Holds a system mutex for a scope. */
class SystemLock {
 public:
    explicit SystemLock(pthread_mutex_t* mutex) noexcept : mutex_(mutex) { pthread_mutex_lock(mutex_); }
    ~SystemLock() { pthread_mutex_unlock(mutex_); }
    SystemLock(const SystemLock&) = delete;
    SystemLock& operator=(const SystemLock&) = delete;

 private:
    pthread_mutex_t* mutex_;
};

}  // namespace xpr

#endif
