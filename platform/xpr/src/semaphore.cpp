#include <errno.h>
#include <xpr/semaphore.h>

#include <limits>

#include "failure.h"
#include "monotonic.h"

using xpr::fail;
using xpr::SystemLock;

int XPR_SemCreate(XPR_Semaphore* semaphore, uint32_t initialCount) {
    if (semaphore == nullptr) return fail(XPR_ERROR_PARAMETER);
    const int error = xpr::createMonitor(&semaphore->state, &semaphore->posted);
    if (error != 0) return fail(XPR_FAILED, error);
    semaphore->count = initialCount;
    return XPR_OK;
}

int XPR_SemPost(XPR_Semaphore* semaphore) {
    if (semaphore == nullptr) return fail(XPR_ERROR_PARAMETER);
    const SystemLock lock(&semaphore->state);
    if (semaphore->count == std::numeric_limits<uint32_t>::max()) return fail(XPR_FAILED, EOVERFLOW);
    ++semaphore->count;
    // Under the lock, so that a waiter may destroy the semaphore as soon as it has taken what was posted.
    pthread_cond_signal(&semaphore->posted);
    return XPR_OK;
}

int XPR_SemTimedWait(XPR_Semaphore* semaphore, uint32_t timeoutMs) {
    if (semaphore == nullptr) return fail(XPR_ERROR_PARAMETER);
    const timespec end = xpr::deadlineIn(timeoutMs);
    const SystemLock lock(&semaphore->state);
    int error = 0;
    while (semaphore->count == 0 && error == 0) {
        error = pthread_cond_timedwait(&semaphore->posted, &semaphore->state, &end);
    }
    if (semaphore->count == 0) return fail(XPR_ERROR_TIMEOUT, error);
    --semaphore->count;
    return XPR_OK;
}

int XPR_SemDestroy(XPR_Semaphore* semaphore) {
    if (semaphore == nullptr) return fail(XPR_ERROR_PARAMETER);
    xpr::destroyMonitor(&semaphore->state, &semaphore->posted);
    return XPR_OK;
}
