#include "site.h"

#include <json/json.h>

#include <sstream>

#include "exchange.h"
#include "text.h"

namespace host {
namespace {

constexpr auto kLookAgain = std::chrono::milliseconds(300);

}  // namespace

Json::Value Site::ask(const std::string& method, const std::string& uri, const Json::Value& body) const {
    return exchange(host, session, method, uri, body);
}

void Site::report(const char* type, const std::string& text, const Json::Value& members) const {
    Json::Value json;
    json["type"] = type;
    json["device"] = device;
    if (members.isObject()) {
        for (const std::string& name : members.getMemberNames())
            json[name] = members[name];
    }
    host.console.result(text, json);
}

void Site::awaitWork(const std::string& what, const std::string& uri, const char* root) const {
    const auto began = Clock::now();
    for (;;) {
        const Json::Value answer = ask("GET", uri);
        const std::string status = answer.isObject() ? member(answer[root], "status") : "";
        if (status == "failed")
            throw Failure(ExitCode::Failed, what + ": the device says that it has failed");
        if (status != "processing") break;
        const auto passed = std::chrono::duration_cast<std::chrono::seconds>(Clock::now() - began);
        host.console.progress(what + ": the device is at work, " + std::to_string(passed.count()) + " s");
        host.waiter.wait(Clock::now() + kLookAgain);
        host.waiter.throwIfInterrupted();
    }
    host.console.endCountdown();
}

std::string joined(const std::vector<std::string>& texts, const char* separator) {
    std::string all;
    for (const std::string& text : texts)
        all += (all.empty() ? "" : separator) + text;
    return all;
}

std::string counted(uint64_t count, const std::string& noun) {
    return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

std::vector<std::string> split(const std::string& text, char separator) {
    std::vector<std::string> pieces;
    std::istringstream stream(text);
    for (std::string piece; std::getline(stream, piece, separator);)
        pieces.push_back(piece);
    return pieces;
}

uint64_t numberAt(const Json::Value& json, const std::string& path) {
    const Json::Value& found = Json::Path(path).resolve(json);
    return found.isUInt64() ? found.asUInt64() : 0;
}

Json::Value objectsOf(const char* key, const std::vector<std::string>& texts) {
    Json::Value list = Json::arrayValue;
    for (const std::string& text : texts)
        list.append(Json::objectValue)[key] = text;
    return list;
}

}  // namespace host
