// What the plug-in is measured against: the same libraries, used directly and for nothing else.
#pragma once

#include <json/value.h>

#include <cstdint>
#include <string>

namespace bench {

/* One exchange with a fresh handle on a fresh connection, log-in included; the body of the answer. */
std::string bareExchange(const std::string& method, const std::string& url, const std::string& body);

/* Reads the JSON text and writes it again. */
std::string bareJson(const std::string& text);

}  // namespace bench
