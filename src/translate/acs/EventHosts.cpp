// The table of hosts to which a device pushes its events by itself.

#include "translate/acs/EventHosts.h"

#include <xlog/xlog.h>
#include <velta/result.h>

#include <cstdlib>

#include "device/CVeltaDevice.h"
#include "gateway/CXmlBase.h"
#include "gateway/JsonText.h"
#include "translate/HostRules.h"
#include "translate/XmlDocument.h"
#include "translate/XmlResource.h"

namespace {

using enum velta::JsonType;
using enum velta::Presence;
using velta::HostRule;

constexpr const char* kPath = "/VELTA/Event/notification/httpHosts";
constexpr const char* kCapabilitiesPath = "/VELTA/Event/notification/httpHosts/capabilities";

constexpr int kDefaultHeartbeat = 30;

constexpr const char* kProtocols[] = {"HTTP", "HTTPS"};
constexpr const char* kAddressing[] = {"ipaddress", "hostname"};
constexpr const char* kEventModes[] = {"all", "list"};
constexpr HostRule kSubscription[] = {
    {"heartbeat", Optional, Integer},
    {"eventMode", Optional, String, kEventModes},
};
constexpr HostRule kHost[] = {
    {"url", Required, String},
    {"protocolType", Required, String, kProtocols},
    {"addressingFormatType", Required, String, kAddressing},
    {"portNo", Required, Integer},
    {"SubscribeEvent", Optional, Object, {}, kSubscription},
};
constexpr HostRule kListedEvents[] = {{"minorEvent", Required, String}};
constexpr HostRule kHostName[] = {{"hostName", Required, String}};
constexpr HostRule kIpAddress[] = {{"ipAddress", Required, String}};

bool isByName(const Json::Value& host) {
    return host["addressingFormatType"] == "hostname";
}

bool isWanted(const Json::Value& host) {
    if (!velta::keepsRules(host, kHost)) return false;
    if (isByName(host)) {
        if (!velta::keepsRules(host, kHostName)) return false;
    } else if (!velta::keepsRules(host, kIpAddress) || !IsIp(host["ipAddress"].asString())) {
        return false;
    }
    const Json::Value& subscription = host["SubscribeEvent"];
    return velta::memberOf(subscription, "eventMode") != "list" ||
           velta::keepsRules(subscription, kListedEvents);
}

std::string subscriptionElement(const Json::Value& host) {
    using velta::xmlElement;
    const Json::Value& subscription = host["SubscribeEvent"];
    const bool isList = velta::memberOf(subscription, "eventMode") == "list";
    const Json::Value& beat = velta::memberOf(subscription, "heartbeat");
    std::string content =
        xmlElement("heartbeat", std::to_string(beat.isNull() ? kDefaultHeartbeat : beat.asInt()));
    content += xmlElement("eventMode", isList ? "list" : "all");
    if (isList) {
        std::string event = xmlElement("type", "AccessControllerEvent");
        for (const char* const kind : {"minorAlarm", "minorException", "minorOperation"})
            event += xmlElement(kind, "0x00");
        event += xmlElement("minorEvent", velta::xmlEscaped(subscription["minorEvent"].asString()));
        content += xmlElement("EventList", xmlElement("Event", event));
    }
    return xmlElement("SubscribeEvent", content);
}

std::string hostElement(const Json::Value& host) {
    const auto element = [&](const char* name, bool isUsed = true) {
        return velta::xmlElement(name, isUsed ? velta::xmlEscaped(host[name].asString()) : "");
    };
    const bool byName = isByName(host);
    return velta::xmlElement(
        "HttpHostNotification",
        element("id") + element("url") + element("protocolType") +
            velta::xmlElement("parameterFormatType", "JSON") + element("addressingFormatType") +
            element("hostName", byName) + element("ipAddress", !byName) +
            velta::xmlElement("portNo", std::to_string(host["portNo"].asInt())) +
            velta::xmlElement("httpAuthenticationMethod", "none") + subscriptionElement(host));
}

/* The host's object of the element at the cursor. What the device leaves out is left out. */
Json::Value hostRecord(CXmlBase& xml) {
    Json::Value record(Json::objectValue);
    if (!xml.IntoElem()) return record;
    const auto copy = [&](const char* name) {
        if (xml.FindElemNoOrder(name)) record[name] = xml.GetData();
    };
    for (const char* const name : {"id", "url", "protocolType", "addressingFormatType"})
        copy(name);
    copy(velta::memberOf(record, "addressingFormatType") == "ipaddress" ? "ipAddress" : "hostName");
    if (xml.FindElemNoOrder("portNo")) record["portNo"] = velta::leadingInt(xml.GetData());
    xml.OutOfElem();
    return record;
}

}  // namespace

