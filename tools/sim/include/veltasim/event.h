// What the device reports on its alert stream.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace veltasim {

enum class PictureSize { Small, Medium, Large };  // about 2, 10 and 60 KB

// A built-in JPEG; lives as long as the program.
std::string_view picture(PictureSize size);

// Further members of an event: name, value as JSON text ("7", "\"text\"", "{...}"). A name that the event has
// already replaces its value. Text that is not JSON makes the send function (or, in Options, the constructor
// of Device) throw std::invalid_argument.
using MoreMembers = std::vector<std::pair<std::string, std::string>>;

// Somebody at a reader: goes out as eventType "AccessControllerEvent".
struct AccessEvent {
    int major = 1;
    int minor = 9;
    std::string name = "Ada Example";
    std::string employeeNo = "1001";
    std::string cardNo = "0123456789";
    int cardReaderNo = 1;
    int doorNo = 1;
    std::string verifyMode = "cardOrFace";
    std::string attendance = "undefined";
    std::string picture = {};      // JPEG (or any) bytes of a following picture part; empty: none
    std::string dateTime = {};     // empty: the device's time now
    MoreMembers moreMembers = {};  // inside "AccessControllerEvent"
};

// Anything else: the same envelope without "AccessControllerEvent".
struct Alarm {
    std::string eventType = "tamperDetection";
    std::string eventState = "active";
    std::string eventDescription = "Tamper detection alarm";
    int channelId = 1;
    std::string picture = {};
    std::string dateTime = {};
    MoreMembers moreMembers = {};  // beside "eventType"
};

}  // namespace veltasim
