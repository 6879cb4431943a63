#include "gateway/Url.h"

#include <charconv>
#include <iterator>
#include <string_view>
#include <system_error>

int CompareUrl(const std::string& url, const char* pattern) {
    return velta::pathOf(url).compare(pattern);
}

namespace velta {

bool isJsonURL(const std::string& uri) {
    return uri.find("format=json") != std::string::npos;
}

namespace {

// Length of the canonical decimal int at the start of text; 0 when there is none.
size_t numberLength(std::string_view text) {
    int number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc{}) return 0;
    const auto length = static_cast<size_t>(end - text.data());
    return text.substr(0, length) == std::to_string(number) ? length : 0;
}

}  // namespace

bool CheckUrlWithVariable(const char* url, const char* pattern, int count) {
    if (count < 0 || count > 4) return false;
    std::string_view path(url);
    path = path.substr(0, path.find('?'));
    std::string_view rest(pattern);
    for (; count > 0; --count) {
        const size_t variable = rest.find("%d");
        if (variable == std::string_view::npos || !path.starts_with(rest.substr(0, variable))) return false;
        path.remove_prefix(variable);
        const size_t length = numberLength(path);
        if (length == 0) return false;
        path.remove_prefix(length);
        rest.remove_prefix(variable + 2);
    }
    return path == rest;
}

std::string pathOf(const std::string& uri) {
    return uri.substr(0, uri.find('?'));
}

// The parameter is recognised with its separator, but cut at the first place where its bare name stands.
bool removeQueryFromUrl(std::string& out, const char* url, const std::string& key) {
    const std::string_view text = url;
    const auto isParameter = [&](size_t name) {
        return name > 0 && (text[name - 1] == '&' || text[name - 1] == '?') &&
               text.substr(name + key.size()).starts_with('=');
    };
    const size_t at = text.find(key);
    size_t parameter = at;
    while (parameter != std::string_view::npos && !isParameter(parameter))
        parameter = text.find(key, parameter + 1);
    if (parameter == std::string_view::npos) return false;
    size_t next = text.find('&', at);
    if (next == std::string_view::npos) next = text.find('?', at);
    out.reserve(text.size());
    out.assign(text.substr(0, at > 0 ? at - 1 : 0));
    if (next != std::string_view::npos) out.append(text.substr(next));
    return true;
}

std::string percentEncoded(std::string_view text) {
    static constexpr std::string_view kUnreserved =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~";
    static constexpr char kDigits[] = "0123456789ABCDEF";
    std::string encoded;
    for (const char c : text) {
        if (kUnreserved.find(c) != std::string_view::npos) {
            encoded += c;
            continue;
        }
        const auto byte = static_cast<unsigned char>(c);
        encoded += '%';
        encoded += kDigits[byte >> 4U];
        encoded += kDigits[byte & 15U];
    }
    return encoded;
}

uint32_t covertVELTAMethod(const std::string& method) {
    static constexpr const char* kMethods[] = {"GET", "PUT", "POST", "DELETE"};
    for (uint32_t code = 0; code < std::size(kMethods); ++code) {
        if (method == kMethods[code]) return code;
    }
    return 0xFFFFFFFF;
}

}  // namespace velta
