// Whole operations with a device that answers by a script.
#include <gtest/gtest.h>

#include <functional>

#include "../platform/scripted_server.h"
#include "device/CVeltaDevice.h"
#include "gateway/JsonText.h"

namespace {

std::string http(int status, const std::string& body) {
    return "HTTP/1.1 " + std::to_string(status) +
           " Answer\r\nContent-Length: " + std::to_string(body.size()) + "\r\nConnection: close\r\n\r\n" +
           body;
}
std::string ok(const std::string& body) {
    return http(200, body);
}
std::string status(int code) {
    return "<ResponseStatus><statusCode>" + std::to_string(code) + "</statusCode></ResponseStatus>";
}

using Operation = std::function<uint32_t(CVeltaDevice&, std::string&)>;

// Runs an operation with a device that gives these answers, one a request; returns what the device was sent.
std::vector<std::string> run(const Operation& operation, const std::vector<std::string>& answers,
                             uint32_t& code, std::string& answer) {
    std::vector<Answer> script;
    script.reserve(answers.size());
    for (const std::string& bytes : answers)
        script.push_back({bytes, Answer::Then::kClose});
    const ScriptedServer server(script);
    CVeltaDevice device;
    std::string url =
        "Connect=TCP/IP;Target=127.0.0.1;Port=" + std::to_string(server.port()) + ";DevIndex=t;";
    std::string user = "u";
    EXPECT_EQ(device.Connect_V2(url.data(), user.data(), user.data()), 0);
    code = operation(device, answer);
    device.DisConnect();
    return server.requests();
}

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

struct Case {
    Operation operation;
    std::vector<std::string> answers;
    uint32_t code;
    std::string answer = "";   // its start; empty: the whole
    std::string request = "";  // the last one, without its headers; empty: any
};

void check(const std::vector<Case>& cases) {
    for (size_t row = 0; row < cases.size(); ++row) {
        SCOPED_TRACE(row);
        const Case& c = cases[row];
        uint32_t code = 1;
        std::string answer;
        const std::vector<std::string> requests = run(c.operation, c.answers, code, answer);
        EXPECT_EQ(code, c.code);
        EXPECT_TRUE(c.answer.empty() ? answer.empty() : answer.starts_with(c.answer)) << answer;
        ASSERT_EQ(requests.size(), c.answers.size());
        if (c.request.empty()) continue;
        const std::string& last = requests.back();
        EXPECT_EQ(last.substr(0, last.find(" HTTP")) + " " + last.substr(last.find("\r\n\r\n") + 4),
                  c.request);
    }
}

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
