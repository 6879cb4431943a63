// Doors, schedules, event hosts and what an access controller can do.
#include "access.h"

using namespace host;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

const std::string kDoors = "/VELTA/AccessControl/RemoteControl/door/";
const std::string kDoorParam = "/VELTA/AccessControl/Door/param/";
const std::string kWorkStatus = "/VELTA/AccessControl/AcsWorkStatus";
const std::string kHosts = "/VELTA/Event/notification/httpHosts";
const std::string kFourDoors =
    R"(<RemoteControlDoor><cmd opt="open,close"/><doorNo min="1" max="4"/></RemoteControlDoor>)";
const std::string kDone = "<ResponseStatus><statusCode>1</statusCode></ResponseStatus>";
const std::string kOpen = R"({"RemoteControlDoor":{"cmd":"open"}})";

TEST_F(AccessTest, opensDoorsThatAreThere) {
    script("GET", kDoors + "capabilities", kFourDoors);
    script("PUT", kDoors + "1", kDone);
    script("PUT", kDoors + "65535", "");
    EXPECT_EQ(ask("PUT", kDoors + "1", kOpen), "0x1");
    EXPECT_THAT(sent(), ElementsAre("GET " + kDoors + "capabilities ",
                                    "PUT " + kDoors +
                                        R"(1 <RemoteControlDoor version="2.0" xmlns="urn:velta:schema">)"
                                        "<cmd>open</cmd></RemoteControlDoor>"));
    EXPECT_EQ(ask("PUT", kDoors + "65535", R"({"RemoteControlDoor":{"cmd":"alwaysClose"}})"), "0x1");
    EXPECT_EQ(sent().size(), 1U);  // the number of doors is asked for once
    script("PUT", kDoors + "4", "<ResponseStatus><statusCode>2</statusCode></ResponseStatus>", 503);
    EXPECT_EQ(ask("PUT", kDoors + "4", kOpen), "0x4000111D");
    device.setFault({.kind = veltasim::FaultKind::Drop, .path = kDoors});
    EXPECT_EQ(ask("PUT", kDoors + "4", kOpen), kBadParameter);
    device.clearFaults();
    for (const char* door : {"0", "5", "-1", "65534"})
        refuses("PUT", kDoors + door, {kOpen});
    refuses("PUT", kDoors + "1",
            {"{}", "[]", R"({"RemoteControlDoor":{"cmd":"Open"}})", R"({"RemoteControlDoor":{}})"});
}

TEST_F(AccessTest, knowsNoDoorAfterAFailedReading) {
    script("GET", kDoors + "capabilities", "<RemoteControlDoor/>");
    script("PUT", kDoors + "65535", kDone);
    EXPECT_EQ(ask("PUT", kDoors + "65535", kOpen), kBadParameter);
    script("GET", kDoors + "capabilities", kFourDoors);
    EXPECT_EQ(ask("PUT", kDoors + "1", kOpen), kBadParameter);
    EXPECT_THAT(sent(), IsEmpty());
    EXPECT_EQ(ask("PUT", kDoors + "65535", kOpen), "0x1");

    session = std::make_unique<Session>(library);
    ASSERT_EQ(session->connectTo(device.port()), 0U);
    script("GET", kDoors + "capabilities", "<ResponseStatus><statusCode>4</statusCode></ResponseStatus>",
           404);
    EXPECT_EQ(ask("GET", kDoorParam + "1"), "0x40000001");
}

TEST_F(AccessTest, readsAndWritesTheNamesOfDoors) {
    script("GET", kDoors + "capabilities", kFourDoors);
    script("PUT", kDoorParam + "2", kDone);
    EXPECT_EQ(ask("PUT", kDoorParam + "2", R"({"DoorParam":{"doorName":"<East> & Süd"}})"), "0x1");
    EXPECT_EQ(sent().back(),
              "PUT " + kDoorParam + "2 <DoorParam><doorName>&lt;East&gt; &amp; Süd</doorName></DoorParam>");
    refuses("PUT", kDoorParam + "65535", {R"({"DoorParam":{"doorName":"x"}})"});
    refuses("PUT", kDoorParam + "1", {"{}", R"({"DoorParam":{"doorName":1}})"});
    EXPECT_EQ(ask("GET", kDoorParam + "5"), kBadParameter);
    judges("GET", kDoorParam + "1", "",
           {{"<DoorParam><doorNo>1</doorNo><doorName>East</doorName></DoorParam>",
             "{\"DoorParam\":{\"doorName\":\"East\"}}\n"},
            {"<DoorParam/>", kBadParameter},
            {kDone, kBadParameter},
            {"<ResponseStatus><statusCode>4</statusCode></ResponseStatus>", "0x40000001", 404}});
    EXPECT_THAT(sent(), ElementsAre("GET " + kDoorParam + "1 "));
}

