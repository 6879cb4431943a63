#ifndef VELTA_MANAGER_SINGLETON_H
#define VELTA_MANAGER_SINGLETON_H

#include <xpr/mutex.h>

#include <atomic>

/* The one object of a class, made by the first caller of instance(). It lives until the library is unloaded.
 */
template <class T>
class singleton {
 public:
    virtual ~singleton() = default;
    singleton(const singleton&) = delete;
    singleton& operator=(const singleton&) = delete;

    /* Any thread. */
    static T& instance() {
        T* object = instance_.load(std::memory_order_acquire);
        if (object == nullptr) {
            const XPR_Guard guard(lock_);
            object = instance_.load(std::memory_order_relaxed);
            if (object == nullptr) {
                object = new T;
                instance_.store(object, std::memory_order_release);
            }
        }
        return *object;
    }

    /* The object if there is one already. */
    static T* existing() { return instance_.load(std::memory_order_acquire); }

    /* Frees the object. Only at unload, when nothing uses it any more. */
    static void release() { delete instance_.exchange(nullptr); }

 protected:
    singleton() = default;

 private:
    static inline std::atomic<T*> instance_{nullptr};
    static inline xpr::xpr_mutex lock_;
};

#endif
