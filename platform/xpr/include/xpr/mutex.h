/* Plain and recursive mutexes with a timed try-lock that no change of the wall clock disturbs. */
#ifndef XPR_MUTEX_H
#define XPR_MUTEX_H

#include <pthread.h>
#include <stdint.h>
#include <xpr/annotations.h>
#include <xpr/error.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Memory belongs to the caller and must not move between Create and Destroy. */
typedef struct XPR_ANNOTATE(capability("mutex")) XPR_Mutex {
    pthread_mutex_t state;   /* guards the fields below; never held for long */
    pthread_cond_t released; /* on the monotonic clock */
    pthread_t owner;         /* valid while depth is not 0 */
    uint32_t depth;          /* 0 free; above 1 only when recursive */
    uint32_t waiters;        /* threads inside a lock call that found it taken */
    int recursive;
} XPR_Mutex;

#define XPR_MUTEX_PLAIN 0
#define XPR_MUTEX_RECURSIVE 1

/* kind: XPR_MUTEX_PLAIN or XPR_MUTEX_RECURSIVE. Returns XPR_OK or XPR_FAILED. */
int XPR_MutexCreate(XPR_Mutex* mutex, int kind);

/* Waits for the mutex. A plain mutex that the caller already holds is refused with XPR_FAILED instead of
 * waiting for ever. [any thread] */
int XPR_MutexLock(XPR_Mutex* mutex) XPR_ACQUIRE(*mutex);

/* As XPR_MutexLock, for at most timeoutMs milliseconds (0: does not wait). XPR_ERROR_TIMEOUT when the time
 * ran out. */
int XPR_MutexTryLock(XPR_Mutex* mutex, uint32_t timeoutMs) XPR_TRY_ACQUIRE(0, *mutex);

/* Only by the thread that holds it: others are refused with XPR_FAILED. */
int XPR_MutexUnlock(XPR_Mutex* mutex) XPR_RELEASE(*mutex);

/* The mutex must be free. */
int XPR_MutexDestroy(XPR_Mutex* mutex);

#ifdef __cplusplus
}

namespace xpr {

/* An XPR_Mutex that creates and destroys itself. Meets the standard's Lockable requirements, so that
 * std::condition_variable_any can wait with it. */
class XPR_CAPABILITY("mutex") xpr_mutex {
 public:
    explicit xpr_mutex(int kind = XPR_MUTEX_PLAIN) { created_ = XPR_MutexCreate(&mutex_, kind) == XPR_OK; }
    ~xpr_mutex() {
        if (created_) XPR_MutexDestroy(&mutex_);
    }
    xpr_mutex(const xpr_mutex&) = delete;
    xpr_mutex& operator=(const xpr_mutex&) = delete;

    /* False when the system had no mutex to give. */
    bool created() const { return created_; }
    XPR_Mutex* native() { return &mutex_; }

    void lock() XPR_ACQUIRE() XPR_ANNOTATE(no_thread_safety_analysis) { XPR_MutexLock(&mutex_); }
    bool try_lock() XPR_TRY_ACQUIRE(true) XPR_ANNOTATE(no_thread_safety_analysis) {
        return XPR_MutexTryLock(&mutex_, 0) == XPR_OK;
    }
    void unlock() XPR_RELEASE() XPR_ANNOTATE(no_thread_safety_analysis) { XPR_MutexUnlock(&mutex_); }

 private:
    XPR_Mutex mutex_{};
    bool created_ = false;
};

}  // namespace xpr

/* Holds a mutex for a scope. */
class XPR_SCOPED_CAPABILITY XPR_Guard {
 public:
    explicit XPR_Guard(xpr::xpr_mutex& mutex) XPR_ACQUIRE(mutex) : mutex_(mutex) { mutex_.lock(); }
    ~XPR_Guard() XPR_RELEASE() { mutex_.unlock(); }
    XPR_Guard(const XPR_Guard&) = delete;
    XPR_Guard& operator=(const XPR_Guard&) = delete;

 private:
    xpr::xpr_mutex& mutex_;
};
#endif

#endif
