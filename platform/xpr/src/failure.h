/* How the runtime's functions report that they failed. */
#ifndef XPR_FAILURE_H
#define XPR_FAILURE_H

#include <xpr/error.h>

namespace xpr {

/* Remembers both errors for the calling thread and returns the first. */
int fail(int error, int systemError = 0) noexcept;

}  // namespace xpr

#endif
