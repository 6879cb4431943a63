// Fingerprint templates of persons, and the readers that take them.

#include <xlog/xlog.h>
#include <velta/result.h>

#include <algorithm>

#include "device/CVeltaDevice.h"
#include "gateway/JsonText.h"
#include "translate/HostRules.h"
#include "translate/JsonExchange.h"

namespace {

using enum velta::JsonType;
using enum velta::Presence;
using velta::HostRule;

constexpr const char* kFingerTypes[] = {"normalFP", "hijackFP", "patrolFP", "superFP", "dismissingFP"};

constexpr HostRule kTemplate[] = {
    {"employeeNo", Required, String},      {"fingerPrintID", Required, Unsigned},
    {"fingerData", Required, String},      {"fingerType", Optional, String, kFingerTypes},
    {"enableCardReader", Optional, Array},  // of numbers, which is not insisted on
    {"leaderFP", Optional, Array},
};
constexpr HostRule kDownloadBody[] = {{"FingerPrintCfg", Required, Object, {}, kTemplate}};

constexpr HostRule kModifiedTemplate[] = {
    {"employeeNo", Required, String},      {"cardReaderNo", Required, Unsigned},
    {"fingerPrintID", Required, Unsigned}, {"fingerType", Optional, String, kFingerTypes},
    {"leaderFP", Optional, Array},
};
constexpr HostRule kModifyBody[] = {{"FingerPrintModify", Required, Object, {}, kModifiedTemplate}};

constexpr HostRule kReadBackCondition[] = {
    {"employeeNo", Required, String},
    {"searchID", Required, String},
    {"cardReaderNo", Optional, Unsigned},
    {"fingerPrintID", Optional, Unsigned},
};
constexpr HostRule kReadBackBody[] = {{"FingerPrintCond", Required, Object, {}, kReadBackCondition}};

constexpr const char* kDefaultDeleteMode = "byEmployeeNo";
constexpr const char* kDeleteModes[] = {kDefaultDeleteMode, "byCardReader"};
constexpr HostRule kDeleteCondition[] = {{"mode", Optional, String, kDeleteModes}};
constexpr HostRule kDeleteBody[] = {{"FingerPrintDelete", Required, Object, {}, kDeleteCondition}};

constexpr HostRule kReader[] = {{"enable", Optional, Bool}};
constexpr HostRule kReaderBody[] = {{"CardReaderCfg", Required, Object, {}, kReader}};

std::string templateDocument(const Json::Value& host) {
    Json::Value root;
    Json::Value& cfg = root["FingerPrintCfg"] = host;
    if (!cfg.isMember("fingerType")) cfg["fingerType"] = "normalFP";
    if (!cfg.isMember("enableCardReader")) cfg["enableCardReader"].append(1);
    return velta::writeJson(root);
}

}  // namespace

// A reader that is no number is noted in the log; the request goes out all the same, and its result counts.
uint32_t CVeltaDevice::veltaAddAcsFp(std::string& answer, const std::string& path,
                                     const velta::HostBody& body) {
    const XPR_Guard lock(requestMutex_);
    if (!velta::keepsRules(body.json, kDownloadBody)) return VELTA_E_BAD_PARAMETER;
    const Json::Value& cfg = body.json["FingerPrintCfg"];
    const Json::Value& readers = cfg["enableCardReader"];
    if (!std::all_of(readers.begin(), readers.end(),
                     [](const Json::Value& reader) { return reader.isInt(); }))
        xlog_format(XLOG_WARNING, "VELTADEV", "[%s(%d)] enableCardReader is wrong", __func__, __LINE__);
    return velta::orderJson(*this, answer, path, templateDocument(cfg), kPost);
}

uint32_t CVeltaDevice::veltaSetAcsFp(std::string& answer, const std::string& path,
                                     const velta::HostBody& body) {
    const XPR_Guard lock(requestMutex_);
    return velta::relayOrder(*this, answer, path, body, kModifyBody, kPost);
}

// Reading back waits for writes, unlike the other searches.
uint32_t CVeltaDevice::veltaSearchAcsFp(std::string& answer, const std::string& path,
                                        const velta::HostBody& body) {
    const XPR_Guard lock(requestMutex_);
    if (!velta::keepsRules(body.json, kReadBackBody)) return VELTA_E_BAD_PARAMETER;
    if (const uint32_t sent = velta::exchangeJson(*this, answer, path, body.text, kPost)) return sent;
    Json::Value root;
    if (!velta::readJsonAnswer(answer, root)) return velta::kBadJsonContent;
    if (!root.isMember("FingerPrintInfo")) return velta::judgeJsonAnswer(root);
    answer = velta::writeJson(root);
    return VELTA_OK;
}

uint32_t CVeltaDevice::veltaDeleteAcsFp(std::string& answer, const std::string& path,
                                        const velta::HostBody& body) {
    const XPR_Guard lock(requestMutex_);
    if (!velta::keepsRules(body.json, kDeleteBody)) return VELTA_E_BAD_PARAMETER;
    Json::Value root;
    Json::Value& condition = root["FingerPrintDelete"] = body.json["FingerPrintDelete"];
    if (!condition.isMember("mode")) condition["mode"] = kDefaultDeleteMode;
    return velta::orderJson(*this, answer, path, velta::writeJson(root), kPut);
}

uint32_t CVeltaDevice::veltaSetAcsCardReaderCfg(std::string& answer, const std::string& path,
                                                const velta::HostBody& body) {
    return velta::relayOrder(*this, answer, path, body, kReaderBody, kPut);
}
