// Text and JSON on their way to the user.
#pragma once

#include <json/value.h>

#include <cstddef>
#include <string>
#include <string_view>

namespace host {

// Devices choose names and documents: control characters, which could steer a terminal, become "?". Line
// feeds and tabulators stay.
std::string printable(std::string_view text);

bool parseJson(std::string_view text, Json::Value& value);  // value is null when the text is not JSON
std::string compactJson(const Json::Value& value);          // one line of ASCII
std::string prettyJson(const Json::Value& value);           // no line feed at the end

// A member as text, also a number; empty when value is no object, or the member is missing or no scalar.
std::string member(const Json::Value& value, const char* name);

// What stands between <name> and </name>, first occurrence; empty when there is no such element.
std::string element(std::string_view xml, const std::string& name);

std::string sizeText(size_t bytes);    // "8.6 KB"
std::string hexText(unsigned number);  // "0x40000001"
std::string clockText();               // local time, "15:04:05"

}  // namespace host
