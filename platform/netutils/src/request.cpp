#include "request.h"

#include <netutils/netutils.h>
#include <string.h>
#include <strings.h>

#include <algorithm>
#include <array>

#include "last_error.h"

namespace netutils {
namespace {

constexpr size_t kUsualHeaders = 4;

/* Headers that frame the message. They follow from the body alone, so what the caller sets is not sent. */
constexpr std::string_view kFramingHeaders[] = {"Content-Length", "Transfer-Encoding", "Expect"};

/* Kinds of characters, to be added up. */
enum : unsigned char { kControl = 1, kEndsName = 2 };

/* By character; a table, since every character of every request is looked at. */
constexpr auto kKinds = [] {
    std::array<unsigned char, 256> kinds{};
    std::fill_n(kinds.begin(), 0x20, kControl);
    kinds[0x7f] = kControl;
    for (const unsigned char c : {' ', ':', ';'})
        kinds[c] = kEndsName;
    return kinds;
}();

bool contains(std::string_view text, unsigned char kinds) {
    return std::ranges::any_of(
        text, [kinds](char c) { return (kKinds[static_cast<unsigned char>(c)] & kinds) != 0; });
}

/* Takes off the terminating zero that header texts are passed with; false when there is none. */
bool takeTerminator(std::string_view* text) {
    if (text->empty() || text->back() != '\0') return false;
    text->remove_suffix(1);
    return true;
}

int readMilliseconds(std::string_view value, int32_t* milliseconds) {
    int32_t read = 0;
    if (value.size() != sizeof read) return fail(NET_UTILS_ERROR_PARAMETER);
    memcpy(&read, value.data(), sizeof read);
    if (read < 0) return fail(NET_UTILS_ERROR_PARAMETER);
    *milliseconds = read;
    return NET_UTILS_OK;
}

}  // namespace

bool hasControlCharacters(std::string_view text) {
    return contains(text, kControl);
}

bool equalsIgnoringCase(std::string_view a, std::string_view b) {
    return a.size() == b.size() && strncasecmp(a.data(), b.data(), a.size()) == 0;
}

void Secret::set(std::string_view text) {
    wipe();
    text_ = text;
}

void Secret::wipe() noexcept {
    explicit_bzero(text_.data(), text_.size());
}

int Request::setParameter(int code, std::string_view name, std::string_view value) {
    switch (code) {
        case NET_HTTPCLIENT_PARAM_CREDENTIALS:
            return setCredentials(name, value);
        case NET_HTTPCLIENT_PARAM_BODY:
            body_ = value;
            return NET_UTILS_OK;
        case NET_HTTPCLIENT_PARAM_HEADER:
            return addHeader(name, value);
        case NET_HTTPCLIENT_PARAM_SEND_TIMEOUT:
            return readMilliseconds(value, &sendTimeoutMs_);
        case NET_HTTPCLIENT_PARAM_EXCHANGE_TIMEOUT:
            return readMilliseconds(value, &exchangeTimeoutMs_);
        case NET_HTTPCLIENT_PARAM_EXTRA:
            return NET_UTILS_OK;
        default:
            return fail(NET_UTILS_ERROR_PARAMETER);
    }
}

int Request::setCredentials(std::string_view user, std::string_view password) {
    // Both end at their first zero on the way to libcurl; never log in with half a password.
    if (user.find('\0') != user.npos || password.find('\0') != password.npos)
        return fail(NET_UTILS_ERROR_PARAMETER);
    user_.set(user);
    password_.set(password);
    hasCredentials_ = true;
    return NET_UTILS_OK;
}

int Request::addHeader(std::string_view name, std::string_view value) {
    const bool valid = takeTerminator(&name) && takeTerminator(&value) && !name.empty() &&
                       !contains(name, kControl | kEndsName) && !contains(value, kControl);
    if (!valid) return fail(NET_UTILS_ERROR_PARAMETER);
    if (std::ranges::any_of(kFramingHeaders,
                            [name](std::string_view framing) { return equalsIgnoringCase(name, framing); })) {
        return NET_UTILS_OK;
    }
    if (headers_.empty()) headers_.reserve(kUsualHeaders);
    std::string& line = headers_.emplace_back();
    line.reserve(name.size() + 2 + value.size());
    line = name;
    if (value.find_first_not_of(' ') == std::string_view::npos) {
        line += ';';
    } else {
        line.append(": ").append(value);
    }
    hasContentType_ = hasContentType_ || equalsIgnoringCase(name, "Content-Type");
    return NET_UTILS_OK;
}

}  // namespace netutils
