#include "manager/CRWLock.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace {

TEST(RwLock, writerWaitsForReaders) {
    VXBase::CRWLock lock;
    ASSERT_TRUE(lock.CheckResouce());
    ASSERT_TRUE(lock.ReadLock());
    ASSERT_TRUE(lock.ReadLock());
    std::atomic<bool> written{false};
    std::thread writer([&] {
        const VXBase::WriteGuard guard(lock);
        written = true;
    });
    lock.ReadUnlock();
    EXPECT_FALSE(lock.TryWriteLock(0));
    EXPECT_FALSE(written);  // one reader is still inside
    lock.ReadUnlock();
    writer.join();
    EXPECT_TRUE(written);
}

TEST(RwLock, writerMayReadAndWriteAgain) {
    VXBase::CRWLock lock;
    ASSERT_TRUE(lock.WriteLock());
    EXPECT_TRUE(lock.TryWriteLock(0));
    EXPECT_TRUE(lock.ReadLock());
    EXPECT_TRUE(lock.ReadUnlock());
    EXPECT_TRUE(lock.WriteUnlock());
    std::thread([&] { EXPECT_FALSE(lock.TryWriteLock(1)); }).join();
    EXPECT_TRUE(lock.WriteUnlock());
    std::thread([&] {
        EXPECT_TRUE(lock.TryWriteLock(0));
        EXPECT_TRUE(lock.WriteUnlock());
    }).join();
}

TEST(RwLock, guardsACounter) {
    VXBase::CRWLock lock;
    int counter = 0;
    const auto write = [&] {
        for (int i = 0; i < 500; ++i) {
            const VXBase::WriteGuard guard(lock);
            ++counter;
        }
    };
    const auto read = [&] {
        for (int i = 0; i < 500; ++i) {
            const VXBase::ReadGuard guard(lock);
            EXPECT_LE(counter, 1000);
        }
    };
    std::thread threads[] = {std::thread(write), std::thread(write), std::thread(read), std::thread(read)};
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(counter, 1000);
}

}  // namespace
