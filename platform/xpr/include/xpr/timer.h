/* Periodic timers, all served by one thread that runs while there is at least one timer.
 *
 * A timer is due at its start time plus whole multiples of its interval, on the monotonic clock: neither the
 * duration of its callback nor the load of the machine makes it drift. It never overlaps itself; a beat that
 * falls into a callback still running is left out. Since the thread is shared, a slow callback delays other
 * timers. */
#ifndef XPR_TIMER_H
#define XPR_TIMER_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Called on the timer thread. May set and kill timers, its own included. Its result is not used. It must not
 * let a C++ exception out. */
typedef int (*XPR_TimerFunction)(int timerId, void* user);

#define XPR_TIMER_INVALID (-1)

/* Starts a timer whose first beat comes after one interval. intervalMs: at least 1. flags: 0, others are
 * refused. *timerId (a number from 0 on) is written before the first beat can come and is untouched on
 * failure. Returns XPR_OK, XPR_ERROR_PARAMETER, XPR_ERROR_OUT_OF_MEMORY, or XPR_FAILED when the thread could
 * not be started. [any thread] */
int XPR_SetTimer(XPR_TimerFunction function, void* user, uint32_t intervalMs, int* timerId, int flags);

/* Ends a timer. When it returns, the callback is not running and will not run again, unless the caller is
 * that very callback. XPR_ERROR_PARAMETER for an unknown id. [any thread] */
int XPR_KillTimer(int timerId);

#ifdef __cplusplus
}
#endif

#endif
