#include "translate/system/LocalTime.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <string_view>

namespace {

constexpr size_t kOffsetPosition = 19;  // in a local time
constexpr size_t kOffsetLength = 6;
constexpr size_t kMaxTimeZone = 80;

// Hosts count eastwards, devices westwards. There is no rule for which half hours devices have.
struct Offset {
    std::string_view host;
    std::string_view device;
};
constexpr Offset kOffsets[] = {
    {"-12:00", "+12:00:00"}, {"-11:00", "+11:00:00"}, {"-10:00", "+10:00:00"}, {"-09:00", "+9:00:00"},
    {"-08:00", "+8:00:00"},  {"-07:00", "+7:00:00"},  {"-06:00", "+6:00:00"},  {"-05:00", "+5:00:00"},
    {"-04:30", "+4:30:00"},  {"-04:00", "+4:00:00"},  {"-03:30", "+3:30:00"},  {"-03:00", "+3:00:00"},
    {"-02:00", "+2:00:00"},  {"-01:00", "+1:00:00"},  {"+00:00", "+0:00:00"},  {"+01:00", "-1:00:00"},
    {"+02:00", "-2:00:00"},  {"+03:00", "-3:00:00"},  {"+03:30", "-3:30:00"},  {"+04:00", "-4:00:00"},
    {"+04:30", "-4:30:00"},  {"+05:00", "-5:00:00"},  {"+05:30", "-5:30:00"},  {"+05:45", "-5:45:00"},
    {"+06:00", "-6:00:00"},  {"+06:30", "-6:30:00"},  {"+07:00", "-7:00:00"},  {"+08:00", "-8:00:00"},
    {"+09:00", "-9:00:00"},  {"+09:30", "-9:30:00"},  {"+10:00", "-10:00:00"}, {"+11:00", "-11:00:00"},
    {"+12:00", "-12:00:00"}, {"+13:00", "-13:00:00"}, {"+14:00", "-14:00:00"},
};
static_assert(std::size(kOffsets) == 35);

// Takes a text apart from its start; a step that fails takes nothing.
class Scanner {
 public:
    explicit Scanner(std::string_view text) : rest_(text) {}

    bool literal(std::string_view expected) {
        if (!rest_.starts_with(expected)) return false;
        rest_.remove_prefix(expected.size());
        return true;
    }
    bool number(size_t minDigits, size_t maxDigits, unsigned min, unsigned max) {
        const char* const start = rest_.data();
        unsigned value = 0;
        const auto [end, error] = std::from_chars(start, start + std::min(maxDigits, rest_.size()), value);
        const auto digits = static_cast<size_t>(end - start);
        if (error != std::errc{} || digits < minDigits || value < min || value > max) return false;
        rest_.remove_prefix(digits);
        return true;
    }
    /* Minutes and seconds, hours, days: two digits. */
    bool pair(unsigned min, unsigned max) { return number(2, 2, min, max); }
    bool atEnd() const { return rest_.empty(); }

 private:
    std::string_view rest_;
};

bool scanDeviceOffset(Scanner& text) {
    return std::any_of(std::begin(kOffsets), std::end(kOffsets),
                       [&text](const Offset& offset) { return text.literal(offset.device); });
}

bool scanTime(Scanner& text) {
    return text.number(1, 2, 0, 23) && text.literal(":") && text.pair(0, 59) && text.literal(":") &&
           text.pair(0, 59);
}

bool scanChange(Scanner& text) {
    return text.literal("M") && text.number(1, 2, 1, 12) && text.literal(".") && text.number(1, 1, 1, 5) &&
           text.literal(".") && text.number(1, 1, 0, 6) && text.literal("/") && scanTime(text);
}

}  // namespace

bool checkLocalTimeFormat(const std::string& localTime) {
    Scanner text(localTime);
    const bool isTime = text.number(4, 4, 1, 9999) && text.literal("-") && text.pair(1, 12) &&
                        text.literal("-") && text.pair(1, 31) && text.literal("T") && text.pair(0, 23) &&
                        text.literal(":") && text.pair(0, 59) && text.literal(":") && text.pair(0, 59);
    if (!isTime) return false;
    if (text.literal("Z")) return text.atEnd();
    const bool isOffset = (text.literal("+") && text.pair(0, 14)) || (text.literal("-") && text.pair(0, 12));
    return isOffset && text.literal(":") && text.pair(0, 59) && text.atEnd();
}

std::string getCSTFromJsonTime(const std::string& localTime) {
    if (localTime.size() <= kOffsetPosition) return "";
    const std::string_view host = std::string_view(localTime).substr(kOffsetPosition, kOffsetLength);
    const auto* const offset = std::find_if(std::begin(kOffsets), std::end(kOffsets),
                                            [host](const Offset& o) { return o.host == host; });
    return offset != std::end(kOffsets) ? std::string("CST").append(offset->device) : "";
}

bool isValidTimeZone(const std::string& timeZone) {
    if (timeZone.size() > kMaxTimeZone) return false;
    Scanner text(timeZone);
    if (!text.literal("CST") || !scanDeviceOffset(text)) return false;
    if (text.atEnd()) return true;
    return text.literal("DST") && scanTime(text) && text.literal(",") && scanChange(text) &&
           text.literal(",") && scanChange(text) && text.atEnd();
}
