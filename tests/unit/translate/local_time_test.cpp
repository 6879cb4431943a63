#include "translate/system/LocalTime.h"

#include <gtest/gtest.h>

namespace {

const std::string kDaylight = "DST01:00:00,M4.1.0/02:00:00,M10.5.0/02:00:00";

TEST(LocalTime, isCheckedButNotAgainstTheCalendar) {
    for (const char* text : {"2024-02-31T10:00:00Z", "0001-01-01T00:00:00Z", "9999-12-31T23:59:59Z",
                             "2024-01-01T10:00:00+14:59", "2024-01-01T10:00:00-12:00"}) {
        EXPECT_TRUE(checkLocalTimeFormat(text)) << text;
    }
    for (const char* text : {"",
                             "2024-01-01T10:00:00",
                             "2024-01-01T10:00:00z",
                             "2024-01-01T10:00:00Z ",
                             "0000-01-01T10:00:00Z",
                             "2024-13-01T10:00:00Z",
                             "2024-00-01T10:00:00Z",
                             "2024-01-00T10:00:00Z",
                             "2024-01-32T10:00:00Z",
                             "2024-01-01T24:00:00Z",
                             "2024-01-01T10:60:00Z",
                             "2024-01-01T10:00:60Z",
                             "2024-01-01 10:00:00Z",
                             "2024-01-01T10:00:00+15:00",
                             "2024-01-01T10:00:00-13:00",
                             "2024-01-01T10:00:00+01:60",
                             "2024-01-01T10:00:00+0100",
                             "2024-01-01T10:00:00+1:000",
                             "2024-01-01T10:00:00+01:00Z",
                             "2024-01-01T+1:00:00Z",
                             "2024-01-01T 1:00:00Z",
                             "2024-01-01T10:00:00*01:00"}) {
        EXPECT_FALSE(checkLocalTimeFormat(text)) << text;
    }
}

TEST(LocalTime, namesTheDevicesOffset) {
    int known = 0;
    for (int minutes = -12 * 60; minutes <= 14 * 60; minutes += 15) {
        const int distance = std::abs(minutes);
        char host[32];
        char device[32];
        std::snprintf(host, sizeof host, "%c%02d:%02d", minutes < 0 ? '-' : '+', distance / 60 % 100,
                      distance % 60);
        std::snprintf(device, sizeof device, "CST%c%d:%02d:00", minutes > 0 ? '-' : '+', distance / 60,
                      distance % 60);
        const std::string zone = getCSTFromJsonTime(std::string("2024-05-01T08:30:00") + host);
        EXPECT_EQ(isValidTimeZone(device), !zone.empty()) << host;
        if (zone.empty()) continue;
        ++known;
        EXPECT_EQ(zone, device);
        EXPECT_TRUE(isValidTimeZone(zone + kDaylight)) << zone;
    }
    EXPECT_EQ(known, 35);
    for (const char* host : {"Z", "", "-05:30", "-09:30", "+05:3", "-00:00"}) {
        EXPECT_EQ(getCSTFromJsonTime(std::string("2024-05-01T08:30:00") + host), "") << host;
    }
    EXPECT_EQ(getCSTFromJsonTime("2024"), "");
    EXPECT_EQ(getCSTFromJsonTime("2024-05-01T08:30:00+05:30"), "CST-5:30:00");
}

TEST(TimeZone, followsItsGrammar) {
    for (const std::string daylight :
         {"DST00:30:00,M4.1.0/02:00:00,M10.5.6/2:00:00", "DST1:00:00,M12.5.0/23:59:59,M01.1.0/00:00:00"}) {
        EXPECT_TRUE(isValidTimeZone("CST-8:00:00" + daylight)) << daylight;
    }
    const std::string change = ",M4.1.0/02:00:00";
    for (const std::string text :
         {"", "CST", "CST-08:00:00", "CST-8:00", "CST-8:00:00 ", "cst-8:00:00", "UTC-8:00:00", "CST-0:00:00",
          "CST-8:00:00DST", "CST-8:00:00DST01:00:00", "CST-8:00:00,M4.1.0/02:00:00"}) {
        EXPECT_FALSE(isValidTimeZone(text)) << text;
    }
    EXPECT_FALSE(isValidTimeZone(kDaylight));
    EXPECT_FALSE(isValidTimeZone("CST-8:00:00DST01:00:00" + change));
    EXPECT_FALSE(isValidTimeZone("CST-8:00:00DST01:00:00" + change + change + change));
    EXPECT_FALSE(isValidTimeZone("CST-8:00:00" + kDaylight + std::string(200000, '0')));
    for (const char* wrong : {",M0.1.0/02:00:00", ",M13.1.0/02:00:00", ",M4.0.0/02:00:00", ",M4.6.0/02:00:00",
                              ",M4.1.7/02:00:00", ",M4.1.0/24:00:00", ",M4.1.0/02:60:00", ",M4.1.0/02:00:60",
                              ",M4.1.0/+2:00:00", ",M4.1.0", ",4.1.0/02:00:00", ";M4.1.0/02:00:00"}) {
        EXPECT_FALSE(isValidTimeZone("CST-8:00:00DST01:00:00" + change + wrong)) << wrong;
    }
}

}  // namespace
