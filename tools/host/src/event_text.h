// An event as a line and as JSON.
#pragma once

#include <json/value.h>

#include <string>

#include "device_address.h"
#include "inbox.h"

namespace host {

struct EventView {
    DeviceAddress device;
    std::string sourceId;
    std::string time;
    bool isAlarm = false;  // a generic alarm, not an access-control event
    bool isActive = false;
    int channel = 0;
    std::string description;
    Json::Value details;  // the device's own words; null when the record holds only their beginning
    size_t pictureBytes = 0;
    std::string pictureProblem;
    std::string pictureFile;  // empty: not saved

    // Saves the picture if a folder is given. Throws Failure.
    EventView(const DeviceAddress& from, const EventReport& report, const std::string& pictureFolder);

    std::string line() const;
    Json::Value json() const;
};

}  // namespace host
