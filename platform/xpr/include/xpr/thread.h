/* Joinable threads with a stack size of the caller's choice. */
#ifndef XPR_THREAD_H
#define XPR_THREAD_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef intptr_t XPR_HANDLE;
#define XPR_INVALID_HANDLE ((XPR_HANDLE)-1)

/* What a thread runs. Its result is not kept. It must not let a C++ exception out. */
typedef int (*XPR_ThreadFunction)(void* argument);

/* Starts a thread with a stack of stackSize bytes (0: the system's default; raised to the system's minimum).
 * Signals are blocked in it, for they are the host's business; only those that report a fault of the thread
 * itself are not, so that a crash handler of the host's sees it.
 * Returns a handle that XPR_Thread_Wait must take exactly once, or XPR_INVALID_HANDLE when the thread could
 * not be started. [any thread] */
XPR_HANDLE XPR_Thread_Create(XPR_ThreadFunction function, void* argument, uint32_t stackSize);

/* Waits, without limit, until the thread has ended, and gives back the handle and what it held.
 * Returns XPR_OK; XPR_ERROR_PARAMETER for XPR_INVALID_HANDLE; XPR_FAILED when called by the thread itself,
 * which leaves the handle valid. [any thread] */
int XPR_Thread_Wait(XPR_HANDLE thread);

#ifdef __cplusplus
}
#endif

#endif
