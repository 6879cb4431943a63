/* Functions of the system that this program answers itself, for the library too. */
#pragma once

#include <atomic>
#include <ctime>

namespace stress {

/* While it lives, the calling thread can start so many threads and no more. */
class ThreadsRefused {
 public:
    explicit ThreadsRefused(int afterSo);
    ~ThreadsRefused();
    ThreadsRefused(const ThreadsRefused&) = delete;
    ThreadsRefused& operator=(const ThreadsRefused&) = delete;
};

/* Counts from now on how often the calling thread goes to sleep for a while: it waits for something then. */
void countSleeps(std::atomic<int>& sleeps);

/* How far the wall clock is off, in seconds; and how often it was asked for. */
extern std::atomic<time_t> wallClockJump;
extern std::atomic<int> wallClockReadings;

}  // namespace stress
