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

}  // namespace
