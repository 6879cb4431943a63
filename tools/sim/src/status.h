#pragma once

#include <cstdint>
#include <stdexcept>
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
constexpr uint32_t kBadParameters = 0x60000001;
constexpr Status badParameter(const char* name) {
    return {Status::Code::ContentError, "badParameters", kBadParameters, name};
}

// A number's upper four bits are the status code.
constexpr Status numbered(uint32_t errorCode, const char* name) {
    return {static_cast<Status::Code>(errorCode >> 28U), name, errorCode, name};
}

constexpr Status kInternalError = numbered(0x30000014, "internalError");
constexpr Status kBadJsonFormat = numbered(0x50000002, "badJsonFormat");
constexpr Status kBadIpv4Address = numbered(0x60000004, "badIPv4Address");
constexpr Status kBadJsonContent = numbered(0x60000017, "badJsonContent");
constexpr Status kFaceLibraryIdError = numbered(0x60000031, "faceLibraryIDError");
constexpr Status kPicFormatError = numbered(0x6000003B, "picFormatError");
constexpr Status kTimeFormatError = numbered(0x60000041, "timeFormatError");
constexpr Status kCardNoNotExist = numbered(0x60006003, "cardNoNotExist");
constexpr Status kDeviceCardFull = numbered(0x60006008, "deviceCardFull");
constexpr Status kDeleteNoExistFace = numbered(0x60006015, "deleteNoExistFace");
constexpr Status kTooManyStreams = numbered(0x60006018, "deployExceedMax");
constexpr Status kErrorFingerId = numbered(0x60006019, "errorFingerID");
constexpr Status kErrorFingerPrintType = numbered(0x6000601A, "errorFingerPrintType");
constexpr Status kEmployeeNoNotExist = numbered(0x6000601F, "employeeNoNotExist");
constexpr Status kEmployeeNoAlreadyExist = numbered(0x60006020, "employeeNoAlreadyExist");
constexpr Status kCardNoAlreadyExist = numbered(0x60006033, "cardNoAlreadyExist");
constexpr Status kFingerPrintDataLenZero = numbered(0x60006034, "fingerPrintDataLenZero");
constexpr Status kIllegalCardReaderNo = numbered(0x60006035, "illegalCardReaderNo");
constexpr Status kCardReaderOffline = numbered(0x60006038, "cardReaderOffline");
constexpr Status kPictureNotExist = numbered(0x6000603A, "pictureNotExist");
constexpr Status kFingerprintFull = numbered(0x60006040, "fingerprintFull");
constexpr Status kEndBeforeBegin = numbered(0x60006048, "endtimeEarlierThanBegintime");
constexpr Status kFingerPrintIdAlreadyExist = numbered(0x6000604B, "fingerPrintIDAlreadyExist");
constexpr Status kDeviceUserFull = numbered(0x60007000, "deviceUserFull");
constexpr Status kDeviceFaceFull = numbered(0x60007001, "deviceFaceFull");
constexpr Status kAlreadyHasFace = numbered(0x60007004, "deviceUserAlreadyExistFace");
constexpr Status kCardFullPerUser = numbered(0x60007005, "cardFullPerUser");
constexpr Status kFingerprintFullPerUser = numbered(0x60007006, "fingerprintFullPerUser");

// Thrown by whatever cannot do what a request asks; the request is answered with the status.
struct Refused : std::runtime_error {
    explicit Refused(const Status& why) : std::runtime_error(why.subStatus), status(why) {}
    Status status;
};

std::string statusJson(const Status& status);
// The ResponseStatus document; in JSON if the target asks for JSON.
Reply statusReply(const std::string& target, int httpStatus, const Status& status);
// With the HTTP status that belongs to the status code.
Reply statusReply(const std::string& target, const Status& status);
// The same for any error code.
Reply statusReply(const std::string& target, uint32_t errorCode);

}  // namespace veltasim
