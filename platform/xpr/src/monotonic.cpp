#include "monotonic.h"

namespace xpr {

int64_t nanosOf(clockid_t clock) noexcept {
    timespec now{};
    clock_gettime(clock, &now);
    return now.tv_sec * kNanosPerSecond + now.tv_nsec;
}

timespec timespecOf(int64_t nanos) noexcept {
    return {.tv_sec = nanos / kNanosPerSecond, .tv_nsec = nanos % kNanosPerSecond};
}

timespec deadlineIn(uint32_t milliseconds) noexcept {
    return timespecOf(monotonicNanos() + milliseconds * kNanosPerMilli);
}

int createCondition(pthread_cond_t* condition) noexcept {
    pthread_condattr_t attributes;
    int error = pthread_condattr_init(&attributes);
    if (error != 0) return error;
    pthread_condattr_setclock(&attributes, CLOCK_MONOTONIC);
    error = pthread_cond_init(condition, &attributes);
    pthread_condattr_destroy(&attributes);
    return error;
}

int createMonitor(pthread_mutex_t* mutex, pthread_cond_t* condition) noexcept {
    int error = pthread_mutex_init(mutex, nullptr);
    if (error != 0) return error;
    error = createCondition(condition);
    if (error != 0) pthread_mutex_destroy(mutex);
    return error;
}

void destroyMonitor(pthread_mutex_t* mutex, pthread_cond_t* condition) noexcept {
    pthread_cond_destroy(condition);
    pthread_mutex_destroy(mutex);
}

}  // namespace xpr
