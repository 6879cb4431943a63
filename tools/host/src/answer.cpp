#include "answer.h"

#include <json/value.h>

#include <cstdlib>

#include <velta/connect.h>

#include "statuses.h"
#include "text.h"

namespace host {
namespace {

// Status groups of devices and plug-in alike.
constexpr long kOk = 1;
constexpr long kRebootRequired = 7;
constexpr const char* kNoAnswer =
    "unKnownErrorCode";  // how the plug-in says that it has nothing from the device

Verdict judgeStatus(const std::string& code, const std::string& status, const std::string& subStatus,
                    const std::string& message, const std::string& errorCode) {
    const long group = std::strtol(code.c_str(), nullptr, 10);
    if (group == 0 || group == kOk) return {};
    std::string reason = status;
    if (!subStatus.empty()) reason += (reason.empty() ? "" : ": ") + subStatus;
    if (!message.empty() && message != subStatus) reason += " - " + message;
    if (!errorCode.empty())
        reason += " (" + hexText(static_cast<unsigned>(std::strtoul(errorCode.c_str(), nullptr, 10))) + ")";
    if (group == kRebootRequired) return {ExitCode::Ok, reason};
    return {ExitCode::Failed, reason, subStatus != kNoAnswer};
}

Verdict refusal(int status) {
    const StatusMeaning& row = meaningOf(status);
    return {row.exitCode, std::string(row.meaning) + "\n            " + row.hint};
}

}  // namespace

Verdict judgeAnswer(const std::string& answer) {
    Json::Value json;
    if (parseJson(answer, json)) {
        return judgeStatus(member(json, "statusCode"), member(json, "statusString"),
                           member(json, "subStatusCode"), member(json, "errorMsg"),
                           member(json, "errorCode"));
    }
    if (answer.find("<ResponseStatus") != std::string::npos) {
        return judgeStatus(element(answer, "statusCode"), element(answer, "statusString"),
                           element(answer, "subStatusCode"), element(answer, "errorMsg"),
                           element(answer, "errorCode"));
    }
    if (answer.find("<userCheck") != std::string::npos && element(answer, "statusValue") == "401") {
        if (element(answer, "lockStatus") == "lock") return refusal(VELTA_STATUS_LOCKED);
        return refusal(VELTA_STATUS_REFUSED);
    }
    return {};
}

}  // namespace host
