#include "client.h"

using namespace std::chrono_literals;
using namespace velta_test;
using testing::HasSubstr;
using veltasim::Device;
using veltasim::Outcome;

namespace {

constexpr const char* kAccess = "/VELTA/AccessControl/";
constexpr const char* kHosts = "/VELTA/Event/notification/httpHosts";
constexpr auto kFriday = std::chrono::sys_days(2026y / 5 / 15);

class Passage : public DeviceTest {
 protected:
    Passage() : DeviceTest({.doorOpenTime = 50s}) {
        device.setTimeZone("CST-2:00:00");
        device.setDeviceTime(kFriday + 8h);  // ten o'clock there
    }
    void ask(const std::string& script) { client.talk(kAccess, script); }
    void add(const std::string& number, const std::string& more) {
        ask(R"(POST UserInfo/Record {"UserInfo":{"name":"Ada","employeeNo":")" + number + '"' + more +
            "}} -> 200\n" + R"(POST CardInfo/Record {"CardInfo":{"cardNo":"c)" + number +
            R"(","employeeNo":")" + number + "\"}} -> 200");
    }
    Outcome cardOf(const std::string& number) { return device.presentCard("c" + number).outcome; }
};

TEST_F(Passage, isJudgedByPersonTimeAndDoor) {
    // On Fridays in the morning, and the same but on that day, a holiday, at noon.
    ask(R"(
PUT UserRightWeekPlanCfg/2 {"UserRightWeekPlanCfg":{"enable":true,"WeekPlanCfg":[{"id":1,"enable":true,"week":"Friday","TimeSegment":{"beginTime":"08:00:00","endTime":"12:00:00"}}]}} -> 200
PUT UserRightHolidayPlanCfg/7 {"UserRightHolidayPlanCfg":{"enable":true,"beginDate":"2026-05-14","endDate":"2026-05-15","HolidayPlanCfg":[{"id":1,"enable":true,"TimeSegment":{"beginTime":"12:00:00","endTime":"13:00:00"}}]}} -> 200
PUT UserRightHolidayGroupCfg/3 {"UserRightHolidayGroupCfg":{"enable":true,"groupName":"g","holidayPlanNo":"6,7"}} -> 200
PUT UserRightPlanTemplate/2 {"UserRightPlanTemplate":{"enable":true,"templateName":"x","weekPlanNo":2,"holidayGroupNo":""}} -> 200
PUT UserRightPlanTemplate/3 {"UserRightPlanTemplate":{"enable":true,"templateName":"x","weekPlanNo":2,"holidayGroupNo":"3"}} -> 200
PUT UserRightPlanTemplate/4 {"UserRightPlanTemplate":{}} -> 400 "badParameters")");
    const std::string right = R"(,"doorRight":"1","RightPlan":[{"doorNo":1,"planTemplateNo":"1"}])";
    const auto plan = [](const std::string& number) {
        return R"(,"doorRight":"1,2","RightPlan":[{"doorNo":1,"planTemplateNo":"9,)" + number + "\"}]";
    };
    struct Case {
        std::string person;
        Outcome outcome;
    };
    const Case cases[] = {
        {right, Outcome::CardGranted},
        {right + R"(,"userType":"blackList")", Outcome::PersonBlocked},
        {right + R"(,"Valid":{"enable":true,"beginTime":"2026-05-15T11:00:00"})", Outcome::NotValidNow},
        {right + R"(,"Valid":{"enable":true,"endTime":"2026-05-15T09:00:00"})", Outcome::NotValidNow},
        {right + R"(,"Valid":{"endTime":"2026-05-15T09:00:00","timeType":"UTC"})", Outcome::CardGranted},
        {right + R"(,"Valid":{"enable":false,"endTime":"2026-05-15T09:00:00"})", Outcome::CardGranted},
        {R"(,"doorRight":"2","RightPlan":[{"doorNo":1,"planTemplateNo":"1"}])", Outcome::NoDoorRight},
        {R"(,"doorRight":"1","RightPlan":[{"doorNo":2,"planTemplateNo":"1"}])", Outcome::OutsideSchedule},
        {plan("2"), Outcome::CardGranted},
        {plan("3"), Outcome::OutsideSchedule},
        {plan("8"), Outcome::OutsideSchedule},  // nobody has written 8 and 9
    };
    int number = 100;
    for (const Case& c : cases) {
        add(std::to_string(++number), c.person);
        EXPECT_EQ(cardOf(std::to_string(number)), c.outcome) << c.person;
    }
    EXPECT_EQ(cardOf("none"), Outcome::UnknownCard);
    EXPECT_EQ(device.presentFace("101").outcome, Outcome::UnknownFace);
    device.setDeviceTime(kFriday + 10h + 30min);  // half past twelve
    EXPECT_EQ(cardOf("109"), Outcome::OutsideSchedule);
    EXPECT_EQ(cardOf("110"), Outcome::CardGranted);
    ask("PUT RemoteControl/door/1 <RemoteControlDoor><cmd>alwaysClose</cmd></RemoteControlDoor> -> 200");
    EXPECT_EQ(cardOf("101"), Outcome::DoorAlwaysClosed);
    ask(R"(
PUT CardReaderCfg/1 {"CardReaderCfg":{"enable":false}} -> 200
GET CardReaderCfg/3 -> 400 "illegalCardReaderNo")");
    EXPECT_EQ(cardOf("101"), Outcome::ReaderDisabled);
    EXPECT_THROW(device.presentCard("c101", 3), std::invalid_argument);
}

