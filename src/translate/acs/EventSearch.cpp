// The search in the device's log of access events, in the host's words or in the device's.

#include <velta/result.h>

#include "device/CVeltaDevice.h"
#include "gateway/JsonText.h"
#include "translate/HostRules.h"
#include "translate/JsonExchange.h"

namespace {

using enum velta::JsonType;
using enum velta::Presence;
using velta::HostRule;

constexpr HostRule kPaging[] = {
    {"searchID", Required, String},
    {"searchResultPosition", Required, Unsigned},
    {"maxResults", Required, Unsigned},
};
constexpr HostRule kDeviceShape[] = {{"AcsEventCond", Required, Object, {}, kPaging}};

constexpr HostRule kFilter[] = {
    {"major", Optional, Unsigned}, {"minor", Optional, Unsigned},    {"startTime", Optional, String},
    {"endTime", Optional, String}, {"cardNo", Optional, String},     {"name", Optional, String},
    {"picEnable", Optional, Bool}, {"employeeNo", Optional, String},
};
constexpr HostRule kFiltered[] = {{"AcsEventFilter", Optional, Object, {}, kFilter}};

const char* deviceName(const char* hostName) {
    return std::string_view(hostName) == "employeeNo" ? "employeeNoString" : hostName;
}

void addEventTypes(Json::Value& condition) {
    for (const char* const name : {"major", "minor"}) {
        if (!condition.isMember(name)) condition[name] = 0;
    }
}

std::string deviceCondition(const Json::Value& search) {
    Json::Value root;
    Json::Value& condition = root["AcsEventCond"];
    for (const HostRule& rule : kPaging)
        condition[rule.member] = search[rule.member];
    const Json::Value& filter = search["AcsEventFilter"];
    for (const HostRule& rule : kFilter) {
        if (filter.isMember(rule.member)) condition[deviceName(rule.member)] = filter[rule.member];
    }
    addEventTypes(condition);
    return velta::writeJson(root);
}

std::string hostResult(const Json::Value& events) {
    Json::Value root;
    Json::Value& result = root["AcsEventSearchResult"];
    velta::copyPageSummary(events, result);
    if (events["InfoList"].isArray()) result["MatchList"] = events["InfoList"];
    return velta::writeJson(root);
}

}  // namespace

uint32_t CVeltaDevice::veltaSearchAcsEvent(std::string& answer, const std::string& path,
                                           const velta::HostBody& body) {
    const Json::Value& search = velta::memberOf(body.json, "AcsEventSearchDescription");
    const bool isHostShape = !search.isNull() && velta::keepsRules(search, kPaging);
    std::string condition;
    if (isHostShape) {
        if (!velta::keepsRules(search, kFiltered)) return VELTA_E_BAD_PARAMETER;
        condition = deviceCondition(search);
    } else {
        if (!velta::keepsRules(body.json, kDeviceShape)) return VELTA_E_BAD_PARAMETER;
        Json::Value root = body.json;
        addEventTypes(root["AcsEventCond"]);
        condition = velta::writeJson(root);
    }
    Json::Value root;
    if (const uint32_t code = velta::searchJson(*this, answer, path, condition, root)) return code;
    const Json::Value& events = velta::memberOf(root, "AcsEvent");
    if (!velta::isResultPage(events)) return velta::kBadJsonContent;
    answer = isHostShape ? hostResult(events) : velta::writeJson(root);
    return VELTA_OK;
}
