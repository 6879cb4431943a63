#pragma once

#include <json/json.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <veltasim/device.h>

namespace veltasim {

using Devices = std::vector<Device*>;

struct Order {
    const Devices& devices;  // those that it is for
    const Json::Value& body;
    std::string_view target;

    // Parameters of the query.
    std::string text(const char* name) const;
    uint64_t number(const char* name, uint64_t otherwise) const;
};

struct Command {
    std::string_view method;
    std::string_view path;
    Json::Value (*run)(const Order&);  // throws ControlRefused, or what the device throws
    bool forAll;                       // unless one device is named; otherwise for the first
};

// Null: there is none.
const Command* findCommand(std::string_view method, std::string_view path);

}  // namespace veltasim
