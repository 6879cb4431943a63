/* Why the last call into the runtime failed. Both values belong to the calling thread and stand until its
 * next failing call; a successful call leaves them alone. */
#ifndef XPR_ERROR_H
#define XPR_ERROR_H

#ifdef __cplusplus
extern "C" {
#endif

/* Results of the runtime's functions, and the values of XPR_GetLastError. */
enum {
    XPR_OK = 0,
    XPR_FAILED = -1,             /* the operating system refused: XPR_GetSystemLastError says why */
    XPR_ERROR_PARAMETER = -2,    /* null pointer, unknown handle or id, value out of range */
    XPR_ERROR_TIMEOUT = -3,      /* the time ran out; the call may be repeated */
    XPR_ERROR_OUT_OF_MEMORY = -4 /* an object of the runtime could not be allocated */
};

/* The runtime's own error (a negative constant above) of this thread's last failing call; XPR_OK before. */
int XPR_GetLastError(void);

/* The operating system's error number (errno) behind it; 0 where the operating system took no part. */
int XPR_GetSystemLastError(void);

#ifdef __cplusplus
}
#endif

#endif
