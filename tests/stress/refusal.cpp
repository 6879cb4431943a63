#include "refusal.h"

#include <curl/curl.h>
#include <errno.h>
#include <xpr/thread.h>
#include <xpr/timer.h>

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <new>
#include <pugixml.hpp>
#include <utility>

#include "process.h"

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define VELTA_SANITIZED 1
#endif

namespace {

thread_local bool counted = false;
std::atomic<bool> refusing{false};
std::atomic<bool> refused{false};
std::atomic<bool> staysRefused{false};
std::atomic<long> left{0};

bool mustFail() {
    if (!counted || !refusing) return false;
    const long now = --left;
    const bool fail = now == 0 || (now < 0 && staysRefused);
    if (!fail) return false;
    refused = true;
    errno = ENOMEM;
    return true;
}

}  // namespace

// NOLINTBEGIN(bugprone-reserved-identifier): the C library and the linker know these by their names
#ifndef VELTA_SANITIZED
// All of the process.
extern "C" {
void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* block, size_t size);

__attribute__((visibility("default"))) void* malloc(size_t size) {
    return mustFail() ? nullptr : __libc_malloc(size);
}
__attribute__((visibility("default"))) void* calloc(size_t count, size_t size) {
    return mustFail() ? nullptr : __libc_calloc(count, size);
}
__attribute__((visibility("default"))) void* realloc(void* block, size_t size) {
    return mustFail() ? nullptr : __libc_realloc(block, size);
}
}

#else
// A sanitizer needs malloc for itself: what can be replaced above it.
void* operator new(size_t size) {
    void* const block = mustFail() ? nullptr : std::malloc(size);
    if (block == nullptr) throw std::bad_alloc();
    return block;
}
void* operator new(size_t size, const std::nothrow_t&) noexcept {
    return mustFail() ? nullptr : std::malloc(size);
}
void operator delete(void* block) noexcept {
    std::free(block);
}
void operator delete(void* block, const std::nothrow_t&) noexcept {
    std::free(block);
}
void operator delete(void* block, size_t) noexcept {
    std::free(block);
}

namespace {

void* allocate(size_t size) {
    return mustFail() ? nullptr : std::malloc(size);
}
void* allocateZeros(size_t count, size_t size) {
    return mustFail() ? nullptr : std::calloc(count, size);
}
void* allocateAgain(void* block, size_t size) {
    return mustFail() ? nullptr : std::realloc(block, size);
}
char* copyText(const char* text) {
    return mustFail() ? nullptr : strdup(text);
}
const bool replaced = [] {
    curl_global_init_mem(CURL_GLOBAL_NOTHING, allocate, std::free, allocateAgain, copyText, allocateZeros);
    pugi::set_memory_management_functions(allocate, std::free);
    return true;
}();

}  // namespace

// The XML parser of that library drops what it has read so far when memory ends.
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions() {
    return "leak:TiXmlNode::Identify\nleak:TiXmlElement::\n";
}
#endif

namespace {

struct Start {
    XPR_ThreadFunction function;
    void* argument;
};

int runCounted(void* argument) {
    const Start start = *static_cast<Start*>(argument);
    std::free(argument);
    counted = true;
    return start.function(start.argument);
}

XPR_TimerFunction timerFunction = nullptr;
std::atomic<bool> timerWanted{false};

int beat(int id, void* user) {
    if (!timerWanted) return 0;
    const int result = timerFunction(id, user);
    timerWanted = false;
    return result;
}

}  // namespace

extern "C" {
// The linker puts these in front of the functions that they are named after.
XPR_HANDLE __real_XPR_Thread_Create(XPR_ThreadFunction function, void* argument, uint32_t stackSize);
XPR_HANDLE __wrap_XPR_Thread_Create(XPR_ThreadFunction function, void* argument, uint32_t stackSize) {
    const bool before = std::exchange(counted, false);
    auto* start = static_cast<Start*>(std::malloc(sizeof(Start)));
    counted = before;
    *start = {function, argument};
    const XPR_HANDLE handle = __real_XPR_Thread_Create(runCounted, start, stackSize);
    if (handle == XPR_INVALID_HANDLE) std::free(start);
    return handle;
}

int __real_XPR_SetTimer(XPR_TimerFunction function, void* user, uint32_t intervalMs, int* timerId, int flags);
int __wrap_XPR_SetTimer(XPR_TimerFunction function, void* user, uint32_t, int* timerId, int flags) {
    timerFunction = function;
    return __real_XPR_SetTimer(beat, user, 1, timerId, flags);
}

void __wrap_XPR_Sleep(uint32_t) {
    std::this_thread::yield();
}
}
// NOLINTEND(bugprone-reserved-identifier)

namespace stress {

InLibrary::InLibrary() {
    counted = true;
}
InLibrary::~InLibrary() {
    counted = false;
}

void refuseAllocation(long at, bool forGood) {
    left = at;
    staysRefused = forGood;
    refused = false;
    refusing = true;
}

bool endRefusal() {
    refusing = false;
    return refused;
}

bool hasRefused() {
    return refused;
}

void runTimerOnce() {
    timerWanted = true;
    waitUntil([] { return !timerWanted; });
}

}  // namespace stress
