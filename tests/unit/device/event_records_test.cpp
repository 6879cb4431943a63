#include "device/EventRecords.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>

#include "gateway/JsonText.h"

namespace {

TEST(EventRecord, announcesAPictureByAPositiveNumber) {
    const auto announces = [](const std::string& json) {
        Json::Value alarm;
        EXPECT_TRUE(velta::parseJson(json, alarm));
        return velta::announcesPicture(alarm);
    };
    EXPECT_TRUE(announces(R"({"AccessControllerEvent":{"picturesNumber":2}})"));
    for (const char* json :
         {R"({"AccessControllerEvent":{"picturesNumber":0}})", R"({"AccessControllerEvent":"x"})",
          R"({"AccessControllerEvent":{"picturesNumber":"1"}})", R"({"picturesNumber":1})",
          R"({"AccessControllerEvent":{"picturesNumber":-1}})", R"({"AccessControllerEvent":[1]})"}) {
        EXPECT_FALSE(announces(json)) << json;
    }
}

TEST(PictureExtension, holdsWhatStandsBehindTheLastMark) {
    const std::string picture("--b\r\n\r\n\xff\xd8\0\xff", 11);
    for (const auto& [message, expected] :
         {std::pair{"{}\r\n{}\r\n" + picture, picture},
          std::pair{std::string("{\"a\":1}"), std::string("\":1}").insert(0, "a")},
          std::pair{std::string("{}\r\n"), std::string()}}) {
        tagEVENT_EXT_INFO* ext = velta::makePictureExtension(message);
        ASSERT_NE(ext, nullptr);
        EXPECT_EQ(ext->kind, 8U);
        ASSERT_EQ(ext->itemCount, 1);
        EXPECT_EQ(std::string(ext->items->data, static_cast<size_t>(ext->items->length)), expected);
        EXPECT_EQ(ext->items->data[ext->items->length], '\0');
        velta::releaseExtension(ext);
        EXPECT_EQ(ext, nullptr);
    }
}

TEST(DeviceTime, isShiftedAndTakenApart) {
    setenv("TZ", "UTC", 1);
    tzset();
    tagJsonTime time{};
    time.reserved = 42;
    ConvertDevTimeToJsonTime("2024-03-01T00:30:05.000Z", 3600, time);
    EXPECT_EQ(time.reserved, 42);
    EXPECT_EQ(time.year, 2024);
    EXPECT_EQ(time.month, 2);
    EXPECT_EQ(time.day, 29);
    EXPECT_EQ(time.hour, 23);
    EXPECT_EQ(time.minute, 30);
    EXPECT_EQ(time.second, 5);
    for (const char* text : {"", "not a time", "2024-03-01"}) {
        tagJsonTime untouched{
            .reserved = 1, .second = 2, .minute = 3, .hour = 4, .day = 5, .month = 6, .year = 7};
        ConvertDevTimeToJsonTime(text, 0, untouched);
        EXPECT_EQ(untouched.year, 7) << text;
    }
}

}  // namespace
