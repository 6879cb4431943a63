#include "replay/left_out.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <string_view>
#include <utility>

#include <veltasim/event.h>

namespace veltasim {
namespace {

constexpr size_t npos = std::string::npos;
constexpr std::string_view kNote = "[left out";
constexpr size_t kMostFilledIn = size_t{16} << 20U;
constexpr std::string_view kBlanks = " \t\r\n";

// A small picture, with zeros behind its end.
std::string bytesFor(size_t size) {
    std::string bytes(picture(PictureSize::Small).substr(0, size));
    bytes.resize(size, '\0');
    return bytes;
}

// Replaces the value of the first member or element of that name if it is the one expected.
void replaceValue(std::string& text, const std::string& name, const std::string& from,
                  const std::string& to) {
    for (const auto& [opening, blanks] : {std::pair{"\"" + name + "\"", std::string(kBlanks) + ":\""},
                                          std::pair{"<" + name + ">", std::string(kBlanks)}}) {
        const size_t found = text.find(opening);
        if (found == npos) continue;
        const size_t value = text.find_first_not_of(blanks, found + opening.size());
        const size_t end = value == npos ? npos : text.find_first_of("\"<,} \t\r\n", value);
        if (end != npos && text.substr(value, end - value) == from) text.replace(value, end - value, to);
    }
}

void addToLength(std::string& head, int64_t difference) {
    constexpr std::string_view kName = "content-length:";
    std::string lower(head);
    std::ranges::transform(lower, lower.begin(), [](unsigned char c) { return std::tolower(c); });
    const size_t name = lower.find(kName);
    if (difference == 0 || name == npos) return;
    const size_t begin = std::min(head.find_first_not_of(" \t", name + kName.size()), head.size());
    int64_t length = 0;
    const auto [stop, error] = std::from_chars(head.data() + begin, head.data() + head.size(), length);
    if (error != std::errc()) return;
    head.replace(begin, static_cast<size_t>(stop - head.data()) - begin, std::to_string(length + difference));
}

}  // namespace

std::string filledIn(const std::string& text) {
    std::string filled;
    size_t copied = 0;
    for (size_t at = text.find(kNote); at != npos; at = text.find(kNote, at + 1)) {
        const size_t number = at + kNote.size() + 2;  // behind ": "
        size_t size = 0;
        if (number >= text.size()) break;
        const auto [stop, error] = std::from_chars(text.data() + number, text.data() + text.size(), size);
        const std::string_view unit = std::string_view(text).substr(static_cast<size_t>(stop - text.data()));
        const bool isBytes = unit.starts_with(" bytes]");
        const bool isCharacters = unit.starts_with(" characters]");
        if (error != std::errc() || size > kMostFilledIn || (!isBytes && !isCharacters)) continue;
        filled.append(text, copied, at - copied).append(isBytes ? bytesFor(size) : std::string(size, 'A'));
        copied = text.find(']', at) + 1;
    }
    return filled.append(text, copied);
}

bool isLeftOut(const std::string& text) {
    return text.starts_with(kNote);
}

std::string readdressed(const std::string& part, const DeviceEnd& from, const DeviceEnd& to) {
    constexpr std::string_view kHeaderEnd = "\r\n\r\n";
    const size_t headerEnd = part.find(kHeaderEnd);
    if (headerEnd == npos) return part;
    std::string head = part.substr(0, headerEnd + kHeaderEnd.size());
    std::string body = part.substr(head.size());
    const size_t before = body.size();
    replaceValue(body, "ipAddress", from.address, to.address);
    replaceValue(body, "portNo", std::to_string(from.port), std::to_string(to.port));
    addToLength(head, static_cast<int64_t>(body.size()) - static_cast<int64_t>(before));
    return head + body;
}

}  // namespace veltasim