TEST_F(AccessTest, tellsTheStateOfDoors) {
    judges("GET", kWorkStatus, "",
           {{R"({"AcsWorkStatus":{"doorStatus":[4,1.0,"x",null],"other":1}})",
             "{\"AcsWorkStatus\":{\"doorStatus\":[4,1,0,0]}}\n"},
            {R"({"AcsWorkStatus":{}})", "{\"AcsWorkStatus\":{\"doorStatus\":[]}}\n"},
            {R"({"x":1})", R"({"x":1})"},
            {"", kBadParameter}});
}

TEST_F(AccessTest, checksSchedulesAndSendsThemOn) {
    struct Schedule {
        std::string path;
        std::string good;
        std::vector<std::pair<std::string, std::string>> faults;  // what to replace in the good one
    };
    const std::string segment = R"("TimeSegment":{"beginTime":"00:00","endTime":"24:00"})";
    const Schedule schedules[] = {
        {"UserRightWeekPlanCfg/1",
         R"({"UserRightWeekPlanCfg":{"enable":true,"WeekPlanCfg":[{"id":1,"enable":true,"week":"Monday",)" +
             segment + "}]}}",
         {{R"("week":"Monday")", R"("week":1)"},
          {R"("id":1)", R"("id":"1")"},
          {segment, R"("TimeSegment":[])"},
          {R"("24:00")", "24"},
          {R"("WeekPlanCfg":[)", R"("Other":[)"},
          {R"({"enable":true)", R"({"enable":1)"}}},
        {"UserRightHolidayPlanCfg/2",
         R"({"UserRightHolidayPlanCfg": {"enable":true,"beginDate":"2026-12-24","endDate":"2026-12-26",)"
         R"("HolidayPlanCfg":[{"id":1,"enable":true,)" +
             segment + "}]}}",
         {{R"("2026-12-24")", "2026"},
          {R"("enable":true,"TimeSegment")", R"("TimeSegment")"},
          {"HolidayPlanCfg\":[", "x\":["}}},
        {"UserRightHolidayGroupCfg/3",
         R"({"UserRightHolidayGroupCfg":{"enable":false,"groupName":"New  Year","holidayPlanNo":"1,2"}})",
         {{R"("1,2")", "1"}, {"groupName", "name"}}},
        {"UserRightPlanTemplate/4",
         R"({"UserRightPlanTemplate":{"enable":true,"templateName":"Day","weekPlanNo":1,"holidayGroupNo":"1"}})",
         {{R"("weekPlanNo":1)", R"("weekPlanNo":"1")"},
          {R"("holidayGroupNo":"1")", R"("holidayGroupNo":1)"}}},
        {"FaceRecognizeMode",
         R"({"FaceRecognizeMode":{"mode":"deepMode"}})",
         {{"deepMode", "DeepMode"}, {R"("deepMode")", "1"}}},
    };
    for (const Schedule& schedule : schedules) {
        const std::string path = "/VELTA/AccessControl/" + schedule.path;
        relays("PUT", path, schedule.good);
        judges("PUT", path, schedule.good,
               {{R"({"statusCode":4})", R"({"statusCode":4})"}, {"", kBadJsonContent}});
        std::vector<std::string> bad = {"", "[]", "{}"};
        for (const auto& [text, fault] : schedule.faults) {
            bad.push_back(schedule.good);
            ASSERT_NE(bad.back().find(text), std::string::npos) << text;
            bad.back().replace(bad.back().find(text), text.size(), fault);
        }
        refuses("PUT", path, bad);
        judges("GET", path, "", {{"{ \"x\": 1 }", "{\"x\":1}\n"}});
    }
}

std::string hostList(const std::string& members, const std::string& id = "1") {
    return R"({"HttpHostNotificationList":[{"HttpHostNotification":{"id":")" + id +
           R"(","url":"/a?b&c","protocolType":"HTTP",)" + members + "}}]}";
}
const std::string kByAddress = R"("addressingFormatType":"ipaddress","ipAddress":"10.0.0.1","portNo":80)";

