#include "translate/acs/HexPicture.h"

#include <array>
#include <cstdint>

namespace velta {

namespace {

constexpr char kDigits[] = "0123456789ABCDEF";

enum : uint8_t { kOther = 0xFF, kSkipped = 0xFE, kMinus = 0xFD };  // above all digits

// What a character is at the start of a number: a digit, blank or "+", "-", or anything else.
constexpr std::array<uint8_t, 256> kMeaning = [] {
    std::array<uint8_t, 256> meaning{};
    meaning.fill(kOther);
    for (uint8_t digit = 0; digit < 16; ++digit)
        meaning[static_cast<uint8_t>(kDigits[digit])] = digit;
    for (uint8_t digit = 10; digit < 16; ++digit)
        meaning[static_cast<uint8_t>('a' + digit - 10)] = digit;
    for (const char c : {' ', '\t', '\n', '\v', '\f', '\r', '+'})
        meaning[static_cast<uint8_t>(c)] = kSkipped;
    meaning['-'] = kMinus;
    return meaning;
}();

uint8_t byteOf(char first, char second) {
    const uint8_t high = kMeaning[static_cast<uint8_t>(first)];
    const uint8_t low = kMeaning[static_cast<uint8_t>(second)];
    if (high < 16) return static_cast<uint8_t>(low < 16 ? 16 * high + low : high);
    if (low >= 16 || high == kOther) return 0;
    return static_cast<uint8_t>(high == kMinus ? -low : low);
}

}  // namespace

std::string hexToStr(std::string_view text) {
    std::string bytes;
    bytes.reserve((text.size() + 1) / 2);
    for (size_t at = 0; at < text.size(); at += 2)
        bytes += static_cast<char>(byteOf(text[at], at + 1 < text.size() ? text[at + 1] : '\0'));
    return bytes;
}

std::string stringToHex(std::string_view bytes, std::string_view separator) {
    std::string text;
    text.reserve(bytes.size() * (2 + separator.size()));
    for (const char c : bytes) {
        const auto byte = static_cast<uint8_t>(c);
        text += kDigits[byte >> 4U];
        text += kDigits[byte & 15U];
        text += separator;
    }
    return text;
}

}  // namespace velta
