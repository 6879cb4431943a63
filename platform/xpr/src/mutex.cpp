#include <errno.h>
#include <xpr/mutex.h>

#include "failure.h"
#include "monotonic.h"

using xpr::fail;
using xpr::SystemLock;

namespace {

bool heldByCaller(const XPR_Mutex* mutex) {
    return mutex->depth != 0 && pthread_equal(mutex->owner, pthread_self()) != 0;
}

/* Takes the mutex; while another thread holds it, wait() blocks until it may have been released and returns
 * 0, or ETIMEDOUT when there is no more time. */
template <typename Wait>
int acquire(XPR_Mutex* mutex, Wait wait) {
    if (mutex == nullptr) return fail(XPR_ERROR_PARAMETER);
    const SystemLock lock(&mutex->state);
    if (heldByCaller(mutex)) {
        if (mutex->recursive == 0) return fail(XPR_FAILED, EDEADLK);
        ++mutex->depth;
        return XPR_OK;
    }
    while (mutex->depth != 0) {
        ++mutex->waiters;
        const int error = wait();
        --mutex->waiters;
        // A release that comes together with the end of the time still counts: nobody else was woken for it.
        if (error != 0 && mutex->depth != 0) return fail(XPR_ERROR_TIMEOUT, error);
    }
    mutex->owner = pthread_self();
    mutex->depth = 1;
    return XPR_OK;
}

}  // namespace

int XPR_MutexCreate(XPR_Mutex* mutex, int kind) {
    if (mutex == nullptr || (kind != XPR_MUTEX_PLAIN && kind != XPR_MUTEX_RECURSIVE)) {
        return fail(XPR_ERROR_PARAMETER);
    }
    const int error = xpr::createMonitor(&mutex->state, &mutex->released);
    if (error != 0) return fail(XPR_FAILED, error);
    mutex->depth = 0;
    mutex->waiters = 0;
    mutex->recursive = kind;
    return XPR_OK;
}

int XPR_MutexLock(XPR_Mutex* mutex) XPR_NO_ANALYSIS {
    return acquire(mutex, [mutex] { return pthread_cond_wait(&mutex->released, &mutex->state); });
}

int XPR_MutexTryLock(XPR_Mutex* mutex, uint32_t timeoutMs) XPR_NO_ANALYSIS {
    if (timeoutMs == 0) return acquire(mutex, [] { return ETIMEDOUT; });
    const timespec end = xpr::deadlineIn(timeoutMs);
    return acquire(mutex, [&] { return pthread_cond_timedwait(&mutex->released, &mutex->state, &end); });
}

int XPR_MutexUnlock(XPR_Mutex* mutex) XPR_NO_ANALYSIS {
    if (mutex == nullptr) return fail(XPR_ERROR_PARAMETER);
    const SystemLock lock(&mutex->state);
    if (!heldByCaller(mutex)) return fail(XPR_FAILED, EPERM);
    if (--mutex->depth == 0 && mutex->waiters > 0) pthread_cond_signal(&mutex->released);
    return XPR_OK;
}

int XPR_MutexDestroy(XPR_Mutex* mutex) {
    if (mutex == nullptr) return fail(XPR_ERROR_PARAMETER);
    {
        const SystemLock lock(&mutex->state);
        if (mutex->depth != 0 || mutex->waiters != 0) return fail(XPR_FAILED, EBUSY);
    }
    xpr::destroyMonitor(&mutex->state, &mutex->released);
    return XPR_OK;
}