TEST_F(AccessTest, writesEventHosts) {
    script("GET", kHosts + "/capabilities",
           "<HttpHostNotificationCap><hostNumber>2x</hostNumber></HttpHostNotificationCap>");
    script("PUT", kHosts, kDone);
    const std::string head =
        "<HttpHostNotificationList><HttpHostNotification><id>2</id><url>/a?b&amp;c</url>"
        "<protocolType>HTTP</protocolType><parameterFormatType>JSON</parameterFormatType>";
    EXPECT_EQ(ask("POST", kHosts, hostList(kByAddress, "2")), "0x1");
    EXPECT_THAT(
        sent(),
        ElementsAre("GET " + kHosts + "/capabilities ",
                    "PUT " + kHosts + " " + head +
                        "<addressingFormatType>ipaddress</addressingFormatType><hostName></hostName>"
                        "<ipAddress>10.0.0.1</ipAddress><portNo>80</portNo>"
                        "<httpAuthenticationMethod>none</httpAuthenticationMethod>"
                        "<SubscribeEvent><heartbeat>30</heartbeat><eventMode>all</eventMode></SubscribeEvent>"
                        "</HttpHostNotification></HttpHostNotificationList>"));
    EXPECT_EQ(ask("PUT", kHosts,
                  hostList(R"("addressingFormatType":"hostname","hostName":"a.b","ipAddress":5,"portNo":443,)"
                           R"("SubscribeEvent":{"heartbeat":5,"eventMode":"list","minorEvent":"0x01"})",
                           "2")),
              "0x1");
    EXPECT_EQ(
        sent().back(),
        "PUT " + kHosts + " " + head +
            "<addressingFormatType>hostname</addressingFormatType><hostName>a.b</hostName><ipAddress></"
            "ipAddress>"
            "<portNo>443</portNo><httpAuthenticationMethod>none</httpAuthenticationMethod><SubscribeEvent>"
            "<heartbeat>5</heartbeat><eventMode>list</"
            "eventMode><EventList><Event><type>AccessControllerEvent</type>"
            "<minorAlarm>0x00</minorAlarm><minorException>0x00</minorException><minorOperation>0x00</"
            "minorOperation>"
            "<minorEvent>0x01</minorEvent></Event></EventList></SubscribeEvent>"
            "</HttpHostNotification></HttpHostNotificationList>");
    judges("PUT", kHosts, hostList(kByAddress),
           {{"<ResponseStatus><statusCode>4</statusCode></ResponseStatus>", "0x40000001"},
            {"<x/>", kBadParameter},
            {"<ResponseStatus><statusCode>4</statusCode></ResponseStatus>", "0x4000111D", 403}});
}

TEST_F(AccessTest, refusesEventHostsThatCantBe) {
    script("PUT", kHosts, kDone);
    script("GET", kHosts + "/capabilities", "no document");
    EXPECT_EQ(ask("PUT", kHosts, hostList(kByAddress, "1")), "0x1");  // the one host that every device takes
    const std::string byName = R"("addressingFormatType":"hostname","portNo":80)";
    for (const std::string& body :
         {std::string("{}"), std::string(R"({"HttpHostNotificationList":[]})"),
          std::string(R"({"HttpHostNotificationList":[{}]})"), hostList(kByAddress, "2"),
          hostList(kByAddress, "0"), hostList(kByAddress, "x"), hostList(byName),
          hostList(byName + R"(,"hostName":1)"),
          hostList(R"("addressingFormatType":"ip","ipAddress":"10.0.0.1","portNo":80)"),
          hostList(R"("addressingFormatType":"ipaddress","ipAddress":"192.168.1.300","portNo":80)"),
          hostList(R"("addressingFormatType":"ipaddress","ipAddress":"10.0.0.1x","portNo":80)"),
          hostList(R"("addressingFormatType":"ipaddress","ipAddress":"10.0.0","portNo":80)"),
          hostList(R"("addressingFormatType":"ipaddress","ipAddress":"10.0.0.1","portNo":"80")"),
          hostList(kByAddress + R"(,"SubscribeEvent":[])"),
          hostList(kByAddress + R"(,"SubscribeEvent":{"heartbeat":"5"})"),
          hostList(kByAddress + R"(,"SubscribeEvent":{"eventMode":"some"})"),
          hostList(kByAddress + R"(,"SubscribeEvent":{"eventMode":"list"})")}) {
        EXPECT_EQ(ask("PUT", kHosts, body), kBadParameter) << body;
        for (const std::string& request : sent())
            EXPECT_THAT(request, testing::StartsWith("GET " + kHosts + "/capabilities"));
    }
}

