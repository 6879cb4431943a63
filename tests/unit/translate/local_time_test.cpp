#include "translate/system/LocalTime.h"

#include <gtest/gtest.h>

namespace {

TEST(LocalTime, isCheckedButNotAgainstTheCalendar) {
    for (const char* text : {"2024-02-31T10:00:00Z", "0001-01-01T00:00:00Z", "9999-12-31T23:59:59Z",
                             "2024-01-01T10:00:00+14:59", "2024-01-01T10:00:00-12:00"})
        EXPECT_TRUE(checkLocalTimeFormat(text)) << text;
    for (const char* text :
         {"", "2024-01-01T10:00:00", "2024-01-01T10:00:00z", "2024-01-01T10:00:00Z ", "0000-01-01T10:00:00Z",
          "2024-13-01T10:00:00Z", "2024-00-01T10:00:00Z", "2024-01-00T10:00:00Z", "2024-01-32T10:00:00Z",
          "2024-01-01T24:00:00Z", "2024-01-01T10:60:00Z", "2024-01-01T10:00:60Z", "2024-01-01 10:00:00Z",
          "2024-01-01T10:00:00+15:00", "2024-01-01T10:00:00-13:00", "2024-01-01T10:00:00+01:60",
          "2024-01-01T10:00:00+0100", "2024-01-01T10:00:00+01:00Z", "2024-1-01T10:00:00Z"})
        EXPECT_FALSE(checkLocalTimeFormat(text)) << text;
}

TEST(LocalTime, namesTheDevicesOffset) {
    int known = 0;
    for (int minutes = -13 * 60; minutes <= 15 * 60; minutes += 15) {
        const int distance = std::abs(minutes);
        char host[32];
        char device[32];
        std::snprintf(host, sizeof host, "%c%02d:%02d", minutes < 0 ? '-' : '+', distance / 60,
                      distance % 60);
        std::snprintf(device, sizeof device, "CST%c%d:%02d:00", minutes > 0 ? '-' : '+', distance / 60,
                      distance % 60);
        const std::string zone = getCSTFromJsonTime(std::string("2024-05-01T08:30:00") + host);
        EXPECT_EQ(zone, isValidTimeZone(device) ? device : "") << host;
        known += zone.empty() ? 0 : 1;
    }
    EXPECT_EQ(known, 35);
    EXPECT_EQ(getCSTFromJsonTime("2024-05-01T08:30:00+05:45"), "CST-5:45:00");
    for (const char* text :
         {"2024-05-01T08:30:00Z", "2024-05-01T08:30:00-05:30", "2024-05-01T08:30:00+05:4", "2024"})
        EXPECT_EQ(getCSTFromJsonTime(text), "") << text;
}

TEST(TimeZone, followsItsGrammar) {
    const std::string start = "CST-8:00:00DST01:00:00,M4.1.0/02:00:00";
    for (const std::string& text : {start + ",M10.5.0/02:00:00", start + ",M12.1.6/2:59:59",
                                    std::string("CST+4:30:00DST00:30:00,M01.1.0/00:00:00,M9.5.0/23:00:00")})
        EXPECT_TRUE(isValidTimeZone(text)) << text;
    for (const char* end :
         {"", ",M0.1.0/02:00:00", ",M13.1.0/02:00:00", ",M4.0.0/02:00:00", ",M4.6.0/02:00:00",
          ",M4.1.7/02:00:00", ",M4.1.0/24:00:00", ",M4.1.0/02:60:00", ",M4.1.0/02:00:60", ",M4.1.0/+2:00:00",
          ",M4.1.0", ",M4.1.0/02:00", ",4.1.0/02:00:00", ";M4.1.0/02:00:00", ",M4.1.0/02:00:00 ",
          ",M4.1.0/02:00:00,M4.1.0/02:00:00"})
        EXPECT_FALSE(isValidTimeZone(start + end)) << end;
    for (const char* text :
         {"", "CST", "CST-08:00:00", "CST-8:00", "CST-8:00:00 ", "cst-8:00:00", "UTC-8:00:00", "CST-0:00:00",
          "CST-8:00:00DST", "CST-8:00:00,M4.1.0/02:00:00", "DST01:00:00,M4.1.0/02:00:00,M10.5.0/02:00:00"})
        EXPECT_FALSE(isValidTimeZone(text)) << text;
}

}  // namespace
