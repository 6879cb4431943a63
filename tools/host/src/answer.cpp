#include "answer.h"

#include <json/value.h>

#include <algorithm>
#include <cstdlib>

#include <velta/connect.h>

#include "statuses.h"
#include "text.h"

namespace host {
namespace {

// Status groups of devices and plug-in alike.
constexpr long kOk = 1;
constexpr long kRebootRequired = 7;

// What the plug-in makes of silence, of a refused log-in and of documents that can't be read.
constexpr const char* kInconclusive[] = {
    "badAuthorization", "badJsonContent", "badParameters",      "deviceError",
    "internalError",    "networkError",   "theDeviceIsOffline", "unKnownErrorCode",
};

// A device leaves members of its status out, or says the same in two of them.
struct Members {
    std::string statusCode, statusString, subStatusCode, errorCode, errorMsg;

    Status status() const {
        const auto number = static_cast<uint32_t>(std::strtoul(errorCode.c_str(), nullptr, 10));
        Status status{number, subStatusCode.empty() ? statusString : subStatusCode, errorMsg};
        if (errorMsg.empty() || errorMsg == status.name)
            status.description = statusString == status.name ? "" : statusString;
        return status;
    }
    long group() const {
        if (!statusCode.empty()) return std::strtol(statusCode.c_str(), nullptr, 10);
        const long number = std::strtol(errorCode.c_str(), nullptr, 10);
        return number <= kOk ? kOk : std::max(number >> 28, kOk + 1);
    }
};

Verdict judgeStatus(const Members& members) {
    const long group = members.group();
    if (group == 0 || group == kOk) return {};
    Verdict verdict;
    verdict.status = members.status();
    verdict.reason = statusText(verdict.status);
    if (group == kRebootRequired) return verdict;
    verdict.code = ExitCode::Failed;
    verdict.isConclusive = std::find(std::begin(kInconclusive), std::end(kInconclusive),
                                     verdict.status.name) == std::end(kInconclusive);
    return verdict;
}

Verdict refusal(int status) {
    const StatusMeaning& row = meaningOf(status);
    return {row.exitCode, row.meaning, row.hint};
}

}  // namespace

std::string statusText(const Status& status) {
    std::string text = status.errorCode != 0 ? hexText(status.errorCode) : "";
    if (!status.name.empty()) text += (text.empty() ? "" : " ") + status.name;
    if (!status.description.empty()) text += (text.empty() ? "" : ": ") + status.description;
    return text.empty() ? "a failure without a reason" : text;
}

Verdict judgeAnswer(const std::string& answer) {
    Json::Value json;
    if (parseJson(answer, json)) {
        return judgeStatus({member(json, "statusCode"), member(json, "statusString"),
                            member(json, "subStatusCode"), member(json, "errorCode"),
                            member(json, "errorMsg")});
    }
    if (answer.find("<ResponseStatus") != std::string::npos) {
        return judgeStatus({element(answer, "statusCode"), element(answer, "statusString"),
                            element(answer, "subStatusCode"), element(answer, "errorCode"),
                            element(answer, "errorMsg")});
    }
    if (answer.find("<userCheck") != std::string::npos && element(answer, "httpStatus") == "401") {
        if (element(answer, "lockStatus") == "lock") return refusal(VELTA_STATUS_LOCKED);
        return refusal(VELTA_STATUS_REFUSED);
    }
    return {};
}

}  // namespace host
