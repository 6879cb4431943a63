/* A host that is armed for the events of every device, and looks at what it is given. */
#ifndef VELTA_FUZZ_EVENT_HOST_H
#define VELTA_FUZZ_EVENT_HOST_H

#include <string>

#include "device/CVeltaDevice.h"

namespace fuzz {

class EventHost {
 public:
    static EventHost& instance();

    /* What the alarm worker does with a message, whichever device it names. */
    void deliver(const std::string& message);

 private:
    EventHost();
    ~EventHost();
    EventHost(const EventHost&) = delete;
    EventHost& operator=(const EventHost&) = delete;
    static void look(void* instance, char* sourceId, tagEVENT_BASE_INFO* base, tagEVENT_EXT_INFO* ext,
                     void* user);

    CVeltaDevice session_;
};

}  // namespace fuzz

#endif
