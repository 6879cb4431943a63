#include "device_clock.h"

#include <gtest/gtest.h>

using namespace std::chrono_literals;

TEST(DeviceClock, ZonesHaveTheInvertedSign) {
    for (const auto& [text, zone, offset] : std::initializer_list<std::tuple<const char*, const char*, int>>{
             {"+08:00", "CST-8:00:00", 8 * 60},
             {"-03:30", "CST+3:30:00", -(3 * 60 + 30)},
             {"+00:00", "CST+0:00:00", 0},
             {"CST-0:30:00DST01:00:00,M3.5.0/02:00:00", "CST-0:30:00DST01:00:00,M3.5.0/02:00:00", 30}}) {
        EXPECT_EQ(host::deviceZone(text), zone);
        EXPECT_EQ(host::zoneOffset(zone), std::chrono::minutes(offset)) << zone;
    }
    for (const char* wrong : {"", "8", "08:00", "+8:00", "+15:00", "+01:60", "CST", "CST8:00:00", "UTC"})
        EXPECT_EQ(host::deviceZone(wrong), "") << wrong;
}

TEST(DeviceClock, TimesAreInstants) {
    const host::Instant noon = std::chrono::sys_days(std::chrono::year(2024) / 2 / 29) + 12h;
    EXPECT_EQ(host::localTimeText(noon, -(3h + 30min)), "2024-02-29T08:30:00-03:30");
    for (const char* text : {"2024-02-29T12:00:00Z", "2024-02-29T17:45:00+05:45", "2024-02-29T08:00:00"})
        EXPECT_EQ(host::instantOf(text, "CST+4:00:00"), noon) << text;
    for (const char* wrong : {"", "2024-02-29", "2024-02-29T12:00:00+", "2024-02-29T12:00:00Z more"})
        EXPECT_FALSE(host::instantOf(wrong, "CST+4:00:00")) << wrong;
    EXPECT_FALSE(host::instantOf("2024-02-29T08:00:00", "CST+4:00:00DST01:00:00"));
}
