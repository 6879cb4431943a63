#include "failure.h"

namespace {

thread_local int lastError = XPR_OK;
thread_local int lastSystemError = 0;

}  // namespace

int xpr::fail(int error, int systemError) noexcept {
    lastError = error;
    lastSystemError = systemError;
    return error;
}

int XPR_GetLastError(void) {
    return lastError;
}

int XPR_GetSystemLastError(void) {
    return lastSystemError;
}
