/* Logging. One line per call, stamped with time, level, module and thread.
 *
 * Lines carry text that devices sent: control characters are written as \xNN, and a line is cut at
 * XLOG_MAX_LINE bytes, so that no device can forge lines or flood a log with one message. Callers never pass
 * credentials, biometric templates or picture bytes. */
#ifndef XLOG_XLOG_H
#define XLOG_XLOG_H

#if defined(__GNUC__)
#define XLOG_PRINTF __attribute__((format(printf, 3, 4)))
/* A shared library that holds this one exports the two settings, so that its loader can reach them. */
#define XLOG_EXPORT __attribute__((visibility("default")))
#else
#define XLOG_PRINTF
#define XLOG_EXPORT
#endif

#ifdef __cplusplus
extern "C" {
#endif

enum {
    XLOG_DEBUG = 2,
    XLOG_INFO = 3,
    XLOG_WARNING = 4,
    XLOG_ERROR = 5, /* a failure that somebody should look at */
    XLOG_OFF = 6    /* as a threshold only: nothing is logged */
};

#define XLOG_MAX_LINE 1024

/* Logs a printf-style line. level: XLOG_DEBUG to XLOG_ERROR; lines below the threshold cost a comparison.
 * Keeps errno. Never throws. [any thread, callbacks included] */
void xlog_format(int level, const char* module, const char* format, ...) XLOG_PRINTF;

/* The threshold: lines of this level and above are logged. Initially XLOG_ERROR. [any thread] */
XLOG_EXPORT void xlog_set_level(int level);

/* Receives each line: escaped, cut, zero-terminated, without stamp or line feed; valid during the call only.
 * One call at a time, on the thread that logs. It must not log, and must not call the library that logs. */
typedef void (*xlog_sink)(int level, const char* module, const char* line, void* user);

/* Sends lines to sink instead of standard error; null goes back to standard error. When it returns, the sink
 * that was set before is not running and will not be called again. [any thread, not inside a sink] */
XLOG_EXPORT void xlog_set_sink(xlog_sink sink, void* user);

#ifdef __cplusplus
}
#endif

#endif
