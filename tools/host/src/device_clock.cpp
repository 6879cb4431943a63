#include "device_clock.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string_view>

namespace host {
namespace {

using std::chrono::minutes;
using std::chrono::seconds;

constexpr std::string_view kZoneMark = "CST";
constexpr const char* kDaylightMark = "DST";
constexpr int kLastHour = 14;  // no offset is larger

// What stands at the beginning of text, as in "+08:00" or "-8:00:00". Nothing when it is no offset.
std::optional<minutes> readOffset(const std::string& text) {
    char sign = 0;
    int hours = 0;
    int rest = 0;
    if (std::sscanf(text.c_str(), "%c%2d:%2d", &sign, &hours, &rest) != 3) return std::nullopt;
    if ((sign != '+' && sign != '-') || hours < 0 || hours > kLastHour || rest < 0 || rest > 59)
        return std::nullopt;
    const minutes size(hours * 60 + rest);
    return sign == '-' ? -size : size;
}

// The parts of an offset as they are written.
struct Written {
    explicit Written(minutes offset)
        : sign(offset.count() < 0 ? '-' : '+'),
          hours(std::abs(static_cast<int>(offset.count())) / 60),
          rest(std::abs(static_cast<int>(offset.count())) % 60) {}
    char sign;
    int hours;
    int rest;
};

}  // namespace

std::optional<seconds> zoneOffset(const std::string& zone) {
    if (!zone.starts_with(kZoneMark)) return std::nullopt;
    const auto west = readOffset(zone.substr(kZoneMark.size()));
    return west ? std::optional<seconds>(-*west) : std::nullopt;
}

std::string deviceZone(const std::string& text) {
    if (zoneOffset(text)) return text;
    const auto east = text.size() == std::strlen("+08:00") ? readOffset(text) : std::nullopt;
    if (!east) return "";
    const Written west(-*east);
    std::array<char, 32> zone{};
    std::snprintf(zone.data(), zone.size(), "CST%c%d:%02d:00", west.sign, west.hours, west.rest);
    return zone.data();
}

std::optional<Instant> instantOf(const std::string& localTime, const std::string& zone) {
    std::tm read{};
    const char* rest = strptime(localTime.c_str(), "%Y-%m-%dT%H:%M:%S", &read);
    if (rest == nullptr) return std::nullopt;
    std::optional<seconds> offset;
    std::tm zoned{};
    if (*rest == '\0') {
        if (zone.find(kDaylightMark) == std::string::npos) offset = zoneOffset(zone);
    } else if (const char* end = strptime(rest, "%z", &zoned); end != nullptr && *end == '\0') {
        offset = seconds(zoned.tm_gmtoff);
    }
    if (!offset) return std::nullopt;
    return Instant(seconds(timegm(&read)) - *offset);
}

std::string localTimeText(Instant instant, seconds offset) {
    const std::time_t shifted = (instant + offset).time_since_epoch().count();
    std::tm fields{};
    gmtime_r(&shifted, &fields);
    std::array<char, 32> time{};
    std::strftime(time.data(), time.size(), "%Y-%m-%dT%H:%M:%S", &fields);
    const Written east(std::chrono::duration_cast<minutes>(offset));
    std::array<char, 16> zone{};
    std::snprintf(zone.data(), zone.size(), "%c%02d:%02d", east.sign, east.hours, east.rest);
    return std::string(time.data()) + zone.data();
}

}  // namespace host
