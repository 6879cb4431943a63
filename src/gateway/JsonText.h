/* The one place where JSON text is read and written. */
#ifndef VELTA_GATEWAY_JSONTEXT_H
#define VELTA_GATEWAY_JSONTEXT_H

#include <json/value.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace velta {

/* Reads the JSON value at the start of text; what stands behind it is ignored. False, with root undefined,
 * when there is none or when it is beyond the limits of InputGuard.h. */
bool parseJson(std::string_view text, Json::Value& root);

/* Compact: no blanks, ASCII only (others as \uXXXX), members in the order of their names, one line feed at
 * the end. */
std::string writeJson(const Json::Value& value);

/* A member of value, also when that is no object: null when there is none. */
const Json::Value& memberOf(const Json::Value& value, const char* name);

/* A number without fraction that fits 32 bits, with or without sign; 1.0 counts as 1. */
std::optional<uint32_t> integerOf(const Json::Value& value);

}  // namespace velta

#endif
