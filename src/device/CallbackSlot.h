#ifndef VELTA_DEVICE_CALLBACKSLOT_H
#define VELTA_DEVICE_CALLBACKSLOT_H

#include <xpr/mutex.h>

#include <condition_variable>
#include <cstdint>
#include <memory>
#include <thread>

namespace velta {

/* A host's callback with its user pointer. It runs without any lock held, on one thread at a time. The
 * callback itself may set the slot, and may free its owner. */
template <class Callback>
class CallbackSlot {
 public:
    void set(Callback callback, void* user) {
        const XPR_Guard guard(state_->mutex);
        state_->callback = callback;
        state_->user = user;
    }

    /* Waits for a call that is under way, unless that call is the caller: a callback that was replaced before
     * never runs again. */
    void waitForCall() {
        const XPR_Guard guard(state_->mutex);
        const uint64_t call = state_->calls;
        while (state_->running && state_->calls == call && state_->runner != std::this_thread::get_id())
            state_->ended.wait(state_->mutex);
    }

    void setAndWait(Callback callback, void* user) {
        set(callback, user);
        waitForCall();
    }

    /* Takes the callback out for good. If the caller is the callback, nobody waits for it any more: it is freeing
     * the owner, and would itself wait for those who do. */
    void retire() {
        const XPR_Guard guard(state_->mutex);
        state_->callback = nullptr;
        if (!state_->running || state_->runner != std::this_thread::get_id()) return;
        state_->running = false;
        state_->ended.notify_all();
    }

    bool isSet() const {
        const XPR_Guard guard(state_->mutex);
        return state_->callback != nullptr;
    }

    /* Calls callback(arguments..., user). False when none is set. */
    template <class... Arguments>
    bool call(Arguments... arguments) {
        const std::shared_ptr<State> state = state_;  // outlives an owner that the callback frees
        Callback callback = nullptr;
        void* user = nullptr;
        {
            const XPR_Guard guard(state->mutex);
            if (state->callback == nullptr) return false;
            callback = state->callback;
            user = state->user;
            state->running = true;
            ++state->calls;
            state->runner = std::this_thread::get_id();
        }
        callback(arguments..., user);
        const XPR_Guard guard(state->mutex);
        state->running = false;
        state->ended.notify_all();
        return true;
    }

 private:
    struct State {
        xpr::xpr_mutex mutex;
        Callback callback XPR_GUARDED_BY(mutex) = nullptr;
        void* user XPR_GUARDED_BY(mutex) = nullptr;
        bool running XPR_GUARDED_BY(mutex) = false;
        uint64_t calls XPR_GUARDED_BY(mutex) = 0;
        std::thread::id runner XPR_GUARDED_BY(mutex);
        std::condition_variable_any ended;
    };
    std::shared_ptr<State> state_ = std::make_shared<State>();
};

}  // namespace velta

#endif
