#include <errno.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <signal.h>
#include <xpr/xpr.h>

#include <atomic>
#include <chrono>

namespace {

struct Observed {
    std::atomic<XPR_HANDLE> self{XPR_INVALID_HANDLE};
    XPR_Semaphore selfKnown{};
    int waitForSelf = XPR_OK;
    int error = 0;
    bool terminateBlocked = false;
    bool faultBlocked = true;
    size_t stackSize = 0;
};

int observe(void* argument) {
    auto* observed = static_cast<Observed*>(argument);
    XPR_SemTimedWait(&observed->selfKnown, 60'000);
    observed->waitForSelf = XPR_Thread_Wait(observed->self);
    observed->error = XPR_GetSystemLastError();
    sigset_t blocked;
    pthread_sigmask(SIG_BLOCK, nullptr, &blocked);
    observed->terminateBlocked = sigismember(&blocked, SIGTERM) == 1;
    observed->faultBlocked = sigismember(&blocked, SIGSEGV) == 1;
    pthread_attr_t attributes;
    pthread_getattr_np(pthread_self(), &attributes);
    pthread_attr_getstacksize(&attributes, &observed->stackSize);
    pthread_attr_destroy(&attributes);
    return 0;
}

}  // namespace

TEST(Thread, runsWithItsStackAndSignalsBlocked) {
    for (const uint32_t wanted : {1U, 262'144U}) {
        Observed observed;
        ASSERT_EQ(XPR_SemCreate(&observed.selfKnown, 0), XPR_OK);
        const XPR_HANDLE thread = XPR_Thread_Create(observe, &observed, wanted);
        ASSERT_NE(thread, XPR_INVALID_HANDLE);
        observed.self = thread;
        XPR_SemPost(&observed.selfKnown);
        EXPECT_EQ(XPR_Thread_Wait(thread), XPR_OK);
        EXPECT_EQ(observed.waitForSelf, XPR_FAILED);
        EXPECT_EQ(observed.error, EDEADLK);
        EXPECT_TRUE(observed.terminateBlocked);
        EXPECT_FALSE(observed.faultBlocked);
        EXPECT_GE(observed.stackSize, wanted);
        EXPECT_LE(observed.stackSize, 1'000'000U) << "far from the system's default";
        XPR_SemDestroy(&observed.selfKnown);
    }
    sigset_t here;
    pthread_sigmask(SIG_BLOCK, nullptr, &here);
    EXPECT_EQ(sigismember(&here, SIGTERM), 0) << "the starter's own signals stay as they were";
    EXPECT_EQ(XPR_Thread_Wait(XPR_INVALID_HANDLE), XPR_ERROR_PARAMETER);
    EXPECT_EQ(XPR_Thread_Create(nullptr, nullptr, 0), XPR_INVALID_HANDLE);
}

TEST(Clock, TimeNow_isTheTimeOfDayAndNeverRunsAhead) {
    const auto wall = std::chrono::system_clock::now().time_since_epoch();
    const int64_t first = XPR_TimeNow();
    EXPECT_NEAR(static_cast<double>(first),
                static_cast<double>(std::chrono::duration_cast<std::chrono::microseconds>(wall).count()),
                60e6);
    const auto start = std::chrono::steady_clock::now();
    const int64_t before = XPR_TimeNow();
    XPR_Sleep(20);
    const int64_t after = XPR_TimeNow();
    EXPECT_GE(after - before, 20'000);
    // Both readings are cut to whole microseconds.
    EXPECT_LE(std::chrono::microseconds(after - before - 1), std::chrono::steady_clock::now() - start);
}
