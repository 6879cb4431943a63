/* Matching and editing the URIs of host requests. */
#ifndef VELTA_GATEWAY_URL_H
#define VELTA_GATEWAY_URL_H

#include <cstdint>
#include <string>
#include <string_view>

/* Compares the path of url, which ends at its first "?", with a text; 0: equal. */
int CompareUrl(const std::string& url, const char* pattern);

namespace velta {

/* Whether the text "format=json" occurs in uri. */
bool isJsonURL(const std::string& uri);

/* The path of a uri: what stands before its first "?". */
std::string pathOf(const std::string& uri);

/* Whether the path of url is the pattern with each of its "%d" replaced by a number, count of them (0 to 4).
 * A number is the canonical decimal spelling of an int: "7" and "-1" match, "07", "+7" and what no int holds
 * do not. */
bool CheckUrlWithVariable(const char* url, const char* pattern, int count);

/* Takes the parameter key with its value and the separator in front of it out of url. What follows keeps its
 * own separator: "/a?key=2&b=1" becomes "/a&b=1". False, with out untouched, when url has no such parameter.
 */
bool removeQueryFromUrl(std::string& out, const char* url, const std::string& key);

/* A text to stand in a URL as the value of a parameter: all but letters, digits and "-._~" become "%XX", so
 * that no text changes what the URL means. */
std::string percentEncoded(std::string_view text);

/* "GET" 0, "PUT" 1, "POST" 2, "DELETE" 3, in exactly this spelling; else 0xFFFFFFFF. */
uint32_t covertVELTAMethod(const std::string& method);

}  // namespace velta

#endif
