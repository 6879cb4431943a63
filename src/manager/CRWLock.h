#ifndef VELTA_MANAGER_CRWLOCK_H
#define VELTA_MANAGER_CRWLOCK_H

#include <xpr/mutex.h>

namespace VXBase {

/* A reader-writer lock on one recursive mutex: readers pass through it, a writer keeps it. A writer polls
 * once per millisecond until no reader is inside; the thread that holds the write lock may also read. There
 * is no fairness. Every operation is false when the mutex could not be created or taken. */
class CRWLock {
 public:
    CRWLock() : mutex_(XPR_MUTEX_RECURSIVE) {}

    bool ReadLock() XPR_NO_ANALYSIS;
    bool ReadUnlock() XPR_NO_ANALYSIS;
    bool WriteLock() XPR_NO_ANALYSIS;
    bool WriteUnlock() XPR_NO_ANALYSIS;

    /* False when the mutex is not to be had within timeoutMs, or when a reader is inside. */
    bool TryWriteLock(unsigned int timeoutMs) XPR_NO_ANALYSIS;

    /* True when the lock could be created. */
    bool CheckResouce() const { return mutex_.created(); }

 private:
    xpr::xpr_mutex mutex_;
    int readers_ = 0;  // guarded by mutex_
    int writers_ = 0;  // guarded by mutex_; above 1 when the writer locks again
};

/* Holds the lock for reading during a scope. */
class ReadGuard {
 public:
    explicit ReadGuard(CRWLock& lock) : lock_(lock) { lock_.ReadLock(); }
    ~ReadGuard() { lock_.ReadUnlock(); }
    ReadGuard(const ReadGuard&) = delete;
    ReadGuard& operator=(const ReadGuard&) = delete;

 private:
    CRWLock& lock_;
};

/* Holds the lock for writing during a scope. */
class WriteGuard {
 public:
    explicit WriteGuard(CRWLock& lock) : lock_(lock) { lock_.WriteLock(); }
    ~WriteGuard() { lock_.WriteUnlock(); }
    WriteGuard(const WriteGuard&) = delete;
    WriteGuard& operator=(const WriteGuard&) = delete;

 private:
    CRWLock& lock_;
};

}  // namespace VXBase

#endif
