// The device's network interfaces and their addresses.

#include "translate/system/NetworkInterfaces.h"

#include <xlog/xlog.h>
#include <velta/result.h>

#include <algorithm>
#include <string_view>

#include "device/CVeltaDevice.h"
#include "gateway/CXmlBase.h"
#include "gateway/JsonText.h"
#include "translate/XmlDocument.h"
#include "translate/XmlResource.h"

namespace {

constexpr const char* kInterfacesPath = "/VELTA/System/Network/interfaces";
constexpr const char* kInterfaceList = "NetworkInterfaceList";
constexpr const char* kInterface = "NetworkInterface";
constexpr const char* kAddress = "IPAddress";
constexpr int kMaxLevels = 16;  // of elements that are written, the root included

void addMember(Json::Value& object, const std::string& name, Json::Value value) {
    if (!object.isMember(name)) {
        object[name] = std::move(value);
        return;
    }
    Json::Value& present = object[name];
    if (!present.isArray()) {  // the second of that name
        Json::Value array(Json::arrayValue);
        array.append(std::move(present));
        present = std::move(array);
    }
    present.append(std::move(value));
}

// Adds what stands below the element at the cursor to object; the cursor comes back. False, with nothing done,
// when that is a text.
bool readElements(CXmlBase& xml, Json::Value& object) {
    if (!xml.IntoElem()) return false;
    do {
        Json::Value child(Json::objectValue);
        if (!readElements(xml, child)) child = xml.GetData();
        addMember(object, xml.GetNodeName(), std::move(child));
    } while (xml.NextSibElem());
    xml.OutOfElem();
    return true;
}

bool isElementName(std::string_view name) {
    constexpr std::string_view kFirst = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz_";
    constexpr std::string_view kOther = "0123456789.-";
    return !name.empty() && kFirst.find(name.front()) != std::string_view::npos &&
           std::all_of(name.begin(), name.end(), [&](char c) {
               return kFirst.find(c) != std::string_view::npos || kOther.find(c) != std::string_view::npos;
           });
}

bool writeText(std::string& xml, const std::string& text) {
    const bool isSayable = std::all_of(text.begin(), text.end(), [](char c) {
        return static_cast<unsigned char>(c) >= ' ' || c == '\t' || c == '\n' || c == '\r';
    });
    if (isSayable) xml += velta::xmlEscaped(text);
    return isSayable;
}

bool writeMember(std::string& xml, const std::string& name, const Json::Value& value, int level);

// What stands between the tags of an element of that level.
bool writeContent(std::string& xml, const Json::Value& value, int level) {
    switch (value.type()) {
        case Json::stringValue:
        case Json::intValue:
        case Json::uintValue:
        case Json::booleanValue:
            return writeText(xml, value.asString());
        case Json::objectValue:
            break;
        default:
            return false;
    }
    if (value.empty()) return false;
    for (auto member = value.begin(); member != value.end(); ++member) {
        if (!writeMember(xml, member.name(), *member, level + 1)) return false;
    }
    return true;
}

bool writeElement(std::string& xml, const std::string& name, const Json::Value& value, int level) {
    std::string content;
    if (level > kMaxLevels || !writeContent(content, value, level)) return false;
    xml += velta::xmlElement(name, content);
    return true;
}

bool writeMember(std::string& xml, const std::string& name, const Json::Value& value, int level) {
    if (!isElementName(name)) return false;
    if (!value.isArray()) return writeElement(xml, name, value, level);
    return !value.empty() && std::all_of(value.begin(), value.end(), [&](const Json::Value& item) {
        return writeElement(xml, name, item, level);
    });
}

std::string interfacePath(int id) {
    return std::string(kInterfacesPath) + "/" + std::to_string(id);
}

uint32_t read(CVeltaDevice& device, const std::string& path, const char* root, std::string& answer) {
    return velta::readXmlResource(
        device, path,
        [root](std::string& json, const std::string& document) {
            return velta::transNetworkXml2Json(json, document, root);
        },
        answer);
}

uint32_t write(CVeltaDevice& device, const std::string& path, const Json::Value& body, const char* root,
               std::string& answer) {
    std::string document;
    if (!velta::transNetworkJson2Xml(document, body, root)) {
        xlog_format(XLOG_ERROR, "VELTADEV", "[%s(%d)] param is wrong, %s", __func__, __LINE__, root);
        return VELTA_E_BAD_PARAMETER;
    }
    return velta::writeXmlResource(device, path, document, answer);
}

}  // namespace

bool velta::transNetworkXml2Json(std::string& answer, const std::string& deviceXml, const char* root) {
    CXmlBase xml;
    if (xml.Parse(deviceXml.c_str()) == nullptr || !xml.SetRoot() || xml.GetNodeName() != root) return false;
    const bool isList = xml.GetNodeName() == kInterfaceList;
    Json::Value json;
    Json::Value& object = json[root] = Json::Value(Json::objectValue);
    if (isList) object[kInterface] = Json::Value(Json::arrayValue);
    if (!readElements(xml, object) && !isList) return false;
    answer = writeJson(json);
    return true;
}

bool velta::transNetworkJson2Xml(std::string& xml, const Json::Value& body, const char* root) {
    if (!body.isObject() || body.size() != 1 || !body[root].isObject()) return false;
    std::string content;
    if (!writeContent(content, body[root], 1)) return false;
    xml = kXmlDeclaration + xmlElement(root, content, kXmlRoot);
    return true;
}

uint32_t CVeltaDevice::veltaGetNetworkInterfaceList(std::string& answer) {
    return read(*this, kInterfacesPath, kInterfaceList, answer);
}

uint32_t CVeltaDevice::veltaGetNetworkInterface(int id, std::string& answer) {
    return read(*this, interfacePath(id), kInterface, answer);
}

uint32_t CVeltaDevice::veltaPutNetworkInterface(const std::string& path, const Json::Value& body,
                                                std::string& answer) {
    return write(*this, path, body, kInterface, answer);
}

uint32_t CVeltaDevice::veltaGetIPAddress(int id, std::string& answer) {
    return read(*this, interfacePath(id) + "/ipAddress", kAddress, answer);
}

uint32_t CVeltaDevice::veltaPutIPAddress(const std::string& path, const Json::Value& body,
                                         std::string& answer) {
    return write(*this, path, body, kAddress, answer);
}
