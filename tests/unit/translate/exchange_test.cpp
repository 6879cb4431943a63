// The operations of the system resources.
#include "exchange.h"

namespace {

using namespace exchange;

Operation time(void (CVeltaDevice::*operation)(int&, std::string&)) {
    return [operation](CVeltaDevice& device, std::string& answer) {
        int code = -1;
        (device.*operation)(code, answer);
        return static_cast<uint32_t>(code);
    };
}
Operation time(void (CVeltaDevice::*operation)(int&, const std::string&, std::string&),
               const std::string& body) {
    return [=](CVeltaDevice& device, std::string& answer) {
        int code = -1;
        (device.*operation)(code, body, answer);
        return static_cast<uint32_t>(code);
    };
}
Operation trigger(const std::string& text) {
    return [text](CVeltaDevice& device, std::string&) {
        Json::Value body;
        EXPECT_TRUE(velta::parseJson(text, body));
        return device.veltaSetAlarmOutTrigger("/VELTA/System/IO/outputs/1/trigger", body);
    };
}

const auto kGetTime = time(&CVeltaDevice::veltaGetTimeMngParam);
const auto kGetZone = time(&CVeltaDevice::veltaGetTimeZoneParam);
const auto kSetTime = time(&CVeltaDevice::veltaSetTimeMngParam,
                           R"({"Time":{"timeMode":"manual","localTime":"2024-05-01T08:30:00+05:30"}})");
const auto kSetZone = time(&CVeltaDevice::veltaSetTimeZoneParam, R"({"timeZone":"CST-5:45:00"})");
const auto kLow = trigger(R"({"IOPortData":{"outputState":"low"}})");
const Operation kReboot = std::mem_fn(&CVeltaDevice::veltaPutRebootDevice);
const Operation kGetAddress = [](CVeltaDevice& device, std::string& answer) {
    return device.veltaGetIPAddress(3, answer);
};

const std::string kUnsupported = R"({"errorCode":1073741825,)";

TEST(SystemExchange, readsOrTellsTheDevicesReason) {
    check({
        {kGetAddress,
         {ok("<IPAddress><a/></IPAddress>")},
         0,
         R"({"IPAddress":{"a":""}})",
         "GET /VELTA/System/Network/interfaces/3/ipAddress "},
        {kGetAddress, {ok("no document")}, 0x30000014},
        {kGetAddress, {ok(status(4))}, 0x40000001, kUnsupported},
        {kGetAddress, {http(404, "no document")}, 0x60000001},
        {kGetAddress, {http(404, status(4))}, 0x40000001, kUnsupported},
        {kGetAddress, {http(401, status(4))}, 401},
        {kGetTime, {ok("<Time><localTime/></Time>")}, 0, R"({"Time":{"localTime":"","timeMode":"manual"}})"},
        {kGetTime, {ok("no document")}, 0x30000001},
        {kGetTime, {http(404, "no document")}, 0x60000001},
        {kGetZone, {ok("CST-8:00:00")}, 0, R"({"timeZone":"CST-8:00:00"})"},
        {kGetZone, {http(404, "CST")}, 0x60000001},
    });
}

TEST(SystemExchange, writesOrTellsTheDevicesReason) {
    const std::string declaration = R"(<?xml version="1.0" encoding="UTF-8"?>)";
    const std::string daylight(200000, 'd');
    check({
        {kReboot, {ok(status(0))}, 0, "", "PUT /VELTA/System/reboot "},
        {kReboot, {http(503, status(4))}, 0x40000001, kUnsupported},
        {kReboot, {http(401, "")}, 401},
        {kReboot, {""}, 0x60000001},
        {kLow,
         {ok(status(1))},
         0,
         "",
         "PUT /VELTA/System/IO/outputs/1/trigger " + declaration +
             R"(<IOPortData xmlns="urn:velta:schema"> <outputState>low</outputState></IOPortData>)"},
        {kLow, {ok(status(0))}, 0x30000001},
        {kLow, {http(403, status(4))}, 0x40000001},
        {kSetZone, {ok(status(1))}, 0, "", "PUT /VELTA/System/time/timeZone CST-5:45:00"},
        {kSetTime,
         {ok("CST-8:00:00DST" + daylight), ok(status(1))},
         0,
         "",
         "PUT /VELTA/System/time " + declaration +
             R"(<Time version="2.0" xmlns="urn:velta:schema"><timeMode>manual</timeMode><localTime>)"
             "2024-05-01T08:30:00+05:30</localTime><timeZone>CST-5:30:00DST" +
             daylight + "</timeZone></Time>"},
        {kSetTime, {ok("CST-8:00:00"), http(403, status(4))}, 0x40000001, kUnsupported},
        {kSetTime, {ok("CST-8:00:00"), http(500, "CST")}, 0x60000001, "CST"},  // the device's own answer
        {kSetTime, {ok("CST-8:00:00"), ok("")}, 0x60000001},  // not the time zone read before
        {kSetTime, {http(403, status(4))}, 0x40000001, kUnsupported},
        {kSetTime, {ok(status(1))}, 0x30000001},  // nothing was set
    });
}

TEST(SystemExchange, refusesBadRequestsWithoutAskingTheDevice) {
    std::vector<Case> cases;
    for (const char* body :
         {"", "[]", R"(["timeZone"])", "{}", R"({"Time":[1]})", R"({"Time":{"timeMode":"manual"}})",
          R"({"Time":{"timeMode":1,"localTime":"2024-05-01T08:30:00Z"}})",
          R"({"Time":{"timeMode":"NTP","localTime":"2024-05-01T08:30:00Z"}})",
          R"({"Time":{"timeMode":"manual","localTime":"2024-05-01"}})", R"({"timeZone":8})"}) {
        cases.push_back({time(&CVeltaDevice::veltaSetTimeMngParam, body), {}, 0x60000001});
        cases.push_back({time(&CVeltaDevice::veltaSetTimeZoneParam, body), {}, 0x60000001});
    }
    for (const char* body :
         {R"({"IOPortData":{"outputState":"HIGH"}})", R"({"IOPortData":{"outputState":1}})",
          R"({"IOPortData":["outputState"]})", R"(["IOPortData"])"})
        cases.push_back({trigger(body), {}, 0x60000001});
    check(cases);
}

}  // namespace
