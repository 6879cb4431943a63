/* The one place where JSON text is read and written. */
#ifndef VELTA_GATEWAY_JSONTEXT_H
#define VELTA_GATEWAY_JSONTEXT_H

#include <json/value.h>

#include <string>
#include <string_view>

namespace velta {

/* Reads the JSON value at the start of text; what stands behind it is ignored. False, with root undefined,
 * when there is none or when it is nested deeper than kMaxJsonNesting. */
bool parseJson(std::string_view text, Json::Value& root);

/* Compact: no blanks, ASCII only (others as \uXXXX), members in the order of their names, one line feed at
 * the end. */
std::string writeJson(const Json::Value& value);

}  // namespace velta

#endif
