/* Counting semaphores with a timed wait on the monotonic clock. */
#ifndef XPR_SEMAPHORE_H
#define XPR_SEMAPHORE_H

#include <pthread.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Memory belongs to the caller and must not move between Create and Destroy. */
typedef struct XPR_Semaphore {
    pthread_mutex_t state;
    pthread_cond_t posted; /* on the monotonic clock */
    uint32_t count;
} XPR_Semaphore;

/* Returns XPR_OK or XPR_FAILED. */
int XPR_SemCreate(XPR_Semaphore* semaphore, uint32_t initialCount);

/* Adds one and wakes one waiter. [any thread] */
int XPR_SemPost(XPR_Semaphore* semaphore);

/* Takes one, waiting at most timeoutMs milliseconds for it. XPR_OK, or XPR_ERROR_TIMEOUT. [any thread] */
int XPR_SemTimedWait(XPR_Semaphore* semaphore, uint32_t timeoutMs);

/* Nobody may be waiting. */
int XPR_SemDestroy(XPR_Semaphore* semaphore);

#ifdef __cplusplus
}
#endif

#endif
