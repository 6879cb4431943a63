// The device's clock and time zone.

#include <xlog/xlog.h>
#include <velta/result.h>

#include "device/CVeltaDevice.h"
#include "gateway/JsonText.h"
#include "translate/XmlDocument.h"
#include "translate/XmlResource.h"
#include "translate/system/LocalTime.h"

namespace {

constexpr const char* kTimePath = "/VELTA/System/time";
constexpr const char* kTimeZonePath = "/VELTA/System/time/timeZone";
constexpr const char* kManual = "manual";

// Reads the device's time zone, a plain text. Otherwise the error number, with the status that the device
// reports in answer: a device that says "fine" instead of a time zone is not taken at its word.
uint32_t readTimeZone(CVeltaDevice& device, std::string& timeZone, std::string& answer) {
    std::string reply;
    const int32_t sent = device.sendHttpReqToDevice(reply, kTimeZonePath, "", CVeltaDevice::kGet, "");
    if (sent == 0 && reply.find("CST") != std::string::npos) {
        timeZone = reply.c_str();  // without the zero character at its end
        return VELTA_OK;
    }
    xlog_format(XLOG_ERROR, "VELTADEV", "[%s(%d)] veltaGetTimeZoneParam failed", __func__, __LINE__);
    const uint32_t code = device.parseVELTAResponseStatus(answer, reply);
    return code != VELTA_OK ? code : velta::kDeviceError;
}

// What a time zone says about daylight saving, from its mark to the end.
std::string daylightPart(const std::string& timeZone) {
    const size_t at = timeZone.find("DST");
    return at != std::string::npos ? timeZone.substr(at) : "";
}

bool readHostTime(const std::string& body, std::string& localTime) {
    const char* fault = nullptr;
    Json::Value root;
    if (!velta::parseJson(body, root) || !root.isObject()) {
        fault = "Parse json req failed";
    } else if (const Json::Value& time = root["Time"]; !time.isObject()) {
        fault = "Set dev net Time param error";
    } else if (!time["timeMode"].isString() || !time["localTime"].isString()) {
        fault = "Set dev Time param error";
    } else if (!checkLocalTimeFormat(time["localTime"].asString())) {
        fault = "Set dev Time param  localTime is error";
    } else if (time["timeMode"].asString() != kManual) {
        fault = "Set dev Time param  timeMode is error";
    } else {
        localTime = time["localTime"].asString();
        return true;
    }
    xlog_format(XLOG_ERROR, "VELTADEV", "[%s(%d)] %s", __func__, __LINE__, fault);
    return false;
}

std::string timeDocument(const std::string& localTime, const std::string& timeZone) {
    return velta::kXmlDeclaration +
           velta::xmlElement("Time",
                             velta::xmlElement("timeMode", kManual) +
                                 velta::xmlElement("localTime", localTime) +
                                 velta::xmlElement("timeZone", velta::xmlEscaped(timeZone)),
                             velta::kXmlRoot);
}

// Setting the clock keeps what the device knows about daylight saving.
uint32_t setTime(CVeltaDevice& device, const std::string& body, std::string& answer) {
    std::string localTime;
    if (!readHostTime(body, localTime)) return VELTA_E_BAD_PARAMETER;
    std::string timeZone;
    if (const uint32_t code = readTimeZone(device, timeZone, answer); code != VELTA_OK) return code;
    timeZone = getCSTFromJsonTime(localTime) + daylightPart(timeZone);

    std::string reply;
    const int32_t sent = device.sendHttpReqToDevice(reply, kTimePath, timeDocument(localTime, timeZone),
                                                    CVeltaDevice::kPut, "");
    if (sent != 0) answer = reply;
    return device.parseVELTAResponseStatus(answer, reply);
}

uint32_t setTimeZone(CVeltaDevice& device, const std::string& body, std::string& answer) {
    Json::Value root;
    if (!velta::parseJson(body, root) || !root.isObject() || !root["timeZone"].isString() ||
        !isValidTimeZone(root["timeZone"].asString())) {
        xlog_format(XLOG_ERROR, "VELTADEV", "[%s(%d)] json parse fail", __func__, __LINE__);
        return VELTA_E_BAD_PARAMETER;
    }
    std::string reply;
    device.sendHttpReqToDevice(reply, kTimeZonePath, root["timeZone"].asString(), CVeltaDevice::kPut, "");
    return device.parseVELTAResponseStatus(answer, reply);
}

}  // namespace

// A refusal of the credentials counts as an answer: its document is looked at like any other.
void CVeltaDevice::veltaGetTimeMngParam(int& code, std::string& answer) {
    std::string reply;
    code = sendHttpReqToDevice(reply, kTimePath, "", kGet, "");
    if (code == kTransportFailure) {
        xlog_format(XLOG_ERROR, "VELTADEV", "[%s(%d)] veltaGetTimeMngParam failed", __func__, __LINE__);
        code = static_cast<int>(parseVELTAResponseStatus(answer, reply));
    } else if (!transTimeMngXml2Json(reply, answer)) {
        const uint32_t reported = parseVELTAResponseStatus(answer, reply);
        code = static_cast<int>(reported == VELTA_E_BAD_PARAMETER ? velta::kDeviceError : reported);
    }
}

void CVeltaDevice::veltaSetTimeMngParam(int& code, const std::string& body, std::string& answer) {
    code = static_cast<int>(setTime(*this, body, answer));
}

void CVeltaDevice::veltaGetTimeZoneParam(int& code, std::string& answer) {
    std::string timeZone;
    const uint32_t result = readTimeZone(*this, timeZone, answer);
    code = static_cast<int>(result);
    if (result != VELTA_OK) return;
    Json::Value root;
    root["timeZone"] = timeZone;
    answer = velta::writeJson(root);
}

void CVeltaDevice::veltaSetTimeZoneParam(int& code, const std::string& body, std::string& answer) {
    code = static_cast<int>(setTimeZone(*this, body, answer));
}

bool CVeltaDevice::transTimeMngXml2Json(const std::string& deviceXml, std::string& answer) {
    const auto localTime = velta::rootChildText(deviceXml, "localTime");
    if (!localTime) {
        xlog_format(XLOG_ERROR, "VELTADEV", "[%s(%d)] xml root get failed", __func__, __LINE__);
        return false;
    }
    Json::Value root;
    root["Time"]["localTime"] = *localTime;
    root["Time"]["timeMode"] = kManual;
    answer = velta::writeJson(root);
    return true;
}
