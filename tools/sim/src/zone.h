#pragma once

#include <chrono>
#include <string>

namespace veltasim {

// A day and time of the year: week 5 is the last one of the month, weekday 0 is Sunday.
struct YearlySwitch {
    unsigned month = 0;
    unsigned week = 0;
    unsigned weekday = 0;
    std::chrono::seconds time{0};

    bool isGood() const { return month >= 1 && month <= 12 && week >= 1 && week <= 5 && weekday <= 6; }
    std::chrono::local_seconds in(std::chrono::year year) const;
};

struct Zone {
    std::chrono::seconds standard{0};  // added to UTC
    std::chrono::seconds summer{0};    // added on top while summer time is in force
    YearlySwitch begin;                // in standard time
    YearlySwitch end;                  // in summer time

    std::chrono::seconds offsetAt(std::chrono::sys_seconds time) const;
};

// "CST-1:00:00", what to add to the standard time for UTC; then perhaps
// "DST01:00:00,M3.5.0/02:00:00,M10.5.0/03:00:00", how much earlier it is in summer, and from when until when.
// UTC if the text is of another form.
Zone parseZone(const std::string& text);

}  // namespace veltasim
