// What goes to devices and comes back, kept in a file.
#pragma once

#include <map>
#include <mutex>
#include <string>
#include <utility>

#include "console.h"
#include "device_address.h"
#include "trace/har_file.h"
#include "trace/left_out.h"

namespace host {

// At most one at a time, and none while the plug-in is at work when it goes.
class Trace {
 public:
    // Throws Failure when the file can't be made.
    Trace(const std::string& path, Keep keep, Console& console);
    ~Trace();  // tells when exchanges are missing
    Trace(const Trace&) = delete;
    Trace& operator=(const Trace&) = delete;

    // From now on connections to this device are followed; its name is an IPv4 address.
    void follow(const DeviceAddress& device);

 private:
    const Keep keep_;
    Console& console_;
    HarFile file_;
    std::mutex mutex_;                                              // guards the rest
    std::map<std::pair<uint32_t, uint16_t>, std::string> devices_;  // by address and port as on the wire
    uint64_t connections_ = 0;
};

}  // namespace host
