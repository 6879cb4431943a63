#include "status.h"

#include <algorithm>
#include <array>

#include "json_text.h"
#include "xml.h"

namespace veltasim {
namespace {

struct Group {
    const char* text;
    const char* subStatus;
    int httpStatus;
};

constexpr std::array kGroups{
    Group{"Unknown Status", "unknown", 400},       Group{"OK", "ok", 200},
    Group{"Device Busy", "deviceBusy", 503},       Group{"Device Error", "deviceError", 403},
    Group{"Invalid Operation", "notSupport", 403}, Group{"Invalid Format", "badXmlFormat", 400},
    Group{"Content Error", "badXmlContent", 400},  Group{"Reboot Required", "rebootRequired", 200},
};

// Those whose subStatusCode is not that of their group.
constexpr std::array kSpecial{
    badParameter("badParameters"),
    kInternalError,
    kBadJsonFormat,
    kBadIpv4Address,
    kBadJsonContent,
    kFaceLibraryIdError,
    kPicFormatError,
    kTimeFormatError,
    kCardNoNotExist,
    kDeviceCardFull,
    kDeleteNoExistFace,
    kTooManyStreams,
    kErrorFingerId,
    kErrorFingerPrintType,
    kEmployeeNoNotExist,
    kEmployeeNoAlreadyExist,
    kCardNoAlreadyExist,
    kFingerPrintDataLenZero,
    kIllegalCardReaderNo,
    kCardReaderOffline,
    kPictureNotExist,
    kFingerprintFull,
    kEndBeforeBegin,
    kFingerPrintIdAlreadyExist,
    kDeviceUserFull,
    kDeviceFaceFull,
    kAlreadyHasFace,
    kCardFullPerUser,
    kFingerprintFullPerUser,
};

const Group& groupOf(Status::Code code) {
    const auto index = static_cast<size_t>(code);
    return kGroups[index < kGroups.size() ? index : 0];
}

const char* textOf(Status::Code code) {
    return groupOf(code).text;
}

std::string statusXml(const std::string& target, const Status& status) {
    pugi::xml_document document;
    pugi::xml_node root = addRoot(document, "ResponseStatus");
    addText(root, "request", target);
    addText(root, "statusCode", std::to_string(static_cast<int>(status.code)));
    addText(root, "statusString", textOf(status.code));
    addText(root, "subStatusCode", status.subStatus);
    if (status.errorCode != 0) {
        addText(root, "errorCode", std::to_string(status.errorCode));
        addText(root, "errorMsg", status.errorMessage);
    }
    return toText(document);
}

}  // namespace

std::string statusJson(const Status& status) {
    JsonText json;
    json.add("statusCode", static_cast<int64_t>(status.code))
        .add("statusString", textOf(status.code))
        .add("subStatusCode", status.subStatus);
    if (status.errorCode != 0) json.add("errorCode", status.errorCode).add("errorMsg", status.errorMessage);
    return json.text();
}

Reply statusReply(const std::string& target, int httpStatus, const Status& status) {
    if (target.find("format=json") != std::string::npos) return {httpStatus, kJsonType, statusJson(status)};
    return {httpStatus, kXmlType, statusXml(target, status)};
}

Reply statusReply(const std::string& target, const Status& status) {
    return statusReply(target, groupOf(status.code).httpStatus, status);
}

Reply statusReply(const std::string& target, uint32_t errorCode) {
    const auto code = static_cast<Status::Code>(errorCode >> 28U);
    const auto* special = std::find_if(kSpecial.begin(), kSpecial.end(), [errorCode](const Status& status) {
        return status.errorCode == errorCode;
    });
    const char* subStatus = special == kSpecial.end() ? groupOf(code).subStatus : special->subStatus;
    return statusReply(target, {code, subStatus, errorCode, subStatus});
}

}  // namespace veltasim
