#include "translate/JsonExchange.h"

#include <xlog/xlog.h>
#include <velta/result.h>

#include <algorithm>
#include <iterator>

#include "gateway/JsonText.h"
#include "gateway/ResponseStatus.h"

namespace velta {

namespace {

constexpr uint32_t kStatusOk = 1;
constexpr const char* kPageSummary[] = {"searchID", "responseStatusStrg", "numOfMatches", "totalMatches"};

}  // namespace

uint32_t exchangeJson(CVeltaDevice& device, std::string& answer, const std::string& path,
                      const std::string& document, CVeltaDevice::Method method,
                      const std::string& parameters) {
    const int32_t sent =
        device.sendHttpReqToDevice(answer, path + "?format=json" + parameters, document, method, "");
    if (sent != 0)
        xlog_format(XLOG_ERROR, "VELTADEV", "[%s(%d)] %s failed - %d", __func__, __LINE__, path.c_str(),
                    sent);
    return static_cast<uint32_t>(sent);
}

uint32_t orderJson(CVeltaDevice& device, std::string& answer, const std::string& path,
                   const std::string& document, CVeltaDevice::Method method, const std::string& parameters) {
    const uint32_t sent = exchangeJson(device, answer, path, document, method, parameters);
    return sent != 0 ? sent : judgeJsonAnswer(answer);
}

bool readJsonAnswer(const std::string& answer, Json::Value& root) {
    return answer.starts_with('{') && parseJson(answer, root) && root.isObject();
}

uint32_t judgeJsonAnswer(const Json::Value& root) {
    if (integerOf(memberOf(root, "statusCode")) == kStatusOk) return VELTA_OK;
    return errorNoOfAnswer(root).value_or(kBadJsonContent);
}

uint32_t judgeJsonAnswer(const std::string& answer) {
    Json::Value root;
    return readJsonAnswer(answer, root) ? judgeJsonAnswer(root) : kBadJsonContent;
}

uint32_t relayOrder(CVeltaDevice& device, std::string& answer, const std::string& path, const HostBody& body,
                    const HostRules& rules, CVeltaDevice::Method method) {
    if (!keepsRules(body.json, rules)) return VELTA_E_BAD_PARAMETER;
    return orderJson(device, answer, path, body.text, method);
}

uint32_t searchJson(CVeltaDevice& device, std::string& answer, const std::string& path,
                    const std::string& condition, Json::Value& root) {
    if (const uint32_t sent = exchangeJson(device, answer, path, condition, CVeltaDevice::kPost)) return sent;
    if (!readJsonAnswer(answer, root)) return kBadJsonContent;
    if (!root.isMember("statusCode")) return VELTA_OK;
    return errorNoOfAnswer(root).value_or(kBadJsonContent);
}

bool isResultPage(const Json::Value& page) {
    return std::none_of(std::begin(kPageSummary), std::end(kPageSummary),
                        [&](const char* name) { return memberOf(page, name).isNull(); });
}

void copyPageSummary(const Json::Value& from, Json::Value& to) {
    for (const char* const name : kPageSummary)
        to[name] = memberOf(from, name);
}

uint32_t readJsonResource(CVeltaDevice& device, std::string& answer, const std::string& path,
                          Json::Value& root) {
    const uint32_t sent = exchangeJson(device, answer, path, "", CVeltaDevice::kGet);
    if (sent != 0) return sent;
    if (!readJsonAnswer(answer, root)) return VELTA_E_BAD_PARAMETER;
    const auto statusCode = integerOf(memberOf(root, "statusCode"));
    if (!statusCode || *statusCode == kStatusOk) return VELTA_OK;
    return errorNoOfAnswer(root).value_or(VELTA_E_BAD_PARAMETER);
}

}  // namespace velta
