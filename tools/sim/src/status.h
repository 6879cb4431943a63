#pragma once

#include <cstdint>
#include <string>

#include "reply.h"

namespace veltasim {

// How a device tells the outcome of a request, beside the HTTP status.
struct Status {
    enum class Code {
        Ok = 1,
        DeviceBusy,
        DeviceError,
        InvalidOperation,
        InvalidFormat,
        ContentError,
        RebootRequired
    };

    Code code;
    const char* subStatus;
    uint32_t errorCode = 0;  // 0: none
    const char* errorMessage = "";
};

constexpr Status kOk{Status::Code::Ok, "ok"};
constexpr Status kDeviceBusy{Status::Code::DeviceBusy, "deviceBusy"};
constexpr Status kDeviceError{Status::Code::DeviceError, "deviceError"};
constexpr Status kNotSupported{Status::Code::InvalidOperation, "notSupport", 0x40000001, "notSupport"};
constexpr Status kTooLarge{Status::Code::InvalidFormat, "badRequestLength"};
constexpr Status kBadXmlFormat{Status::Code::InvalidFormat, "badXmlFormat", 0x50000001, "badXmlFormat"};
constexpr Status kBadXmlContent{Status::Code::ContentError, "badXmlContent", 0x60000003, "badXmlContent"};
constexpr Status kTooManyStreams{Status::Code::ContentError, "deployExceedMax", 0x60006018,
                                 "deployExceedMax"};
constexpr Status kBadIpv4Address{Status::Code::ContentError, "badIPv4Address", 0x60000004, "badIPv4Address"};
constexpr uint32_t kBadParameters = 0x60000001;
constexpr Status badParameter(const char* name) {
    return {Status::Code::ContentError, "badParameters", kBadParameters, name};
}

std::string statusJson(const Status& status);
// The ResponseStatus document; in JSON if the target asks for JSON.
Reply statusReply(const std::string& target, int httpStatus, const Status& status);
// The same for any error code, with the HTTP status that belongs to it.
Reply statusReply(const std::string& target, uint32_t errorCode);

}  // namespace veltasim
