#include <xpr/text.h>

#include <algorithm>

#include "device/Connection.h"

namespace velta {

namespace {

void assign(ConnectionUrl& url, const std::string& key, const std::string& value) {
    struct Field {
        const char* key;
        std::string ConnectionUrl::*text;
    };
    static constexpr Field kFields[] = {
        {"Connect", &ConnectionUrl::connect},       {"Target", &ConnectionUrl::host},
        {"ResType", &ConnectionUrl::resType},       {"DevIndex", &ConnectionUrl::devIndex},
        {"DeviceName", &ConnectionUrl::deviceName},
    };
    if (key == "Port") url.port = XPR_Atoi32(value.c_str());
    for (const Field& field : kFields) {
        if (key == field.key) url.*field.text = value;
    }
}

bool hasControlCharacter(const std::string& text) {
    return std::any_of(text.begin(), text.end(),
                       [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7f; });
}

}  // namespace

// An item whose "=" stands behind its ";" takes everything up to there as its key and the rest of the text as
// its value; reading goes on behind the ";" all the same.
ConnectionUrl ConnectionUrl::parse(const std::string& url) {
    ConnectionUrl parsed;
    size_t equals = 0;
    size_t start = 0;
    for (size_t end = url.find(';'); end != std::string::npos; end = url.find(';', start)) {
        if (equals != std::string::npos) equals = url.find('=', std::max(start, equals));
        if (equals != std::string::npos && equals > start) {
            const size_t length = equals < end ? end - equals - 1 : std::string::npos;
            assign(parsed, url.substr(start, equals - start), url.substr(equals + 1, length));
        }
        start = end + 1;
    }
    return parsed;
}

bool ConnectionUrl::isSound() const {
    const std::string* texts[] = {&host, &resType, &devIndex, &deviceName};
    return port > 0 && port <= 65535 &&
           std::none_of(std::begin(texts), std::end(texts),
                        [](const std::string* text) { return hasControlCharacter(*text); });
}

}  // namespace velta
