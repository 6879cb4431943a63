#include "last_error.h"

#include <netutils/netutils.h>

namespace {

thread_local int lastError = NET_UTILS_OK;

}  // namespace

int netutils::fail(int error) noexcept {
    lastError = error;
    return error;
}

int netutils::failWithZero(int error) noexcept {
    lastError = error;
    return 0;
}

int NET_UTILS_GetLastError(void) {
    return lastError;
}
