// Persons who may pass, with their periods of validity and their rights at doors.

#include <velta/result.h>

#include "device/CVeltaDevice.h"
#include "gateway/JsonText.h"
#include "gateway/ResponseStatus.h"
#include "translate/HostRules.h"
#include "translate/JsonExchange.h"
#include "translate/acs/EmployeeList.h"

namespace {

using enum velta::JsonType;
using enum velta::Presence;
using velta::HostRule;

constexpr Json::ArrayIndex kMaxBatch = 30;

constexpr const char* kUserTypes[] = {"normal", "visitor", "blackList"};

constexpr HostRule kBatchValid[] = {
    {"beginTime", Required, String},
    {"endTime", Required, String},
    {"enable", Optional, Bool},
    {"timeType", Optional, String},
};
constexpr HostRule kBatchPerson[] = {
    {"employeeNo", Required, String},
    {"Valid", Required, Object, {}, kBatchValid},
    {"userType", Optional, String, kUserTypes},
    {"name", Optional, String},
};

constexpr HostRule kModifiedValid[] = {
    {"enable", Optional, Bool},
    {"beginTime", Optional, String},
    {"endTime", Optional, String},
    {"timeType", Optional, String},
};
constexpr HostRule kModifiedPerson[] = {
    {"employeeNo", Required, String},
    {"userType", Optional, String, kUserTypes},
    {"name", Optional, String},
    {"Valid", Optional, Object, {}, kModifiedValid},
};
constexpr HostRule kModifyBody[] = {{"UserInfo", Required, Object, {}, kModifiedPerson}};

constexpr HostRule kSearchCondition[] = {
    {"searchID", Required, String},
    {"searchResultPosition", Required, Unsigned},
    {"maxResults", Required, Unsigned},
    {"EmployeeNoList", Optional, Array, {}, velta::kEmployee},
};
constexpr HostRule kSearchBody[] = {{"UserInfoSearchCond", Required, Object, {}, kSearchCondition}};

constexpr const char* kDeleteModes[] = {"all", "byEmployeeNo"};
constexpr HostRule kDeleteCondition[] = {{"mode", Required, String, kDeleteModes}};
constexpr HostRule kDeleteBody[] = {{"UserInfoDetail", Required, Object, {}, kDeleteCondition}};
constexpr HostRule kDeleteListed[] = {{"EmployeeNoList", Required, Array, {}, velta::kEmployee}};

bool isBatch(const Json::Value& persons) {
    if (!persons.isArray() || persons.empty() || persons.size() > kMaxBatch) return false;
    for (const Json::Value& person : persons) {
        if (!velta::keepsRules(person, kBatchPerson)) return false;
    }
    return true;
}

void setIfAbsent(Json::Value& object, const char* name, const Json::Value& value) {
    if (!object.isMember(name)) object[name] = value;
}

/* Passage at the first door at any time. */
Json::Value everyTime() {
    Json::Value plan;
    plan["doorNo"] = 1;
    plan["planTemplateNo"] = "1";
    Json::Value plans(Json::arrayValue);
    plans.append(std::move(plan));
    return plans;
}

bool isComplete(const Json::Value& person) {
    return person.isMember("userType") && person["Valid"].isMember("enable") &&
           person.isMember("doorRight") && person.isMember("RightPlan");
}

/* With what the host left out. */
Json::Value completed(Json::Value person) {
    setIfAbsent(person, "userType", "normal");
    setIfAbsent(person["Valid"], "enable", true);
    setIfAbsent(person, "doorRight", "1");
    if (!person.isMember("RightPlan")) person["RightPlan"] = everyTime();
    return person;
}

/* The document that adds one person of a batch. A person with everything is written as it lies in the host's
 * document: for each of a batch, a copy would cost as much as the writing. */
std::string personDocument(const Json::Value& item) {
    std::string document = R"({"UserInfo":)" + velta::writeJson(isComplete(item) ? item : completed(item));
    document.insert(document.size() - 1, 1, '}');  // in front of the line feed
    return document;
}

}  // namespace

// A single person goes to the device as the host wrote it, and so does the device's answer; only a batch is
// checked and judged here.
uint32_t CVeltaDevice::veltaAddAcsUser(std::string& answer, const std::string& path,
                                       const velta::HostBody& body) {
    const XPR_Guard lock(requestMutex_);
    const Json::Value& persons = velta::memberOf(body.json, "UserInfo");
    if (persons.isObject()) {
        if (!isOnline()) return velta::kDeviceOffline;
        return velta::exchangeJson(*this, answer, path, body.text, kPost);
    }
    if (!isBatch(persons)) return VELTA_E_BAD_PARAMETER;

    Json::Value results(Json::arrayValue);
    for (const Json::Value& person : persons) {
        std::string reply;  // of this person alone, whether or not the exchange succeeds
        velta::exchangeJson(*this, reply, path, personDocument(person), kPost);
        Json::Value root;
        uint32_t code = isOnline() ? velta::kBadJsonContent : velta::kDeviceOffline;
        if (velta::readJsonAnswer(reply, root)) code = velta::judgeJsonAnswer(root);
        Json::Value result = velta::hostStatus(code == VELTA_OK ? velta::kSuccess : code);
        result["employeeNo"] = person["employeeNo"];
        results.append(std::move(result));
    }
    Json::Value host;
    host["UserInfoOutList"]["UserInfoOut"] = std::move(results);
    answer = velta::writeJson(host);
    return VELTA_OK;
}

uint32_t CVeltaDevice::veltaSetAcsUser(std::string& answer, const std::string& path,
                                       const velta::HostBody& body) {
    const XPR_Guard lock(requestMutex_);
    return velta::relayOrder(*this, answer, path, body, kModifyBody, kPut);
}

uint32_t CVeltaDevice::veltaSearchAcsUser(std::string& answer, const std::string& path,
                                          const velta::HostBody& body) {
    if (!velta::keepsRules(body.json, kSearchBody)) return VELTA_E_BAD_PARAMETER;
    Json::Value root;
    if (const uint32_t code = velta::searchJson(*this, answer, path, body.text, root)) return code;
    return velta::isResultPage(velta::memberOf(root, "UserInfoSearch")) ? VELTA_OK : velta::kBadJsonContent;
}

// The device deletes in the background; the host asks for the progress.
uint32_t CVeltaDevice::veltaDeleteAcsPermissionCfg(std::string& answer, const std::string& path,
                                                   const velta::HostBody& body) {
    const XPR_Guard lock(requestMutex_);
    if (!velta::keepsRules(body.json, kDeleteBody)) return VELTA_E_BAD_PARAMETER;
    const Json::Value& condition = velta::memberOf(body.json, "UserInfoDetail");
    if (condition["mode"] == "byEmployeeNo" &&
        (!velta::keepsRules(condition, kDeleteListed) || condition["EmployeeNoList"].empty()))
        return VELTA_E_BAD_PARAMETER;
    return velta::orderJson(*this, answer, path, body.text, kPut);
}
