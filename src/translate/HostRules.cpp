#include "translate/HostRules.h"

#include <xlog/xlog.h>

#include <algorithm>

namespace velta {

namespace {

bool isOfType(const Json::Value& value, JsonType type) {
    switch (type) {
        case JsonType::Any:
            return true;
        case JsonType::Bool:
            return value.isBool();
        case JsonType::Integer:
            return value.isInt();
        case JsonType::Unsigned:
            return value.isUInt();
        case JsonType::String:
            return value.isString();
        case JsonType::Object:
            return value.isObject();
        case JsonType::Array:
            return value.isArray();
    }
    return false;
}

bool isAllowed(const Json::Value& value, std::span<const char* const> values) {
    return values.empty() ||
           std::any_of(values.begin(), values.end(), [&](const char* allowed) { return value == allowed; });
}

bool keepsRule(const Json::Value& object, const HostRule& rule) {
    if (!object.isMember(rule.member)) return rule.presence == Presence::Optional;
    const Json::Value& value = object[rule.member];
    if (value.isNull() && rule.presence == Presence::Required) return false;
    if (!isOfType(value, rule.type) || !isAllowed(value, rule.values)) return false;
    if (rule.members.count == 0) return true;
    if (!value.isArray()) return keepsRules(value, rule.members);
    return std::all_of(value.begin(), value.end(),
                       [&](const Json::Value& item) { return keepsRules(item, rule.members); });
}

}  // namespace

bool keepsRules(const Json::Value& value, const HostRules& rules) {
    if (!value.isObject()) return false;
    for (const HostRule& rule : std::span(rules.rows, rules.count)) {
        if (keepsRule(value, rule)) continue;
        xlog_format(XLOG_ERROR, "VELTADEV", "[%s(%d)] param %s is wrong", __func__, __LINE__, rule.member);
        return false;
    }
    return true;
}

}  // namespace velta
