#include "line.h"

#include <stdint.h>
#include <stdio.h>

#include <algorithm>

namespace xlog {
namespace {

constexpr size_t kLongestCharacter = 4;

struct LeadByte {
    uint8_t first, last;
    size_t length;
};

/* UTF-8; bytes in no row cannot start a character. */
constexpr LeadByte kLeadBytes[] = {
    {0x20, 0x7e, 1},
    {0xc2, 0xdf, 2},
    {0xe0, 0xef, 3},
    {0xf0, 0xf4, 4},
};

/* The length of the printable character that the text starts with; 0 when it starts with something else. */
size_t characterLength(std::string_view text) {
    const auto lead = static_cast<uint8_t>(text.front());
    const auto* row = std::ranges::find_if(
        kLeadBytes, [lead](const LeadByte& range) { return range.first <= lead && lead <= range.last; });
    if (row == std::end(kLeadBytes) || row->length > text.size()) return 0;
    const bool whole = std::ranges::all_of(text.substr(1, row->length - 1), [](char byte) {
        return (static_cast<uint8_t>(byte) & 0xc0) == 0x80;
    });
    return whole ? row->length : 0;
}

}  // namespace

Line::Line(const char* format, va_list arguments) noexcept {
    // Room for the rest of a character that begins just before the cut.
    char raw[XLOG_MAX_LINE + kLongestCharacter];
    const int length = vsnprintf(raw, sizeof raw, format, arguments);
    if (length < 0) {
        escape(format);
    } else {
        escape({raw, std::min(static_cast<size_t>(length), sizeof raw - 1)});
    }
}

void Line::escape(std::string_view raw) noexcept {
    static constexpr char kDigits[] = "0123456789abcdef";
    while (!raw.empty()) {
        const auto byte = static_cast<uint8_t>(raw.front());
        const char escaped[] = {'\\', 'x', kDigits[byte >> 4], kDigits[byte & 0xf]};
        const size_t taken = characterLength(raw);
        const std::string_view written =
            taken != 0 ? raw.substr(0, taken) : std::string_view(escaped, sizeof escaped);
        if (length_ + written.size() > XLOG_MAX_LINE) break;
        length_ += written.copy(text_ + length_, written.size());
        raw.remove_prefix(std::max<size_t>(taken, 1));
    }
    text_[length_] = '\0';
}

}  // namespace xlog