TEST_F(Passage, opensTheDoorForAWhile) {
    add("1", R"(,"doorRight":"2","RightPlan":[{"doorNo":2,"planTemplateNo":"1"}])");
    EXPECT_TRUE(device.presentCard("c1", 2).isGranted());
    ask(R"(GET AcsWorkStatus -> 200 "doorStatus":[4,4],"lockStatus":[0,1])");
    device.setDeviceTime(kFriday + 8h + 1min);
    EXPECT_FALSE(device.doorIsOpen(2));
    ask(R"(
PUT RemoteControl/door/65535 <RemoteControlDoor><cmd>open</cmd></RemoteControlDoor> -> 200 <statusCode>1<
PUT Door/param/1 <DoorParam><doorName>Gate &amp; yard</doorName><openDuration>90</openDuration></DoorParam> -> 200
GET AcsWorkStatus -> 200 "doorStatus":[4,4],"lockStatus":[1,1]
PUT RemoteControl/door/1 <RemoteControlDoor><cmd>alwaysOpen</cmd></RemoteControlDoor> -> 200
PUT RemoteControl/door/2 <RemoteControlDoor><cmd>close</cmd></RemoteControlDoor> -> 200)");
    device.setDeviceTime(kFriday + 20h);
    ask(R"(
GET AcsWorkStatus -> 200 "doorStatus":[2,4],"lockStatus":[1,0]
PUT RemoteControl/door/1 <RemoteControlDoor><cmd>open</cmd></RemoteControlDoor> -> 200)");
    device.setDeviceTime(kFriday + 20h + 1min);
    EXPECT_TRUE(device.doorIsOpen(1));  // for ninety seconds
    device.setDeviceTime(kFriday + 21h);
    EXPECT_FALSE(device.doorIsOpen(1));
}

// Another device serves as the listener: it records what comes to it.
TEST_F(Passage, isPostedToHosts) {
    Device listener({.auth = veltasim::AuthScheme::None});
    listener.start();
    std::string script = R"(
GET /capabilities -> 200 <hostNumber>4<
PUT . <HttpHostNotificationList><HttpHostNotification><id>5</id>ADDRESS</HttpHostNotification></HttpHostNotificationList> -> 400 badParameters
PUT . <HttpHostNotificationList><HttpHostNotification><id>1</id><url>/all</url>ADDRESS</HttpHostNotification><HttpHostNotification><id>2</id><url>/some</url>ADDRESS<SubscribeEvent><eventMode>list</eventMode><EventList><Event><type>AccessControllerEvent</type><minorEvent>0x01,0x02</minorEvent></Event></EventList></SubscribeEvent></HttpHostNotification></HttpHostNotificationList> -> 200
GET . -> 200 <id>2</id><url>/some</url><protocolType>HTTP<)";
    const std::string address =
        "<protocolType>HTTP</protocolType><addressingFormatType>ipaddress</addressingFormatType>"
        "<ipAddress>127.0.0.1</ipAddress><portNo>" +
        std::to_string(listener.port()) + "</portNo>";
    for (size_t at = 0; (at = script.find("ADDRESS")) != std::string::npos;)
        script.replace(at, 7, address);
    client.talk(kHosts, script);
    device.sendAlarm({.eventType = "tamper"});
    device.sendAccessEvent({.minor = 20});
    device.presentCard("none");
    const auto arrived = [&](const std::string& path, const std::string& text) {
        return listener.waitForRequest(
            [&](const auto& r) { return r.path() == path && r.body.find(text) != r.body.npos; }, kSoon);
    };
    const auto pictured = arrived("/some", "\"major\":\t1");
    ASSERT_TRUE(pictured);
    EXPECT_THAT(pictured->body, HasSubstr("\"minor\":\t2"));
    EXPECT_THAT(pictured->body,
                HasSubstr(std::string(picture(veltasim::PictureSize::Medium)) + "\r\n--velta_events--"));
    EXPECT_TRUE(arrived("/all", "\"tamper\""));
    EXPECT_TRUE(arrived("/all", "\"minor\":\t20"));
    client.talk(kHosts, "DELETE . -> 200\nGET . -> 200 ></HttpHostNotificationList>");
}

}  // namespace
