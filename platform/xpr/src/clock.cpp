#include <errno.h>
#include <xpr/clock.h>

#include "monotonic.h"

int64_t XPR_TimeNow(void) {
    static const int64_t epochOffset = xpr::nanosOf(CLOCK_REALTIME) - xpr::monotonicNanos();
    return (xpr::monotonicNanos() + epochOffset) / 1000;
}

void XPR_Sleep(uint32_t milliseconds) {
    const timespec end = xpr::deadlineIn(milliseconds);
    while (clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &end, nullptr) == EINTR) {
    }
}
