#include "base64.h"

#include <cstdint>

namespace veltasim {
namespace {

constexpr std::string_view kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

}  // namespace

std::string base64(std::string_view bytes) {
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    for (size_t i = 0; i < bytes.size(); i += 3) {
        const size_t count = std::min<size_t>(3, bytes.size() - i);
        uint32_t group = 0;
        for (size_t j = 0; j < 3; ++j)
            group = group << 8U | (j < count ? static_cast<unsigned char>(bytes[i + j]) : 0U);
        for (size_t j = 0; j < 4; ++j)
            text += j <= count ? kDigits[group >> (18 - 6 * j) & 63U] : '=';
    }
    return text;
}

std::optional<std::string> fromBase64(std::string_view text) {
    if (text.size() % 4 != 0) return std::nullopt;
    const size_t padding = text.ends_with("==") ? 2 : text.ends_with("=") ? 1 : 0;
    std::string bytes;
    bytes.reserve(text.size() / 4 * 3);
    uint32_t bits = 0;
    for (size_t i = 0; i < text.size() - padding; ++i) {
        const size_t digit = kDigits.find(text[i]);
        if (digit == std::string_view::npos) return std::nullopt;
        bits = bits << 6U | static_cast<uint32_t>(digit);
        const size_t fresh = 6 * (i % 4 + 1) % 8;  // bits of the next byte
        if (i % 4 != 0) bytes += static_cast<char>(bits >> fresh);
    }
    return bytes;
}

}  // namespace veltasim
