#include "exchange.h"

#include <utility>

#include "device_address.h"
#include "text.h"

namespace host {
namespace {

constexpr const char* kUserCheck = "/VELTA/Security/userCheck";
constexpr const char* kJsonFormat = "format=json";
constexpr size_t kMostShown = 200;  // bytes of an answer that can't be read

}  // namespace

DeviceError::DeviceError(Status reported)
    : Failure(ExitCode::Failed, statusText(reported)), status(std::move(reported)) {}

std::string jsonUri(const std::string& uri) {
    if (uri.find(kJsonFormat) != std::string::npos) return uri;
    return uri + (uri.find('?') == std::string::npos ? "?" : "&") + kJsonFormat;
}

std::string exchangeText(Host& host, const Session& session, const std::string& method,
                         const std::string& uri, const std::string& body) {
    std::string answer = host.request(session, method, uri, body);
    const Verdict verdict = judgeAnswer(answer);
    if (verdict.code == ExitCode::Ok) {
        if (!verdict.reason.empty()) host.console.note("velta-host: " + verdict.reason);
        return answer;
    }
    if (verdict.code != ExitCode::Failed) throw Failure(verdict.code, verdict.reason, verdict.hint);
    if (!verdict.isConclusive) {
        if (const auto obstacle = findObstacle(host, session)) throw Failure(*obstacle);
    }
    throw DeviceError(verdict.status);
}

Json::Value exchange(Host& host, const Session& session, const std::string& method, const std::string& uri,
                     const Json::Value& body) {
    const std::string text = body.isNull() ? "" : compactJson(body);
    const std::string answer = exchangeText(host, session, method, jsonUri(uri), text);
    Json::Value json;
    if (!parseJson(answer, json))
        throw Failure(ExitCode::Failed, "the answer is not JSON: " + answer.substr(0, kMostShown));
    return json;
}

std::optional<Failure> findObstacle(Host& host, const Session& session) {
    const Reachability found = probe(session.device());
    if (!found.accepts) return Failure(ExitCode::Unreachable, found.finding, found.hint);
    const Verdict verdict = judgeAnswer(host.request(session, "GET", kUserCheck));
    if (verdict.code == ExitCode::Refused || verdict.code == ExitCode::Locked)
        return Failure(verdict.code, verdict.reason, verdict.hint);
    if (verdict.code == ExitCode::Failed && !verdict.isConclusive)
        return Failure(ExitCode::Failed, found.finding, found.hint);
    return std::nullopt;
}

}  // namespace host