TEST_F(AccessTest, readsAndClearsEventHosts) {
    judges(
        "GET", kHosts, "",
        {{"<HttpHostNotificationList><HttpHostNotification><portNo>80x</portNo><id>1</id><url>/a</url>"
          "<addressingFormatType>ipaddress</addressingFormatType><ipAddress>10.0.0.1</ipAddress><hostName>x</"
          "hostName>"
          "</HttpHostNotification><HttpHostNotification><hostName>h</hostName></HttpHostNotification>"
          "</HttpHostNotificationList>",
          R"({"HttpHostNotificationList":[{"HttpHostNotification":{"addressingFormatType":"ipaddress","id":"1",)"
          R"("ipAddress":"10.0.0.1","portNo":80,"url":"/a"}},{"HttpHostNotification":{"hostName":"h"}}]})"
          "\n"},
         {"<HttpHostNotificationList/>", "0x40000001"},
         {"<Other/>", "0x40000001"},
         {"no document", kBadParameter},
         {"<ResponseStatus><statusCode>4</statusCode></ResponseStatus>", "0x40000001", 404}});
    EXPECT_THAT(sent(), ElementsAre("GET " + kHosts + " "));
    judges("DELETE", kHosts, "", {{kDone, "0x1"}, {"", kBadParameter}, {kDone, "0x4000111D", 500}});
    EXPECT_THAT(sent(), ElementsAre("DELETE " + kHosts + " "));
}

TEST_F(AccessTest, foldsTheCapabilitiesIntoOneAnswer) {
    const std::string path = "/VELTA/AccessControl/capabilities";
    script("GET", "/VELTA/AccessControl/UserInfo/capabilities",
           R"({"UserInfo":{"maxRecordNum":1e3,"name":{"@max":128},"userType":"x","other":1}})");
    script("GET", "/VELTA/AccessControl/CardInfo/capabilities", R"({"CardInfo":{"cardNo":{"@min":1}}})");
    script("GET", "/VELTA/Intelligent/FDLib/capabilities", R"({"FDRecordDataMaxNum":3000})");
    script("GET", "/VELTA/AccessControl/FaceRecognizeMode/capabilities",
           R"({"FaceRecognizeMode":{"mode":{"@opt":"normalMode,deepMode"}}})");
    script("GET", kDoors + "capabilities", kFourDoors);
    EXPECT_EQ(
        ask("GET", path),
        R"({"AccessControlCap":{"FaceRecognizeMode":{"mode":{"@opt":"normalMode,deepMode"}},)"
        R"("RemoteControlDoorCap":{"cmd":{"@opt":"open,close"},"doorNo":{"@max":4,"@min":1}},"Valid":null,)"
        R"("cardNo":{"@min":1},"cardType":null,"employeeNo":null,"maxCardRecordNum":null,"maxFaceRecordNum":3000,)"
        R"("maxPeopleRecordNum":1000,"name":{"@max":128},"userType":"x"}})"
        "\n");
    // What the device does not tell is null; the other questions are asked all the same.
    for (const char* of : {"/VELTA/AccessControl/UserInfo", "/VELTA/AccessControl/CardInfo",
                           "/VELTA/AccessControl/FaceRecognizeMode"})
        script("GET", std::string(of) + "/capabilities", R"({"statusCode":4})", 403);
    script("GET", kDoors + "capabilities", "<RemoteControlDoor><doorNo max=\"\"/></RemoteControlDoor>");
    EXPECT_THAT(ask("GET", path),
                testing::AllOf(
                    HasSubstr(R"("FaceRecognizeMode":{"mode":{"@opt":null}},"RemoteControlDoorCap":{"cmd":)"
                              R"({"@opt":null},"doorNo":{"@max":null,"@min":null}})"),
                    HasSubstr(R"("maxFaceRecordNum":3000,"maxPeopleRecordNum":null)")));
    EXPECT_EQ(sent().size(), 5U);
}

}  // namespace
