// What a connection status means to somebody in front of the device.
#pragma once

#include <json/value.h>

#include <optional>
#include <string>

#include "device_address.h"
#include "failure.h"

namespace host {

struct StatusMeaning {
    int status;
    ExitCode exitCode;
    const char* meaning;
    const char* hint;
};
const StatusMeaning& meaningOf(int status);

// One line, and the same as JSON. With a probe its finding explains why a device is not reached.
std::string statusLine(const DeviceAddress& device, int status,
                       const std::optional<Reachability>& probed = {});
Json::Value statusJson(const DeviceAddress& device, int status,
                       const std::optional<Reachability>& probed = {});

}  // namespace host
