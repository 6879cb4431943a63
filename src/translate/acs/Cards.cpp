// Cards that belong to persons.

#include <velta/result.h>

#include "device/CVeltaDevice.h"
#include "gateway/JsonText.h"
#include "translate/HostRules.h"
#include "translate/JsonExchange.h"
#include "translate/acs/EmployeeList.h"

namespace {

using enum velta::JsonType;
using enum velta::Presence;
using velta::HostRule;

constexpr uint32_t kInternalError = 0x30000014;
constexpr uint32_t kCardNoNotExist = 0x60006003;

constexpr const char* kCardTypes[] = {"normalCard", "patrolCard",     "hijackCard",
                                      "superCard",  "dismissingCard", "emergencyCard"};
constexpr HostRule kCardInfo[] = {
    {"employeeNo", Required, String},
    {"cardNo", Required, String},
    {"cardType", Optional, String, kCardTypes},
};
constexpr HostRule kWriteBody[] = {{"CardInfo", Required, Object, {}, kCardInfo}};

constexpr HostRule kDeleteCondition[] = {
    {"EmployeeNoList", Optional, Array, {}, velta::kEmployee},
    {"CardNoList", Optional, Array, {}, velta::kCard},
};
constexpr HostRule kDeleteBody[] = {{"CardInfoDelCond", Required, Object, {}, kDeleteCondition}};

constexpr HostRule kSearchCondition[] = {
    {"searchID", Required, String},
    {"searchResultPosition", Required, Unsigned},
    {"maxResults", Required, Unsigned},
    {"EmployeeNoList", Optional, Array, {}, velta::kEmployee},
    {"CardNoList", Optional, Array, {}, velta::kCard},
};
constexpr HostRule kSearchBody[] = {{"CardInfoSearchCond", Required, Object, {}, kSearchCondition}};

/* Keeps the rules, and lists either persons or cards. */
bool isSelection(const Json::Value& body, const velta::HostRules& rules, const char* condition) {
    if (!velta::keepsRules(body, rules)) return false;
    return !(body[condition].isMember("EmployeeNoList") && body[condition].isMember("CardNoList"));
}

Json::Value hostPage(const Json::Value& page) {
    Json::Value host;
    velta::copyPageSummary(page, host);
    const Json::Value& cards = page["CardInfo"];
    if (!cards.isArray()) return host;
    Json::Value& items = host["CardInfo"] = Json::Value(Json::arrayValue);
    for (const Json::Value& card : cards) {
        Json::Value item;
        for (const char* const name : {"employeeNo", "cardNo", "cardType"})
            item[name] = velta::memberOf(card, name);
        items.append(std::move(item));
    }
    return host;
}

}  // namespace

uint32_t CVeltaDevice::veltaAddAcsCard(std::string& answer, const std::string& path,
                                       const velta::HostBody& body) {
    const XPR_Guard lock(requestMutex_);
    if (!velta::keepsRules(body.json, kWriteBody)) return VELTA_E_BAD_PARAMETER;
    Json::Value root;
    Json::Value& card = root["CardInfo"] = body.json["CardInfo"];
    if (!card.isMember("cardType")) card["cardType"] = "normalCard";
    return velta::orderJson(*this, answer, path, velta::writeJson(root), kPost);
}

// A device that does not know the card reports an internal error, and nothing else does.
uint32_t CVeltaDevice::veltaSetAcsCard(std::string& answer, const std::string& path,
                                       const velta::HostBody& body) {
    const XPR_Guard lock(requestMutex_);
    if (!velta::keepsRules(body.json, kWriteBody)) return VELTA_E_BAD_PARAMETER;
    const uint32_t sent = velta::exchangeJson(*this, answer, path, body.text, kPut);
    if (sent == 0) return velta::judgeJsonAnswer(answer);
    Json::Value root;
    if (!velta::readJsonAnswer(answer, root)) return sent;
    if (velta::integerOf(velta::memberOf(root, "errorCode")) != kInternalError) return sent;
    answer.clear();
    return kCardNoNotExist;
}

uint32_t CVeltaDevice::veltaDeleteAcsCard(std::string& answer, const std::string& path,
                                          const velta::HostBody& body) {
    const XPR_Guard lock(requestMutex_);
    if (!isSelection(body.json, kDeleteBody, "CardInfoDelCond")) return VELTA_E_BAD_PARAMETER;
    return velta::orderJson(*this, answer, path, body.text, kPut);
}

uint32_t CVeltaDevice::veltaSearchAcsCard(std::string& answer, const std::string& path,
                                          const velta::HostBody& body) {
    if (!isSelection(body.json, kSearchBody, "CardInfoSearchCond")) return VELTA_E_BAD_PARAMETER;
    Json::Value root;
    if (const uint32_t code = velta::searchJson(*this, answer, path, body.text, root)) return code;
    const Json::Value& page = velta::memberOf(root, "CardInfoSearch");
    if (!velta::isResultPage(page)) return velta::kBadJsonContent;
    Json::Value host;
    host["CardInfoSearch"] = hostPage(page);
    answer = velta::writeJson(host);
    return VELTA_OK;
}
