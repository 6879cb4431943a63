#include <errno.h>
#include <pthread.h>
#include <spdlog/pattern_formatter.h>
#include <spdlog/sinks/stdout_sinks.h>
#include <xlog/xlog.h>

#include <algorithm>
#include <atomic>
#include <memory>
#include <string>
#include <utility>

#include "line.h"

namespace {

std::atomic<int> threshold{XLOG_ERROR};

/* Guards all below. Error checking, so that a sink that logs in spite of its contract loses that line instead
 * of blocking the host for ever. */
pthread_mutex_t outputMutex = PTHREAD_ERRORCHECK_MUTEX_INITIALIZER_NP;
xlog_sink hostSink = nullptr;
void* hostSinkUser = nullptr;
spdlog::sinks::sink* standardError = nullptr;  // made by the first line that needs it
bool unloaded = false;

class OutputLock {
 public:
    OutputLock() noexcept : held_(pthread_mutex_lock(&outputMutex) == 0) {}
    ~OutputLock() {
        if (held_) pthread_mutex_unlock(&outputMutex);
    }
    OutputLock(const OutputLock&) = delete;
    OutputLock& operator=(const OutputLock&) = delete;
    bool held() const { return held_; }

 private:
    bool held_;
};

class ErrnoKept {
 public:
    ErrnoKept() = default;
    ~ErrnoKept() { errno = saved_; }
    ErrnoKept(const ErrnoKept&) = delete;
    ErrnoKept& operator=(const ErrnoKept&) = delete;

 private:
    int saved_ = errno;
};

void writeToStandardError(int level, const char* module, std::string_view line) {
    if (unloaded) return;
    if (standardError == nullptr) {
        auto sink = std::make_unique<spdlog::sinks::stderr_sink_st>();
        sink->set_formatter(std::make_unique<spdlog::pattern_formatter>("%Y-%m-%d %H:%M:%S.%e %L %n %t %v"));
        standardError = sink.release();
    }
    static constexpr spdlog::level::level_enum kLevels[] = {spdlog::level::debug, spdlog::level::info,
                                                            spdlog::level::warn, spdlog::level::err};
    standardError->log(
        {spdlog::source_loc{}, module, kLevels[level - XLOG_DEBUG], {line.data(), line.size()}});
}

void write(int level, const char* module, const xlog::Line& line) {
    const OutputLock lock;
    if (!lock.held()) return;
    if (hostSink != nullptr) {
        hostSink(level, module, line.text(), hostSinkUser);
    } else {
        writeToStandardError(level, module, line.view());
    }
}

/* Other threads may still log when the host exits without shutting down: their lines are dropped from now on.
 * If one is being written at this moment, its sink stays. */
__attribute__((destructor)) void releaseStandardError() {
    if (pthread_mutex_trylock(&outputMutex) != 0) return;
    delete std::exchange(standardError, nullptr);
    unloaded = true;
    pthread_mutex_unlock(&outputMutex);
}

}  // namespace

void xlog_format(int level, const char* module, const char* format, ...) {
    if (level < threshold.load(std::memory_order_relaxed) || level > XLOG_ERROR) return;
    const ErrnoKept errnoKept;
    try {
        va_list arguments;
        va_start(arguments, format);
        const xlog::Line line(format, arguments);
        va_end(arguments);
        write(level, module == nullptr ? "" : module, line);
    } catch (
        ...) {  // NOLINT(bugprone-empty-catch): a line that cannot be written is lost, whoever logs goes on
    }
}

void xlog_set_level(int level) {
    threshold.store(std::clamp<int>(level, XLOG_DEBUG, XLOG_OFF), std::memory_order_relaxed);
}

void xlog_set_sink(xlog_sink sink, void* user) {
    const OutputLock lock;
    if (!lock.held()) return;
    hostSink = sink;
    hostSinkUser = user;
}
