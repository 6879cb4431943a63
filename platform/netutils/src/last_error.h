#ifndef NETUTILS_LAST_ERROR_H
#define NETUTILS_LAST_ERROR_H

namespace netutils {

/* Remembers the error for the calling thread and returns it. */
int fail(int error) noexcept;

/* The same, for functions that return 0 when they fail. */
int failWithZero(int error) noexcept;

}  // namespace netutils

#endif
