#include "answers.h"

#include <algorithm>
#include <memory>
#include <vector>

namespace check {
namespace {

constexpr size_t kInventorySize = size_t{64} << 10U;

Json::Value parsed(const std::string& text) {
    const std::unique_ptr<Json::CharReader> reader(Json::CharReaderBuilder().newCharReader());
    Json::Value value;
    if (!reader->parse(text.data(), text.data() + text.size(), &value, nullptr)) return {};
    return value;
}

}  // namespace

Json::Value mustBeObject(Trial& trial, const std::string& what, const std::string& text) {
    Json::Value value = parsed(text);
    if (!value.isObject()) {
        trial.text(what, "a JSON object", text);
        throw Stop{};
    }
    return value;
}

Json::Value inventory(Trial& trial, const Session& session) {
    std::vector<char> text(kInventorySize);
    trial.must(trial.code("DeviceLoop", VELTA_OK,
                          session.gateway().DeviceLoop(session.instance(), text.data(), kInventorySize)));
    return mustBeObject(trial, "inventory", text.data());
}

bool isStatus(Trial& trial, const std::string& what, uint32_t errorCode, const std::string& answer) {
    const Json::Value status = parsed(answer);
    if (!status.isObject() || !status["errorCode"].isUInt())
        return trial.text(what, "a status with \"errorCode\" " + std::to_string(errorCode), answer);
    return trial.code(what + ": \"errorCode\"", errorCode, status["errorCode"].asUInt());
}

}  // namespace check
