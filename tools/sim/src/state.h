#pragma once

#include <map>
#include <pugixml.hpp>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <veltasim/options.h>

#include "access/access.h"
#include "clock.h"
#include "reply.h"

namespace veltasim {

struct DeviceInfo {
    std::string deviceName;
    std::string deviceId;
    std::string deviceDescription = "Access controller";
    std::string location = "Main entrance";
    std::string systemContact = "Facility management";
    std::string model;
    std::string serialNumber;
    std::string macAddress;
    std::string firmwareVersion;
    std::string firmwareReleasedDate = "build 240115";
    std::string bootVersion = "V1.0.3";
    std::string bootReleasedDate = "230901";
    std::string hardwareVersion = "0x0";
    std::string deviceType = "ACS";
    std::string telecontrolId = "255";
};

// All that the device remembers. Its resources read and change it.
struct State {
    explicit State(const Options& options);

    DeviceInfo deviceInfo;
    Inventory inventory;
    std::vector<bool> outputIsHigh;  // the first one is number 1
    std::set<int> offlineProxies;
    Clock clock;
    std::vector<pugi::xml_document> networkInterfaces;              // the first one is number 1
    std::map<std::pair<std::string, std::string>, Reply> scripted;  // by method and path
    Access access;
};

}  // namespace veltasim
