#ifndef XPR_CLOCK_H
#define XPR_CLOCK_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Microseconds since 1970-01-01T00:00:00Z as the machine's clock stood when the process first asked; from
 * then on counted on the monotonic clock, so that setting the clock never makes it jump. */
int64_t XPR_TimeNow(void);

/* Sleeps at least the given number of milliseconds, signals notwithstanding. */
void XPR_Sleep(uint32_t milliseconds);

#ifdef __cplusplus
}
#endif

#endif