bool IsIp(const std::string& text) {
    const char* rest = text.c_str();
    for (int part = 0; part < 4; ++part) {
        if (part > 0 && *rest++ != '.') return false;
        char* end = nullptr;
        const long number = std::strtol(rest, &end, 10);
        if (end == rest || number < 0 || number > 255) return false;
        rest = end;
    }
    return rest == text.c_str() + text.size();
}

uint32_t CVeltaDevice::veltaGetEventHost(std::string& answer, const std::string& path) {
    std::string reply;
    if (sendHttpReqToDevice(reply, path, "", kGet, "") != 0) return parseVELTAResponseStatus(answer, reply);
    CXmlBase xml;
    if (xml.Parse(reply.c_str()) == nullptr) return VELTA_E_BAD_PARAMETER;
    if (!xml.FindElem("HttpHostNotificationList") || !xml.IntoElem() || !xml.FindElem("HttpHostNotification"))
        return VELTA_E_NOT_SUPPORTED;
    Json::Value root;
    Json::Value& hosts = root["HttpHostNotificationList"] = Json::Value(Json::arrayValue);
    do {
        Json::Value item;
        item["HttpHostNotification"] = hostRecord(xml);
        hosts.append(std::move(item));
    } while (xml.NextSibElem() && xml.FindElem("HttpHostNotification"));
    answer = velta::writeJson(root);
    return VELTA_OK;
}

// Asked afresh for every host: a device that can't tell has room for one.
// NOLINTNEXTLINE(performance-unnecessary-value-param): the signature is settled
bool CVeltaDevice::isValidHostID(std::string id) {
    int bound = 1;
    std::string reply;
    if (sendHttpReqToDevice(reply, kCapabilitiesPath, "", kGet, "") == 0) {
        CXmlBase xml;
        xml.Parse(reply.c_str());
        if (xml.FindElem("HttpHostNotificationCap") && xml.IntoElem() && xml.FindElemNoOrder("hostNumber"))
            bound = velta::leadingInt(xml.GetData());
    }
    const int number = velta::leadingInt(id);
    return number > 0 && number <= bound;
}

uint32_t CVeltaDevice::veltaSetEventHost(std::string& answer, const std::string&,
                                         const velta::HostBody& body) {
    const Json::Value& hosts = velta::memberOf(body.json, "HttpHostNotificationList");
    if (!hosts.isArray() || hosts.empty()) return VELTA_E_BAD_PARAMETER;
    std::string list;
    for (const Json::Value& item : hosts) {
        const Json::Value& host = velta::memberOf(item, "HttpHostNotification");
        const Json::Value& id = velta::memberOf(host, "id");
        if (!id.isString() || !isValidHostID(id.asString()) || !isWanted(host)) {
            xlog_format(XLOG_ERROR, "VELTADEV", "[%s(%d)] host is wrong", __func__, __LINE__);
            return VELTA_E_BAD_PARAMETER;
        }
        list += hostElement(host);
    }
    std::string reply;
    const int32_t sent =
        sendHttpReqToDevice(reply, kPath, velta::xmlElement("HttpHostNotificationList", list), kPut, "");
    return sent != 0 ? static_cast<uint32_t>(sent) : velta::responseStatusOf(*this, answer, reply);
}

uint32_t CVeltaDevice::veltaDeleteEventHost(std::string& answer, const std::string& path) {
    std::string reply;
    const int32_t sent = sendHttpReqToDevice(reply, path, "", kDelete, "");
    return sent != 0 ? static_cast<uint32_t>(sent) : parseVELTAResponseStatus(answer, reply);
}
