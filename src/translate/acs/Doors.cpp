// Doors: control, names, and what state they are in. The device speaks XML, but for its work status.

#include <velta/result.h>

#include <algorithm>
#include <optional>

#include "device/CVeltaDevice.h"
#include "gateway/CXmlBase.h"
#include "gateway/JsonText.h"
#include "translate/HostRules.h"
#include "translate/JsonExchange.h"
#include "translate/XmlDocument.h"
#include "translate/XmlResource.h"

namespace {

using enum velta::JsonType;
using enum velta::Presence;
using velta::HostRule;

constexpr const char* kCapabilitiesPath = "/VELTA/AccessControl/RemoteControl/door/capabilities";

constexpr int kCountUnknown = -1;
constexpr int kAllDoors = 65535;  // for remote control only

constexpr const char* kCommands[] = {
    "open", "close", "alwaysOpen", "alwaysClose", "visitorCallLadder", "householdCallLadder"};
constexpr HostRule kControl[] = {{"cmd", Required, String, kCommands}};
constexpr HostRule kRemoteControl[] = {{"RemoteControlDoor", Required, Object, {}, kControl}};

constexpr HostRule kName[] = {{"doorName", Required, String}};
constexpr HostRule kDoorParam[] = {{"DoorParam", Required, Object, {}, kName}};

int doorNumber(const std::string& path) {
    return velta::leadingInt(path.substr(path.rfind('/') + 1));
}

/* The highest door of the device's capabilities. */
std::optional<int> highestDoor(const std::string& reply) {
    CXmlBase xml;
    xml.Parse(reply.c_str());
    if (!xml.FindElem("RemoteControlDoor") || !xml.IntoElem() || !xml.FindElemNoOrder("doorNo"))
        return std::nullopt;
    const std::string highest = xml.GetAttributeValue("max");
    if (highest.empty()) return std::nullopt;
    return velta::leadingInt(highest);
}

}  // namespace

// Read once in the life of a session: after a failed reading there is no door but all of them.
uint32_t CVeltaDevice::veltaGetRemoteDoorCap(std::string& answer) {
    std::string reply;
    const int32_t sent = sendHttpReqToDevice(reply, kCapabilitiesPath, "", kGet, "");
    const auto highest = sent == 0 ? highestDoor(reply) : std::nullopt;
    int unknown = kCountUnknown;  // two threads may ask at once: the first answer counts
    doorCount_.compare_exchange_strong(unknown, std::max(highest.value_or(0), 0));
    return highest ? VELTA_OK : velta::responseStatusOf(*this, answer, reply);
}

uint32_t CVeltaDevice::learnDoorCount(std::string& answer) {
    return doorCount_ == kCountUnknown ? veltaGetRemoteDoorCap(answer) : VELTA_OK;
}

bool CVeltaDevice::hasDoor(int number) const {
    return number >= 1 && number <= doorCount_;
}

uint32_t CVeltaDevice::putDoor(std::string& answer, const std::string& path, const std::string& document) {
    std::string reply;
    if (sendHttpReqToDevice(reply, path, document, kPut, "") == 0) return VELTA_OK;
    return parseVELTAResponseStatus(answer, reply);
}

bool CVeltaDevice::transRemoteDoorControlJson2Xml(const std::string& json, std::string& xml) {
    Json::Value root;
    if (!velta::parseJson(json, root) || !velta::keepsRules(root, kRemoteControl)) return false;
    const std::string command = root["RemoteControlDoor"]["cmd"].asString();
    xml = velta::xmlElement("RemoteControlDoor", velta::xmlElement("cmd", command), velta::kXmlRoot);
    return true;
}

uint32_t CVeltaDevice::veltaRemoteControlDoor(std::string& answer, const std::string& path,
                                              const velta::HostBody& body) {
    if (const uint32_t code = learnDoorCount(answer)) return code;
    const int door = doorNumber(path);
    std::string document;
    if ((!hasDoor(door) && door != kAllDoors) || !transRemoteDoorControlJson2Xml(body.text, document))
        return VELTA_E_BAD_PARAMETER;
    return putDoor(answer, path, document);
}

uint32_t CVeltaDevice::veltaSetDoorParam(std::string& answer, const std::string& path,
                                         const velta::HostBody& body) {
    if (const uint32_t code = learnDoorCount(answer)) return code;
    if (!hasDoor(doorNumber(path)) || !velta::keepsRules(body.json, kDoorParam)) return VELTA_E_BAD_PARAMETER;
    const std::string name = body.json["DoorParam"]["doorName"].asString();
    return putDoor(answer, path,
                   velta::xmlElement("DoorParam", velta::xmlElement("doorName", velta::xmlEscaped(name))));
}

uint32_t CVeltaDevice::veltaGetDoorParam(std::string& answer, const std::string& path) {
    if (const uint32_t code = learnDoorCount(answer)) return code;
    if (!hasDoor(doorNumber(path))) return VELTA_E_BAD_PARAMETER;
    std::string reply;
    const int32_t sent = sendHttpReqToDevice(reply, path, "", kGet, "");
    CXmlBase xml;
    xml.Parse(reply.c_str());
    if (sent != 0 || !xml.FindElem("DoorParam") || !xml.IntoElem() || !xml.FindElemNoOrder("doorName"))
        return velta::refusalOfRead(*this, answer, reply);
    Json::Value root;
    root["DoorParam"]["doorName"] = xml.GetData();
    answer = velta::writeJson(root);
    return VELTA_OK;
}

uint32_t CVeltaDevice::veltaGetAcsWorkStatus(std::string& answer, const std::string& path) {
    Json::Value root;
    if (const uint32_t code = velta::readJsonResource(*this, answer, path, root)) return code;
    const Json::Value& status = root["AcsWorkStatus"];
    if (!status.isObject()) return VELTA_E_BAD_PARAMETER;
    Json::Value host;
    Json::Value& doors = host["AcsWorkStatus"]["doorStatus"] = Json::Value(Json::arrayValue);
    if (status["doorStatus"].isArray()) {
        for (const Json::Value& door : status["doorStatus"])
            doors.append(door.isConvertibleTo(Json::intValue) ? door.asInt() : 0);
    }
    answer = velta::writeJson(host);
    return VELTA_OK;
}
