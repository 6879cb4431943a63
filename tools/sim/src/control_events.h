#pragma once

#include <json/json.h>

#include <stdexcept>
#include <string>

#include <veltasim/event.h>

namespace veltasim {

// Asks for something that is not there, or in a way that makes no sense.
struct ControlRefused : std::runtime_error {
    ControlRefused(int httpStatus, const std::string& what) : std::runtime_error(what), status(httpStatus) {}
    int status;
};

// The event that the members describe; "count" is none of its own.
AccessEvent accessEventFrom(const Json::Value& json);
Alarm alarmFrom(const Json::Value& json);

}  // namespace veltasim
