// The system resources with devices that answer oddly.
#include "access.h"

using namespace host;
using testing::ElementsAre;

namespace {

const std::string kAddress = "/VELTA/System/Network/interfaces/3/ipAddress";
const std::string kTime = "/VELTA/System/time";
const std::string kZone = "/VELTA/System/time/timeZone";
const std::string kReboot = "/VELTA/System/reboot";
const std::string kTrigger = "/VELTA/System/IO/outputs/1/trigger";
const std::string kDeclaration = R"(<?xml version="1.0" encoding="UTF-8"?>)";
const std::string kUnknownError = "0x4000111D";

std::string status(int code) {
    return "<ResponseStatus><statusCode>" + std::to_string(code) + "</statusCode></ResponseStatus>";
}

TEST_F(AccessTest, readsOrTellsTheDevicesReason) {
    judges("GET", kAddress, "",
           {{"<IPAddress><a/></IPAddress>", "{\"IPAddress\":{\"a\":\"\"}}\n"},
            {"no document", "0x30000014"},
            {status(4), "0x40000001"},
            {"no document", kBadParameter, 404},
            {status(4), "0x40000001", 404},
            {status(4), kUnknownError, 401}});
    EXPECT_THAT(sent(), ElementsAre("GET " + kAddress + " "));
    judges("GET", kTime, "",
           {{"<Time><localTime/></Time>", "{\"Time\":{\"localTime\":\"\",\"timeMode\":\"manual\"}}\n"},
            {"no document", "0x30000001"},
            {"no document", kBadParameter, 404}});
    judges("GET", kZone, "",
           {{"CST-8:00:00", "{\"timeZone\":\"CST-8:00:00\"}\n"}, {"CST", kBadParameter, 404}});
}

TEST_F(AccessTest, writesOrTellsTheDevicesReason) {
    judges("PUT", kReboot, "",
           {{status(4), "0x40000001", 503},
            {"<R><a/><errorCode>1610612737</errorCode><statusCode>6</statusCode></R>", kBadParameter},
            {"<R><statusCode>3</statusCode><errorCode>2181038085</errorCode></R>", kUnknownError},
            {"<R><statusCode>0</statusCode><errorCode>5</errorCode></R>", "0x1"},
            {"<R><statusCode/></R>", "0x1"},
            {"<R><status>1</status></R>", kBadParameter},
            {"<R/>", kBadParameter},
            {"", kUnknownError, 401},
            {status(0), "0x1"}});
    EXPECT_THAT(sent(), ElementsAre("PUT " + kReboot + " "));
    judges("PUT", kTrigger, R"({"IOPortData":{"outputState":"low"}})",
           {{status(0), "0x30000001"}, {status(4), "0x40000001", 403}, {status(1), "0x1"}});
    EXPECT_EQ(sent().back(),
              "PUT " + kTrigger + " " + kDeclaration +
                  R"(<IOPortData xmlns="urn:velta:schema"> <outputState>low</outputState></IOPortData>)");
    judges("PUT", kZone, R"({"timeZone":"CST-5:45:00"})", {{status(1), "0x1"}});
    EXPECT_THAT(sent(), ElementsAre("PUT " + kZone + " CST-5:45:00"));
}

TEST_F(AccessTest, setsTheTimeInTheDevicesZone) {
    const std::string time = R"({"Time":{"timeMode":"manual","localTime":"2024-05-01T08:30:00+05:30"}})";
    const std::string daylight(200000, 'd');
    script("GET", kZone, "CST-8:00:00DST" + daylight);
    judges("PUT", kTime, time,
           {{status(4), "0x40000001", 403},
            {"CST", "CST", 500},  // the device's own answer
            {"", kBadParameter},  // not the time zone read before
            {status(1), "0x1"}});
    EXPECT_EQ(sent().back(), "PUT " + kTime + " " + kDeclaration +
                                 R"(<Time version="2.0" xmlns="urn:velta:schema"><timeMode>manual</timeMode>)"
                                 "<localTime>2024-05-01T08:30:00+05:30</localTime><timeZone>CST-5:30:00DST" +
                                 daylight + "</timeZone></Time>");
    script("GET", kZone, status(4), 403);
    EXPECT_EQ(ask("PUT", kTime, time), "0x40000001");
    script("GET", kZone, status(1));
    EXPECT_EQ(ask("PUT", kTime, time), "0x30000001");  // nothing was set
    EXPECT_EQ(sent().size(), 1U);
}

TEST_F(AccessTest, refusesBadTimesAndOutputs) {
    const std::vector<std::string> bodies{"",
                                          "[]",
                                          R"(["timeZone"])",
                                          "{}",
                                          R"({"Time":[1]})",
                                          R"({"Time":{"timeMode":"manual"}})",
                                          R"({"Time":{"timeMode":1,"localTime":"2024-05-01T08:30:00Z"}})",
                                          R"({"Time":{"timeMode":"NTP","localTime":"2024-05-01T08:30:00Z"}})",
                                          R"({"Time":{"timeMode":"manual","localTime":"2024-05-01"}})",
                                          R"({"timeZone":8})"};
    refuses("PUT", kTime, bodies);
    refuses("PUT", kZone, bodies);
    for (const char* body :
         {R"({"IOPortData":{"outputState":"HIGH"}})", R"({"IOPortData":{"outputState":1}})",
          R"({"IOPortData":["outputState"]})", R"(["IOPortData"])"}) {
        EXPECT_EQ(ask("PUT", kTrigger, body), kBadParameter) << body;
        EXPECT_THAT(sent(), ElementsAre("GET /VELTA/System/IO/outputs ")) << body;
    }
}

}  // namespace
