#pragma once

#include <cstdint>
#include <string>

#include <veltasim/event.h>

#include "message.h"

namespace veltasim {

// What every event says about the device that sends it.
struct Sender {
    std::string ipAddress;
    uint16_t port = 0;
    std::string macAddress;
    std::string deviceId;
    std::string deviceName;
    std::string dateTime;  // now
};

inline const std::string kBoundary = "velta_events";

// Throws std::invalid_argument if a value is not JSON.
void requireJson(const MoreMembers& members);

// Parts of the stream. Further members must be JSON.
Message accessEventPart(const AccessEvent& event, uint64_t serialNo, const Sender& sender);
Message alarmPart(const Alarm& alarm, const Sender& sender);
bool hasPicture(const Message& event);  // one of the two above
Message heartbeatPart(const Sender& sender);
// Tells a subscriber that there are too many.
Message tooManyStreamsPart();

}  // namespace veltasim
