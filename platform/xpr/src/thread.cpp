#include <errno.h>
#include <limits.h>
#include <pthread.h>
#include <signal.h>
#include <unistd.h>
#include <xpr/thread.h>

#include <algorithm>
#include <memory>
#include <new>

#include "failure.h"

using xpr::fail;

namespace {

struct Thread {
    XPR_ThreadFunction function;
    void* argument;
    pthread_t id;
};

void* run(void* start) {
    const Thread* thread = static_cast<const Thread*>(start);
    thread->function(thread->argument);
    return nullptr;
}

/* Faults stay deliverable: they concern the thread that causes them, and blocking them would only keep the
 * host's crash handler from running. */
constexpr int kFaults[] = {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGSYS, SIGABRT};

/* Blocks signals in the calling thread for a scope; a thread started meanwhile inherits that. */
class SignalsBlocked {
 public:
    SignalsBlocked() {
        sigset_t blocked;
        sigfillset(&blocked);
        for (const int fault : kFaults)
            sigdelset(&blocked, fault);
        pthread_sigmask(SIG_BLOCK, &blocked, &before_);
    }
    ~SignalsBlocked() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
    SignalsBlocked(const SignalsBlocked&) = delete;
    SignalsBlocked& operator=(const SignalsBlocked&) = delete;

 private:
    sigset_t before_{};
};

size_t acceptableStackSize(uint32_t wanted) {
    const size_t page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    const size_t size = std::max<size_t>(wanted, static_cast<size_t>(PTHREAD_STACK_MIN));
    return (size + page - 1) / page * page;
}

int start(Thread* thread, uint32_t stackSize) {
    pthread_attr_t attributes;
    int error = pthread_attr_init(&attributes);
    if (error != 0) return error;
    if (stackSize != 0) error = pthread_attr_setstacksize(&attributes, acceptableStackSize(stackSize));
    if (error == 0) {
        const SignalsBlocked blocked;
        error = pthread_create(&thread->id, &attributes, run, thread);
    }
    pthread_attr_destroy(&attributes);
    return error;
}

}  // namespace

XPR_HANDLE XPR_Thread_Create(XPR_ThreadFunction function, void* argument, uint32_t stackSize) {
    if (function == nullptr) {
        fail(XPR_ERROR_PARAMETER);
        return XPR_INVALID_HANDLE;
    }
    std::unique_ptr<Thread> thread(new (std::nothrow) Thread{function, argument, {}});
    if (!thread) {
        fail(XPR_ERROR_OUT_OF_MEMORY);
        return XPR_INVALID_HANDLE;
    }
    const int error = start(thread.get(), stackSize);
    if (error != 0) {
        fail(XPR_FAILED, error);
        return XPR_INVALID_HANDLE;
    }
    return reinterpret_cast<XPR_HANDLE>(thread.release());
}

int XPR_Thread_Wait(XPR_HANDLE handle) {
    if (handle == XPR_INVALID_HANDLE || handle == 0) return fail(XPR_ERROR_PARAMETER);
    // NOLINTNEXTLINE(performance-no-int-to-ptr): handles are integers by contract
    std::unique_ptr<Thread> thread(reinterpret_cast<Thread*>(handle));
    const int error =
        pthread_equal(thread->id, pthread_self()) != 0 ? EDEADLK : pthread_join(thread->id, nullptr);
    if (error != 0) {
        (void)thread.release();  // the handle stays valid
        return fail(XPR_FAILED, error);
    }
    return XPR_OK;
}
