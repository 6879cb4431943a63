// How devices write times and time zones.
#pragma once

#include <chrono>
#include <optional>
#include <string>

namespace host {

using Instant = std::chrono::sys_seconds;

// The distance of a zone's standard time from UTC: 8 h for "CST-8:00:00", whose sign is inverted. Nothing when
// the text is no zone of a device.
std::optional<std::chrono::seconds> zoneOffset(const std::string& zone);

// A user's zone as devices write it: "+08:00" becomes "CST-8:00:00"; what is written so already stays. Empty
// when it is neither.
std::string deviceZone(const std::string& text);

// The instant that a device means by its local time. A time that does not tell its offset is taken in the zone,
// unless that has daylight saving: nobody knows whether it is in force.
std::optional<Instant> instantOf(const std::string& localTime, const std::string& zone);

// "2024-05-01T08:30:00+08:00"
std::string localTimeText(Instant instant, std::chrono::seconds offset);

}  // namespace host
