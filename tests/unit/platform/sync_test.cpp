#include <errno.h>
#include <gtest/gtest.h>
#include <xpr/xpr.h>

#include <chrono>
#include <future>

#include "test_threads.h"

#if defined(__clang__)
#pragma clang diagnostic ignored "-Wthread-safety"  // these tests misuse mutexes on purpose
#endif

namespace {

/* Runs the call on another thread and hands back its result. */
template <typename Call>
int elsewhere(Call call) {
    return std::async(std::launch::async, call).get();
}

}  // namespace

TEST(Mutex, plain_refusesWhatWouldBlockForEverOrSteal) {
    xpr::xpr_mutex mutex;
    ASSERT_EQ(XPR_MutexLock(mutex.native()), XPR_OK);
    EXPECT_EQ(XPR_MutexLock(mutex.native()), XPR_FAILED);
    EXPECT_EQ(XPR_GetSystemLastError(), EDEADLK);
    EXPECT_EQ(elsewhere([&] { return XPR_MutexUnlock(mutex.native()); }), XPR_FAILED);
    EXPECT_EQ(XPR_GetSystemLastError(), EDEADLK) << "another thread's failure must not show here";
    EXPECT_EQ(XPR_MutexDestroy(mutex.native()), XPR_FAILED);
    EXPECT_EQ(XPR_MutexUnlock(mutex.native()), XPR_OK);
    EXPECT_EQ(XPR_MutexUnlock(mutex.native()), XPR_FAILED);
    XPR_Mutex other;
    EXPECT_EQ(XPR_MutexCreate(&other, 7), XPR_ERROR_PARAMETER);
}

TEST(Mutex, recursive_isFreeAfterAsManyUnlocks) {
    xpr::xpr_mutex mutex(XPR_MUTEX_RECURSIVE);
    mutex.lock();
    EXPECT_TRUE(mutex.try_lock());
    mutex.unlock();
    EXPECT_EQ(elsewhere([&] { return XPR_MutexTryLock(mutex.native(), 0); }), XPR_ERROR_TIMEOUT);
    mutex.unlock();
    EXPECT_EQ(
        elsewhere([&] { return XPR_MutexTryLock(mutex.native(), 0) | XPR_MutexUnlock(mutex.native()); }),
        XPR_OK);
}

TEST(Mutex, TryLock_waitsItsTimeAndNoLongerThanNeeded) {
    xpr::xpr_mutex mutex;
    mutex.lock();
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(elsewhere([&] { return XPR_MutexTryLock(mutex.native(), 30); }), XPR_ERROR_TIMEOUT);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(30));

    auto waiter = std::async(std::launch::async, [&] { return XPR_MutexTryLock(mutex.native(), 3'600'000); });
    EXPECT_TRUE(waitUntil([state = mutex.native()] {
        pthread_mutex_lock(&state->state);
        const bool waiting = state->waiters == 1;
        pthread_mutex_unlock(&state->state);
        return waiting;
    }));
    mutex.unlock();
    ASSERT_EQ(waiter.wait_for(std::chrono::seconds(60)), std::future_status::ready);
    EXPECT_EQ(waiter.get(), XPR_OK);
}

TEST(Semaphore, TimedWait_takesEachPostOnce) {
    XPR_Semaphore semaphore;
    ASSERT_EQ(XPR_SemCreate(&semaphore, 1), XPR_OK);
    EXPECT_EQ(XPR_SemTimedWait(&semaphore, 0), XPR_OK);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(XPR_SemTimedWait(&semaphore, 30), XPR_ERROR_TIMEOUT);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(30));

    auto waiter = std::async(std::launch::async, [&] { return XPR_SemTimedWait(&semaphore, 3'600'000); });
    EXPECT_EQ(waiter.wait_for(std::chrono::milliseconds(50)), std::future_status::timeout);
    XPR_SemPost(&semaphore);
    ASSERT_EQ(waiter.wait_for(std::chrono::seconds(60)), std::future_status::ready);
    EXPECT_EQ(waiter.get(), XPR_OK);
    EXPECT_EQ(XPR_SemTimedWait(&semaphore, 0), XPR_ERROR_TIMEOUT);
    EXPECT_EQ(XPR_SemDestroy(&semaphore), XPR_OK);
}
