#include "gateway/Envelope.h"

namespace velta {

namespace {

std::string_view trimBlanks(std::string_view text) {
    const size_t first = text.find_first_not_of(' ');
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

}  // namespace

bool readEnvelope(std::string_view text, HostRequest& request) {
    text = trimBlanks(text);
    Json::Value value;
    if (!text.starts_with('{') || !parseJson(text, value)) return false;
    const Json::Value& root = value;
    const Json::Value& method = root["method"];
    const Json::Value& uri = root["uri"];
    const Json::Value& body = root["body"];
    if (method.isNull() || !method.isConvertibleTo(Json::stringValue)) return false;
    if (!uri.isString() || !body.isString()) return false;
    request.method = method.asString();
    request.uri = uri.asString();
    request.body.text = body.asString();
    return true;
}

}  // namespace velta
