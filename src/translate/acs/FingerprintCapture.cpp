// Having a reader take a finger: XML on the device's side.

#include <velta/result.h>

#include <pugixml.hpp>

#include "device/CVeltaDevice.h"
#include "gateway/CXmlBase.h"
#include "gateway/InputGuard.h"
#include "gateway/JsonText.h"
#include "translate/HostRules.h"
#include "translate/XmlDocument.h"
#include "translate/XmlResource.h"

namespace {

using enum velta::JsonType;
using enum velta::Presence;
using velta::HostRule;

constexpr const char* kCapturePath = "/VELTA/AccessControl/CaptureFingerPrint";
constexpr unsigned kFirstFinger = 1;
constexpr unsigned kLastFinger = 10;

constexpr HostRule kFinger[] = {{"fingerNo", Required, Unsigned}};
constexpr HostRule kCapture[] = {{"CaptureFingerPrintCond", Required, Object, {}, kFinger}};

/* False when the document is no result of a capture. */
bool captureResult(const std::string& reply, std::string& answer) {
    CXmlBase xml;
    xml.Parse(reply.c_str());
    if (!xml.FindElem("CaptureFingerPrint")) return false;
    Json::Value root;
    Json::Value& result = root["CaptureFingerPrint"] = Json::Value(Json::objectValue);
    if (xml.IntoElem()) {
        if (xml.FindElemNoOrder("fingerData")) result["fingerData"] = xml.GetData();
        for (const char* const name : {"fingerNo", "fingerPrintQuality"}) {
            if (xml.FindElemNoOrder(name)) result[name] = velta::leadingInt(xml.GetData());
        }
    }
    answer = velta::writeJson(root);
    return true;
}

/* Devices write a limit as an attribute or as a child of the element that it is about. */
Json::Value limit(const pugi::xml_node& element, const char* name) {
    const pugi::xml_attribute attribute = element.attribute(name);
    if (attribute) return velta::leadingInt(attribute.value());
    const pugi::xml_node child = element.child(name);
    return child ? Json::Value(velta::leadingInt(child.child_value())) : Json::Value();
}

Json::Value limits(const pugi::xml_node& element) {
    Json::Value host;
    host["min"] = limit(element, "min");
    host["max"] = limit(element, "max");
    return host;
}

/* False when the document does not tell what a capture can be. */
bool captureLimits(const std::string& reply, std::string& answer) {
    pugi::xml_document document;
    if (!velta::isXmlShapeAllowed(reply) || !document.load_string(reply.c_str())) return false;
    const pugi::xml_node capture = document.child("CaptureFingerPrint");
    if (!capture) return false;
    Json::Value root;
    Json::Value& host = root["CaptureFingerPrint"];
    host["CaptureFingerPrintCond"]["fingerNo"] =
        limits(capture.child("CaptureFingerPrintCond").child("fingerNo"));
    for (const char* const name : {"fingerData", "fingerNo", "fingerPrintQuality"})
        host[name] = limits(capture.child(name));
    answer = velta::writeJson(root);
    return true;
}

}  // namespace

bool CVeltaDevice::transCaptureAcsFpJson2Xml(const std::string& json, std::string& xml) {
    Json::Value root;
    if (!json.starts_with('{') || !velta::parseJson(json, root) || !velta::keepsRules(root, kCapture))
        return false;
    const unsigned finger = root["CaptureFingerPrintCond"]["fingerNo"].asUInt();
    if (finger < kFirstFinger || finger > kLastFinger) return false;
    xml = std::string(velta::kXmlDeclaration) + "\r\n" +
          velta::xmlElement("CaptureFingerPrintCond", velta::xmlElement("fingerNo", std::to_string(finger)),
                            velta::kXmlRoot);
    return true;
}

uint32_t CVeltaDevice::veltaCaptureAcsFp(std::string& answer, const std::string&,
                                         const velta::HostBody& body) {
    std::string condition;
    if (!transCaptureAcsFpJson2Xml(body.text, condition)) return VELTA_E_BAD_PARAMETER;
    std::string reply;
    const int32_t sent = sendHttpReqToDevice(reply, kCapturePath, condition, kPost, "");
    if (sent == 0 && captureResult(reply, answer)) return VELTA_OK;
    return velta::responseStatusOf(*this, answer, reply);
}

uint32_t CVeltaDevice::veltaGetAcsFpCaptureCapabilities(std::string& answer, const std::string& path) {
    std::string reply;
    const int32_t sent = sendHttpReqToDevice(reply, path, "", kGet, "");
    if (sent == 0 && captureLimits(reply, answer)) return VELTA_OK;
    return velta::refusalOfRead(*this, answer, reply);
}
