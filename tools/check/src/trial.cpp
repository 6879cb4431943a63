#include "trial.h"

#include <thread>
#include <utility>

namespace check {
namespace {

constexpr size_t kLongestShown = 200;
constexpr auto kLookAgain = std::chrono::milliseconds(5);
constexpr uint32_t kFirstNegative = 0xFFFFFF00;  // -256 and up are shown as negative numbers
constexpr uint32_t kSmall = 256;

std::string hex(uint32_t value, int digits) {
    std::string text;
    for (int shift = (digits - 1) * 4; shift >= 0; shift -= 4)
        text += "0123456789ABCDEF"[(value >> static_cast<unsigned>(shift)) & 15U];
    return text;
}

}  // namespace

std::string shown(std::string_view text) {
    std::string result = "\"";
    for (const char c : text.substr(0, kLongestShown)) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '\n' || c == '\r') {
            result += c == '\n' ? "\\n" : "\\r";
        } else if (byte < ' ' || byte > '~') {
            result += "\\x" + hex(byte, 2);
        } else {
            result += c;
        }
    }
    result += '"';
    if (text.size() > kLongestShown) result += "... (" + std::to_string(text.size()) + " bytes)";
    return result;
}

std::string shownCode(uint32_t code) {
    if (code < kSmall || code >= kFirstNegative) return std::to_string(static_cast<int32_t>(code));
    return "0x" + hex(code, 8);
}

Trial::Trial(std::string libraryPath, Clock::time_point end, Report report)
    : libraryPath_(std::move(libraryPath)), end_(end), report_(std::move(report)) {}

bool Trial::report(const Finding& finding) {
    hasFindings_ = true;
    report_(finding);
    return false;
}

bool Trial::code(const std::string& what, uint32_t expected, int64_t found) {
    return expected == static_cast<uint32_t>(found) ||
           report({what, shownCode(expected), shownCode(static_cast<uint32_t>(found))});
}

bool Trial::text(const std::string& what, std::string_view expected, std::string_view found) {
    return expected == found || report({what, shown(expected), shown(found)});
}

bool Trial::contains(const std::string& what, std::string_view part, std::string_view found) {
    return found.find(part) != std::string_view::npos ||
           report({what, "something with " + shown(part), shown(found)});
}

bool Trial::sameNumber(const std::string& what, int64_t expected, int64_t found) {
    return expected == found || report({what, std::to_string(expected), std::to_string(found)});
}

bool Trial::becomes(const std::string& statement, const std::function<bool()>& condition) {
    while (!condition()) {
        if (Clock::now() > end_) return holds(statement + ", in the time that there is", false);
        std::this_thread::sleep_for(kLookAgain);
    }
    return true;
}

}  // namespace check
