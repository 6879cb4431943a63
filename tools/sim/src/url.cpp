#include "url.h"

#include <curl/curl.h>

#include <memory>

namespace veltasim {
namespace {

using CurlText = std::unique_ptr<char, decltype(&curl_free)>;

}  // namespace

std::string percentEncoded(const std::string& text) {
    if (text.empty()) return "";
    const CurlText encoded(curl_easy_escape(nullptr, text.data(), static_cast<int>(text.size())), curl_free);
    return encoded ? encoded.get() : "";
}

std::string percentDecoded(std::string_view text) {
    if (text.empty()) return "";  // which libcurl would take for a text of unknown length
    int length = 0;
    const CurlText decoded(curl_easy_unescape(nullptr, text.data(), static_cast<int>(text.size()), &length),
                           curl_free);
    return decoded ? std::string(decoded.get(), static_cast<size_t>(length)) : "";
}

std::string queryValue(std::string_view target, std::string_view name) {
    size_t at = target.find('?');
    while (at < target.size()) {
        std::string_view pair = target.substr(at + 1);
        pair = pair.substr(0, pair.find('&'));
        at += 1 + pair.size();
        const size_t equals = pair.find('=');
        if (equals != std::string_view::npos && pair.substr(0, equals) == name)
            return percentDecoded(pair.substr(equals + 1));
    }
    return "";
}

}  // namespace veltasim
