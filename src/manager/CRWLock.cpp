#include "manager/CRWLock.h"

#include <xpr/clock.h>
#include <xpr/error.h>

namespace VXBase {

bool CRWLock::ReadLock() {
    if (XPR_MutexLock(mutex_.native()) != XPR_OK) return false;
    ++readers_;
    return XPR_MutexUnlock(mutex_.native()) == XPR_OK;
}

bool CRWLock::ReadUnlock() {
    if (XPR_MutexLock(mutex_.native()) != XPR_OK) return false;
    --readers_;
    return XPR_MutexUnlock(mutex_.native()) == XPR_OK;
}

bool CRWLock::WriteLock() {
    while (XPR_MutexLock(mutex_.native()) == XPR_OK) {
        if (readers_ == 0) {
            ++writers_;
            return true;
        }
        XPR_MutexUnlock(mutex_.native());
        XPR_Sleep(1);
    }
    return false;
}

bool CRWLock::WriteUnlock() {
    --writers_;
    return XPR_MutexUnlock(mutex_.native()) == XPR_OK;
}

bool CRWLock::TryWriteLock(unsigned int timeoutMs) {
    if (XPR_MutexTryLock(mutex_.native(), timeoutMs) != XPR_OK) return false;
    if (readers_ == 0) {
        ++writers_;
        return true;
    }
    XPR_MutexUnlock(mutex_.native());
    return false;
}

}  // namespace VXBase
