#include "gateway/Url.h"

#include <cstring>
#include <iterator>

int CompareUrl(const std::string& url, const char* pattern) {
    return velta::pathOf(url).compare(pattern);
}

namespace velta {

bool isJsonURL(const std::string& uri) {
    return uri.find("format=json") != std::string::npos;
}

std::string pathOf(const std::string& uri) {
    return uri.substr(0, uri.find('?'));
}

// The parameter is recognised with its separator, but cut at the first place where its bare name stands.
bool removeQueryFromUrl(std::string& out, const char* url, const std::string& key) {
    const std::string text = url;
    if (text.find("&" + key + "=") == std::string::npos && text.find("?" + key + "=") == std::string::npos)
        return false;
    const size_t at = text.find(key);
    std::string kept = text.substr(0, at > 0 ? at - 1 : 0);
    size_t next = text.find('&', at);
    if (next == std::string::npos) next = text.find('?', at);
    if (next != std::string::npos) kept += text.substr(next);
    out = std::move(kept);
    return true;
}

uint32_t covertVELTAMethod(const std::string& method) {
    static constexpr const char* kMethods[] = {"GET", "PUT", "POST", "DELETE"};
    for (uint32_t code = 0; code < std::size(kMethods); ++code) {
        if (method == kMethods[code]) return code;
    }
    return 0xFFFFFFFF;
}

}  // namespace velta
