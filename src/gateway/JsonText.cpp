#include "gateway/JsonText.h"

#include <json/reader.h>
#include <json/writer.h>

#include "gateway/InputGuard.h"

// The library marks these two classes as old-fashioned; their results are what hosts and devices are used to.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

namespace velta {

bool parseJson(std::string_view text, Json::Value& root) {
    // The reader would look back over all comments behind a value for each of them; nobody wants to have them.
    constexpr bool kCollectComments = false;
    if (!isJsonShapeAllowed(text)) return false;
    Json::Reader reader;
    return reader.parse(text.data(), text.data() + text.size(), root, kCollectComments);
}

std::string writeJson(const Json::Value& value) {
    return Json::FastWriter().write(value);
}

const Json::Value& memberOf(const Json::Value& value, const char* name) {
    return value.isObject() ? value[name] : Json::Value::nullSingleton();
}

std::optional<uint32_t> integerOf(const Json::Value& value) {
    if (value.isInt()) return static_cast<uint32_t>(value.asInt());
    if (value.isUInt()) return value.asUInt();
    return std::nullopt;
}

}  // namespace velta

#pragma GCC diagnostic pop
