#pragma once

#include <string>

#include <veltasim/options.h>

namespace veltasim {

struct DeviceInfo {
    std::string deviceName;
    std::string deviceId;
    std::string deviceDescription = "Access controller";
    std::string deviceLocation = "Main entrance";
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
    DeviceInfo deviceInfo;
};

}  // namespace veltasim
