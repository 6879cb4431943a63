#include <gtest/gtest.h>
#include <unistd.h>
#include <xpr/xpr.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "test_threads.h"

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

/* A timer whose callback is a closure. */
class TestTimer {
 public:
    TestTimer(uint32_t intervalMs, std::function<void(int)> callback) : callback_(std::move(callback)) {
        EXPECT_EQ(XPR_SetTimer(call, this, intervalMs, &id_, 0), XPR_OK);
    }
    int id() const { return id_; }

 private:
    static int call(int id, void* self) {
        static_cast<TestTimer*>(self)->callback_(id);
        return 0;
    }
    std::function<void(int)> callback_;
    int id_ = XPR_TIMER_INVALID;
};

/* Notes which thread serves the timers. */
class TimerThread {
 public:
    void note() { id_ = gettid(); }
    bool gone() const {
        return id_ != 0 && !std::filesystem::exists("/proc/self/task/" + std::to_string(id_));
    }

 private:
    std::atomic<pid_t> id_{0};
};

int ignore(int, void*) {
    return 0;
}

}  // namespace

TEST(Timer, SetTimer_refusesWrongParameters) {
    int id = 99;
    EXPECT_EQ(XPR_SetTimer(nullptr, nullptr, 1, &id, 0), XPR_ERROR_PARAMETER);
    EXPECT_EQ(XPR_SetTimer(ignore, nullptr, 0, &id, 0), XPR_ERROR_PARAMETER);
    EXPECT_EQ(XPR_SetTimer(ignore, nullptr, 1, &id, 1), XPR_ERROR_PARAMETER);
    EXPECT_EQ(XPR_SetTimer(ignore, nullptr, 1, nullptr, 0), XPR_ERROR_PARAMETER);
    EXPECT_EQ(id, 99);
    EXPECT_EQ(XPR_KillTimer(99), XPR_ERROR_PARAMETER);
    EXPECT_EQ(XPR_KillTimer(XPR_TIMER_INVALID), XPR_ERROR_PARAMETER);
}

TEST(Timer, beatsDoNotDrift) {
    // Each callback takes more than half of the interval, so that a timer counting from its end would need at
    // least 16 ms for each beat. The machine may disturb some rounds, but not all.
    constexpr int kBeats = 10;
    std::atomic<int> beats{0};
    std::atomic<bool> inTime{false};
    steady_clock::time_point roundStart;
    const auto start = steady_clock::now();
    TestTimer timer(10, [&](int) {
        if (beats % kBeats == 0) {
            inTime = inTime || (beats > 0 && steady_clock::now() - roundStart < kBeats * milliseconds(13));
            roundStart = steady_clock::now();
        }
        EXPECT_GE(steady_clock::now() - start, ++beats * milliseconds(10)) << "a beat came too early";
        XPR_Sleep(6);
    });
    EXPECT_TRUE(waitUntil([&] { return inTime.load(); }));
    EXPECT_EQ(XPR_KillTimer(timer.id()), XPR_OK);
}

TEST(Timer, beatsDuringOwnCallbackAreLeftOut) {
    std::atomic<int> inside{0};
    std::vector<steady_clock::time_point> begun;
    const auto start = steady_clock::now();
    std::atomic<bool> done{false};
    TestTimer timer(10, [&](int) {
        EXPECT_EQ(++inside, 1);
        begun.push_back(steady_clock::now());
        if (begun.size() == 1) XPR_Sleep(45);
        done = done || begun.size() == 3;
        --inside;
    });
    EXPECT_TRUE(waitUntil([&] { return done.load(); }));
    EXPECT_EQ(XPR_KillTimer(timer.id()), XPR_OK);
    EXPECT_GE(begun[1] - start, milliseconds(60)) << "the second beat can be the sixth at the earliest";
    EXPECT_GE(begun[2] - start, milliseconds(70)) << "what was missed is not made up for";
}

TEST(Timer, KillTimer_waitsForRunningCallbackAndEndsThread) {
    TimerThread thread;
    std::atomic<bool> entered{false};
    std::atomic<bool> left{false};
    int distant = XPR_TIMER_INVALID;
    ASSERT_EQ(XPR_SetTimer(ignore, nullptr, 3'600'000, &distant, 0), XPR_OK);
    TestTimer slow(5, [&](int id) {
        thread.note();
        EXPECT_EQ(XPR_KillTimer(id), XPR_OK) << "its own callback does not wait for itself";
        entered = true;
        XPR_Sleep(50);
        left = true;
    });
    ASSERT_TRUE(waitUntil([&] { return entered.load(); }));
    EXPECT_EQ(XPR_KillTimer(slow.id()), XPR_ERROR_PARAMETER);
    EXPECT_TRUE(left) << "killed already, but its callback was still running";
    EXPECT_EQ(XPR_KillTimer(distant), XPR_OK);
    EXPECT_TRUE(waitUntil([&] { return thread.gone(); })) << "it must not wait for the next beat";
}

TEST(Timer, setAndKillFromManyThreadsAndCallbacks) {
    TimerThread thread;
    std::atomic<int> beats{0};
    auto users = startThreads(4, [&](int) {
        for (int n = 0; n < 100; ++n) {
            const int before = beats;
            auto alive = std::make_unique<std::atomic<int>>(1);
            TestTimer timer(1, [&](int id) {
                thread.note();
                beats += *alive;
                int extra = XPR_TIMER_INVALID;
                EXPECT_EQ(XPR_SetTimer(ignore, nullptr, 1, &extra, 0), XPR_OK);
                EXPECT_EQ(XPR_KillTimer(extra), XPR_OK);
                if (id % 3 == 0) XPR_KillTimer(id);
            });
            EXPECT_TRUE(waitUntil([&] { return n % 2 == 0 || beats > before; }));
            XPR_KillTimer(timer.id());
            alive.reset();  // a callback that still ran would now touch freed memory
        }
    });
    users.clear();
    EXPECT_GT(beats, 0);
    EXPECT_TRUE(waitUntil([&] { return thread.gone(); }));
}
