#include "interposed.h"

#include <dlfcn.h>
#include <errno.h>
#include <pthread.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <unistd.h>

#define INTERPOSED extern "C" __attribute__((visibility("default")))

namespace {

constexpr int kAny = -1;
thread_local int threadsLeft = kAny;
thread_local std::atomic<int>* sleepsOfThread = nullptr;

timespec wallClock() {
    ++stress::wallClockReadings;
    timespec now{};
    syscall(SYS_clock_gettime, CLOCK_REALTIME, &now);
    now.tv_sec += stress::wallClockJump;
    return now;
}

}  // namespace

namespace stress {

void countSleeps(std::atomic<int>& sleeps) {
    sleepsOfThread = &sleeps;
}

std::atomic<time_t> wallClockJump{0};
std::atomic<int> wallClockReadings{0};

ThreadsRefused::ThreadsRefused(int afterSo) {
    threadsLeft = afterSo;
}
ThreadsRefused::~ThreadsRefused() {
    threadsLeft = kAny;
}

}  // namespace stress

INTERPOSED int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*start)(void*),
                              void* argument) noexcept {
    static const auto system =
        reinterpret_cast<decltype(&pthread_create)>(dlsym(RTLD_NEXT, "pthread_create"));
    if (threadsLeft == 0) return EAGAIN;
    if (threadsLeft > 0) --threadsLeft;
    return system(thread, attributes, start, argument);
}

INTERPOSED int clock_gettime(clockid_t clock, timespec* time) noexcept {
    if (clock != CLOCK_REALTIME) return static_cast<int>(syscall(SYS_clock_gettime, clock, time));
    *time = wallClock();
    return 0;
}

INTERPOSED time_t time(time_t* seconds) noexcept {
    const time_t now = wallClock().tv_sec;
    if (seconds != nullptr) *seconds = now;
    return now;
}

INTERPOSED int gettimeofday(timeval* time, void*) noexcept {
    const timespec now = wallClock();
    *time = {.tv_sec = now.tv_sec, .tv_usec = now.tv_nsec / 1000};
    return 0;
}

INTERPOSED int clock_nanosleep(clockid_t clock, int flags, const timespec* time, timespec* rest) {
    if (sleepsOfThread != nullptr) ++*sleepsOfThread;
    return syscall(SYS_clock_nanosleep, clock, flags, time, rest) == 0 ? 0 : errno;
}
