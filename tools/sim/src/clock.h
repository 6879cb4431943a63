#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

#include "zone.h"

namespace veltasim {

// The clock of the device. Setting the zone does not change the instant that it shows.
class Clock {
 public:
    std::chrono::sys_seconds now() const;
    void set(std::chrono::sys_seconds time);

    // The time in the device's zone: 2024-05-17T08:30:00+02:00.
    std::string localTime() const;
    // The instant that such a text means; without an offset it is in the device's zone. Nothing: it is no time.
    std::optional<std::chrono::sys_seconds> instantOf(std::string_view text) const;
    // What the device's zone adds to UTC at that instant.
    std::chrono::seconds offsetAt(std::chrono::sys_seconds time) const { return zone_.offsetAt(time); }

    const std::string& zone() const { return zoneText_; }
    void setZone(std::string text);  // any text is kept

 private:
    std::chrono::sys_seconds base_ =
        std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now());  // the time at setAt_
    std::chrono::steady_clock::time_point setAt_ = std::chrono::steady_clock::now();
    std::string zoneText_ = "CST-8:00:00";
    Zone zone_ = parseZone(zoneText_);
};

}  // namespace veltasim
