// Device information: what a device says about itself.

#include <xlog/xlog.h>
#include <velta/result.h>

#include <array>
#include <iterator>
#include <string_view>

#include "device/CVeltaDevice.h"
#include "gateway/CXmlBase.h"
#include "gateway/JsonText.h"
#include "translate/XmlDocument.h"
#include "translate/XmlResource.h"

namespace {

constexpr const char* kPath = "/VELTA/System/deviceInfo";
constexpr size_t kMaxDeviceName = 32;  // bytes

enum class Kind { Name, Text, ControlId, Number };
enum class Put { Required, Optional };
enum class Get { Always, WhenPresent };  // Always: null when the device has no such element

// The members of the host's object, which are named like the device's elements, in the order in which they are
// checked and looked for. Devices want them in another order: place counts their elements from 0.
struct Member {
    const char* name;
    Kind kind;
    Put put;
    Get get;
    int error;
    size_t place;
};
constexpr Member kMembers[] = {
    {"deviceName", Kind::Name, Put::Required, Get::Always, 2, 0},
    {"deviceID", Kind::Text, Put::Required, Get::Always, 2, 1},
    {"deviceDescription", Kind::Text, Put::Optional, Get::WhenPresent, 3, 2},
    {"systemContact", Kind::Text, Put::Optional, Get::WhenPresent, 4, 3},
    {"model", Kind::Text, Put::Required, Get::Always, 5, 4},
    {"serialNumber", Kind::Text, Put::Required, Get::Always, 5, 5},
    {"macAddress", Kind::Text, Put::Required, Get::Always, 5, 6},
    {"firmwareVersion", Kind::Text, Put::Required, Get::Always, 5, 7},
    {"firmwareReleasedDate", Kind::Text, Put::Optional, Get::WhenPresent, 6, 8},
    {"encoderVersion", Kind::Text, Put::Optional, Get::WhenPresent, 10, 12},
    {"encoderReleasedDate", Kind::Text, Put::Optional, Get::WhenPresent, 11, 13},
    {"bootVersion", Kind::Text, Put::Optional, Get::Always, 7, 9},
    {"bootReleasedDate", Kind::Text, Put::Optional, Get::WhenPresent, 8, 10},
    {"hardwareVersion", Kind::Text, Put::Optional, Get::WhenPresent, 9, 11},
    {"decoderVersion", Kind::Text, Put::Optional, Get::WhenPresent, 12, 14},
    {"decoderReleasedDate", Kind::Text, Put::Optional, Get::WhenPresent, 13, 15},
    {"softwareVersion", Kind::Text, Put::Optional, Get::WhenPresent, 14, 16},
    {"deviceType", Kind::Text, Put::Required, Get::Always, 15, 17},
    {"telecontrolID", Kind::ControlId, Put::Optional, Get::WhenPresent, 16, 18},
    {"operationSystem", Kind::Text, Put::Optional, Get::WhenPresent, 17, 19},
    {"devType", Kind::Number, Put::Optional, Get::WhenPresent, 18, 20},
};

bool isAllowed(const Json::Value& value, Kind kind) {
    switch (kind) {
        case Kind::Name:
            return value.isString() && value.asString().size() <= kMaxDeviceName;
        case Kind::Text:
            return value.isString();
        case Kind::ControlId:
            return value.isInt() && value.asInt() >= 1 && value.asInt() <= 255;
        case Kind::Number:
            return value.isInt();
    }
    return false;
}

std::string textOf(const Json::Value& value) {
    return value.isString() ? value.asString() : std::to_string(value.asInt());
}

}  // namespace

uint32_t CVeltaDevice::veltaGetDeviceInfo(std::string& answer) {
    return velta::readXmlResource(*this, kPath, transDeviceInfoXml2Json, answer);
}

uint32_t CVeltaDevice::veltaPutDeviceInfo(std::string& answer, const Json::Value& body) {
    std::string document;
    if (!transDeviceInfoJson2Xml(document, body)) {
        xlog_format(XLOG_ERROR, "VELTADEV", "[%s(%d)] transDeviceInfoJson2Xml failed", __func__, __LINE__);
        return VELTA_E_BAD_PARAMETER;
    }
    return velta::writeXmlResource(*this, kPath, document, answer);
}

// Looks for each element behind the one found last: what a device writes in another order counts as absent.
bool CVeltaDevice::transDeviceInfoXml2Json(std::string& answer, const std::string& deviceXml) {
    CXmlBase xml;
    if (xml.Parse(deviceXml.c_str()) == nullptr || !xml.FindElem("DeviceInfo")) {
        xlog_format(XLOG_ERROR, "VELTADEV", "[%s(%d)] param err 1", __func__, __LINE__);
        return false;
    }
    if (!xml.IntoElem()) {
        xlog_format(XLOG_ERROR, "VELTADEV", "[%s(%d)] param err 2", __func__, __LINE__);
        return false;
    }
    Json::Value root;
    Json::Value& info = root["DeviceInfo"];
    for (const Member& member : kMembers) {
        if (xml.FindElem(member.name)) {
            info[member.name] = xml.GetData();
        } else if (member.get == Get::Always) {
            info[member.name] = Json::Value::nullSingleton();
        }
    }
    answer = velta::writeJson(root);
    return true;
}

// The texts go out as the host wrote them, markup included.
bool CVeltaDevice::transDeviceInfoJson2Xml(std::string& xml, const Json::Value& body) {
    if (!body.isObject() || !body["DeviceInfo"].isObject()) {
        xlog_format(XLOG_ERROR, "VELTADEV", "[%s(%d)] param err 1", __func__, __LINE__);
        return false;
    }
    const Json::Value& info = body["DeviceInfo"];
    std::array<std::string, std::size(kMembers)> elements;
    for (const Member& member : kMembers) {
        if (member.put == Put::Optional && !info.isMember(member.name)) continue;
        const Json::Value& value = info[member.name];
        if (!isAllowed(value, member.kind)) {
            xlog_format(XLOG_ERROR, "VELTADEV", "[%s(%d)] param err %d", __func__, __LINE__, member.error);
            return false;
        }
        elements[member.place] = velta::xmlElement(member.name, textOf(value));
    }
    std::string content;
    for (const std::string& element : elements)
        content += element;
    xml = R"(<?xml version="1.0" encoding="utf-8"?>)" +
          velta::xmlElement("DeviceInfo", content, velta::kXmlRoot);
    return true;
}

bool CVeltaDevice::checkDeviceName(const char* name, int length) {
    if (name == nullptr) return false;
    constexpr std::string_view kForbidden = R"(/\:*?'"<>|%)";
    for (int i = 0; i < length; ++i) {
        const char c = name[i];
        if (c < ' ' || c > '~' || kForbidden.find(c) != std::string_view::npos) return false;
    }
    return true;
}
