// What an access controller can do, and the reads that go through unchanged.

#include <velta/result.h>

#include <iterator>

#include "device/CVeltaDevice.h"
#include "gateway/CXmlBase.h"
#include "gateway/JsonText.h"
#include "translate/JsonExchange.h"
#include "translate/XmlDocument.h"

namespace {

constexpr const char* kRecognizeModePath = "/VELTA/AccessControl/FaceRecognizeMode/capabilities";
constexpr const char* kDoorPath = "/VELTA/AccessControl/RemoteControl/door/capabilities";

/* A resource that tells how many records fit, and what is copied from beside that number. */
struct RecordCapability {
    const char* path;
    const char* object; /* null: the answer itself */
    const char* limit;
    const char* hostLimit;
    const char* companions[3];
};
constexpr RecordCapability kRecords[] = {
    {"/VELTA/AccessControl/UserInfo/capabilities",
     "UserInfo",
     "maxRecordNum",
     "maxPeopleRecordNum",
     {"Valid", "name", "userType"}},
    {"/VELTA/AccessControl/CardInfo/capabilities",
     "CardInfo",
     "maxRecordNum",
     "maxCardRecordNum",
     {"cardNo", "employeeNo", "cardType"}},
    {"/VELTA/Intelligent/FDLib/capabilities", nullptr, "FDRecordDataMaxNum", "maxFaceRecordNum", {}},
};

/* A device's JSON answer; null when it does not give one. */
Json::Value readCapability(CVeltaDevice& device, const char* path) {
    std::string reply;
    Json::Value root;
    const bool read = velta::exchangeJson(device, reply, path, "", CVeltaDevice::kGet) == 0 &&
                      velta::readJsonAnswer(reply, root);
    return read ? root : Json::Value();
}

void addRecords(CVeltaDevice& device, const RecordCapability& capability, Json::Value& host) {
    const Json::Value root = readCapability(device, capability.path);
    const Json::Value& object = capability.object ? velta::memberOf(root, capability.object) : root;
    const auto limit = velta::integerOf(velta::memberOf(object, capability.limit));
    host[capability.hostLimit] = limit ? Json::Value(*limit) : Json::Value();
    for (const char* const name : capability.companions) {
        if (name != nullptr) host[name] = velta::memberOf(object, name);
    }
}

Json::Value recognizeModes(CVeltaDevice& device) {
    const Json::Value root = readCapability(device, kRecognizeModePath);
    const Json::Value& options =
        velta::memberOf(velta::memberOf(velta::memberOf(root, "FaceRecognizeMode"), "mode"), "@opt");
    Json::Value host;
    host["mode"]["@opt"] = options.isString() ? options : Json::Value();
    return host;
}

Json::Value numberOrNull(const std::string& attribute) {
    return attribute.empty() ? Json::Value() : Json::Value(velta::leadingInt(attribute));
}

Json::Value doorControl(CVeltaDevice& device) {
    Json::Value host;
    Json::Value& doorNo = host["doorNo"];
    doorNo["@min"] = doorNo["@max"] = host["cmd"]["@opt"] = Json::Value();
    std::string reply;
    if (device.sendHttpReqToDevice(reply, kDoorPath, "", CVeltaDevice::kGet, "") != 0) return host;
    CXmlBase xml;
    xml.Parse(reply.c_str());
    if (!xml.FindElem("RemoteControlDoor") || !xml.IntoElem()) return host;
    if (xml.FindElemNoOrder("doorNo")) {
        doorNo["@min"] = numberOrNull(xml.GetAttributeValue("min"));
        doorNo["@max"] = numberOrNull(xml.GetAttributeValue("max"));
    }
    if (xml.FindElemNoOrder("cmd")) {
        const std::string commands = xml.GetAttributeValue("opt");
        if (!commands.empty()) host["cmd"]["@opt"] = commands;
    }
    return host;
}

}  // namespace

uint32_t CVeltaDevice::veltaGet(std::string& answer, const std::string& path) {
    Json::Value root;
    const uint32_t code = velta::readJsonResource(*this, answer, path, root);
    if (code == VELTA_OK) answer = velta::writeJson(root);
    return code;
}

// A question that the device does not answer leaves its members null; the others are asked all the same.
uint32_t CVeltaDevice::veltaGetAcsCapabilities(std::string& answer) {
    Json::Value host;
    for (const RecordCapability& capability : kRecords)
        addRecords(*this, capability, host);
    host["FaceRecognizeMode"] = recognizeModes(*this);
    host["RemoteControlDoorCap"] = doorControl(*this);
    Json::Value root;
    root["AccessControlCap"] = std::move(host);
    answer = velta::writeJson(root);
    return VELTA_OK;
}
