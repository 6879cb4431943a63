#include "device/EventRecords.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>

#include "gateway/JsonText.h"

namespace {

tagEVENT_BASE_INFO recordOf(const std::string& json, bool expected = true) {
    Json::Value alarm;
    EXPECT_TRUE(velta::parseJson(json, alarm));
    tagEVENT_BASE_INFO base;
    EXPECT_EQ(velta::fillEventRecord(alarm, 8080, base), expected);
    return base;
}

TEST(EventRecord, holdsAnAccessControlEvent) {
    const auto base = recordOf(
        R"({"ipAddress":"10.0.0.5","channelID":3,"activePostCount":2,"eventState":"inactive","deviceID":"d-1",)"
        R"("dateTime":"2026-01-31T12:00:00+01:00","eventDescription":"ignored","AccessControllerEvent":{"doorNo":1}})");
    EXPECT_EQ(base.size, 10832U);
    EXPECT_EQ(base.eventCode, 0xD0015U);
    EXPECT_STREQ(base.payload, ",\"AccessControllerEvent\":{\"doorNo\":1}\n");
    EXPECT_EQ(base.channel, 3);
    EXPECT_EQ(base.activePostCount, 2);
    EXPECT_EQ(base.activeState, 0);
    EXPECT_STREQ(base.dateTime, "2026-01-31T12:00:00+01:00");
    EXPECT_STREQ(base.description, "");
    EXPECT_STREQ(base.deviceAddress, "10.0.0.5");
    EXPECT_EQ(base.devicePort, 8080);
    EXPECT_STREQ(base.deviceId, "d-1");
    EXPECT_EQ(base.genericAlarm, 0);
}

TEST(EventRecord, holdsAGenericAlarmWithDefaults) {
    const auto base =
        recordOf(R"({"ipAddress":"h","dateTime":"t","eventDescription":"Tamper","channelID":"x"})");
    EXPECT_EQ(base.eventCode, 0U);
    EXPECT_STREQ(
        base.payload,
        "{\"channelID\":\"x\",\"dateTime\":\"t\",\"eventDescription\":\"Tamper\",\"ipAddress\":\"h\"}\n");
    EXPECT_EQ(base.channel, 1);
    EXPECT_EQ(base.activePostCount, 1);
    EXPECT_EQ(base.activeState, 1);
    EXPECT_STREQ(base.description, "Tamper");
    EXPECT_EQ(base.genericAlarm, 1);
}

TEST(EventRecord, cutsTextsToTheirFields) {
    const std::string text(20000, 'x');
    const auto alarm = recordOf(R"({"ipAddress":")" + text + R"(","dateTime":")" + text +
                                R"(","deviceID":")" + text + R"(","eventDescription":")" + text + R"("})");
    EXPECT_EQ(std::string(alarm.payload).size(), 10239U);
    EXPECT_EQ(std::string(alarm.description).size(), 255U);
    EXPECT_EQ(std::string(alarm.deviceAddress).size(), 31U);
    EXPECT_EQ(std::string(alarm.dateTime).size(), 31U);
    EXPECT_EQ(std::string(alarm.deviceId).size(), 31U);
    const auto event = recordOf(R"({"dateTime":"t","AccessControllerEvent":{"name":")" + text + R"("}})");
    EXPECT_EQ(std::string(event.payload).size(), 2047U);
}

TEST(EventRecord, needsADateTime) {
    recordOf(R"({"ipAddress":"h"})", false);
    recordOf(R"({"ipAddress":"h","dateTime":5})", false);
    EXPECT_EQ(recordOf(R"({"dateTime":"t","eventState":"ACTIVE"})").activeState, 0);
    EXPECT_EQ(recordOf(R"({"dateTime":"t","eventState":1})").activeState, 1);
}

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
