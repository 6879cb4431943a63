// Alarm messages on their way from the queue to the host's event records.
//
// Input: the message.

#include "event_host.h"
#include "support.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::EventHost::instance().deliver({reinterpret_cast<const char*>(data), size});
    return 0;
}
