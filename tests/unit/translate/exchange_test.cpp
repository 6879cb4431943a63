// Whole operations with a device that answers by a script.
#include <gmock/gmock.h>

#include "../platform/scripted_server.h"
#include "device/CVeltaDevice.h"
#include "gateway/JsonText.h"

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

std::string http(int status, const std::string& body) {
    return "HTTP/1.1 " + std::to_string(status) +
           " Answer\r\nContent-Length: " + std::to_string(body.size()) + "\r\nConnection: close\r\n\r\n" +
           body;
}
std::string ok(const std::string& body) {
    return http(200, body);
}

const std::string kDone = "<ResponseStatus><statusCode>1</statusCode></ResponseStatus>";
const std::string kBusy = "<ResponseStatus><statusCode>2</statusCode></ResponseStatus>";
const std::string kBadValue = "<ResponseStatus><statusCode>6</statusCode></ResponseStatus>";
constexpr const char* kNewTime = R"({"Time":{"timeMode":"manual","localTime":"2024-05-01T08:30:00+05:30"}})";

// A session with a device that gives these answers, one a request.
class Exchange {
 public:
    explicit Exchange(const std::vector<std::string>& answers) : server_(script(answers)) {
        std::string url =
            "Connect=TCP/IP;Target=127.0.0.1;Port=" + std::to_string(server_.port()) + ";DevIndex=t;";
        std::string user = "u";
        EXPECT_EQ(device.Connect_V2(url.data(), user.data(), user.data()), 0);
    }
    ~Exchange() { device.DisConnect(); }
    Exchange(const Exchange&) = delete;
    Exchange& operator=(const Exchange&) = delete;

    std::vector<std::string> requests() const { return server_.requests(); }

    CVeltaDevice device;
    std::string answer;
    int code = -1;

 private:
    static std::vector<Answer> script(const std::vector<std::string>& answers) {
        std::vector<Answer> script;
        for (const std::string& bytes : answers)
            script.push_back({bytes, Answer::Then::kClose});
        return script;
    }
    ScriptedServer server_;
};

TEST(TimeExchange, settingTheClockKeepsDaylightSaving) {
    const std::string daylight = "DST" + std::string(200000, '<');
    Exchange exchange({ok("CST-8:00:00" + daylight), ok(kDone)});
    exchange.device.veltaSetTimeMngParam(exchange.code, kNewTime, exchange.answer);
    EXPECT_EQ(exchange.code, 0);
    EXPECT_EQ(exchange.answer, "");
    ASSERT_EQ(exchange.requests().size(), 2U);
    const std::string request = exchange.requests()[1];
    EXPECT_THAT(request, StartsWith("PUT /VELTA/System/time HTTP"));
    const std::string document = request.substr(request.find("\r\n\r\n") + 4);
    EXPECT_THAT(
        document,
        StartsWith(R"(<?xml version="1.0" encoding="UTF-8"?><Time version="2.0" xmlns="urn:velta:schema">)"
                   "<timeMode>manual</timeMode><localTime>2024-05-01T08:30:00+05:30</localTime>"
                   "<timeZone>CST-5:30:00DST&lt;"));
    EXPECT_THAT(document, EndsWith("&lt;</timeZone></Time>"));
    EXPECT_GT(document.size(), 800000U);
}

TEST(TimeExchange, aFailureIsReportedAsItsOwn) {
    struct Case {
        std::vector<std::string> answers;
        int code;
        std::string answer;  // its start
    };
    const Case cases[] = {
        {{ok("CST-8:00:00"), http(403, kBusy)}, 0x20000001, R"({"errorCode")"},
        {{ok("CST-8:00:00"), http(500, "CST")}, 0x60000001, "CST"},  // the device's own answer
        {{ok("CST-8:00:00"), ok("")}, 0x60000001, ""},               // not the time zone read before
        {{http(403, kBusy)}, 0x20000001, R"({"errorCode")"},
        {{ok("UTC")}, 0x60000001, ""},
        {{ok(kDone)}, 0x30000001, ""},  // nothing was set
        {{}, 0x60000001, ""},
    };
    for (const Case& c : cases) {
        Exchange exchange(c.answers);
        exchange.device.veltaSetTimeMngParam(exchange.code, kNewTime, exchange.answer);
        EXPECT_EQ(exchange.code, c.code);
        EXPECT_EQ(exchange.answer.substr(0, c.answer.empty() ? std::string::npos : c.answer.size()),
                  c.answer);
    }
}

TEST(TimeExchange, refusesHostTextsWithoutAskingTheDevice) {
    Exchange exchange({});
    for (const char* body :
         {"", "[]", "7", "{}", R"({"Time":"x"})", R"({"Time":[]})", R"({"Time":{"timeMode":"manual"}})",
          R"({"Time":{"timeMode":1,"localTime":"2024-05-01T08:30:00Z"}})",
          R"({"Time":{"timeMode":"NTP","localTime":"2024-05-01T08:30:00Z"}})",
          R"({"Time":{"timeMode":"manual","localTime":"2024-13-01T08:30:00Z"}})", R"({"timeZone":"CST-8"})",
          R"({"timeZone":8})"}) {
        exchange.code = -1;
        exchange.device.veltaSetTimeMngParam(exchange.code, body, exchange.answer);
        EXPECT_EQ(exchange.code, 0x60000001) << body;
        exchange.code = -1;
        exchange.device.veltaSetTimeZoneParam(exchange.code, body, exchange.answer);
        EXPECT_EQ(exchange.code, 0x60000001) << body;
    }
    EXPECT_TRUE(exchange.requests().empty());
}

TEST(TimeExchange, readsAndWritesTheTimeZone) {
    Exchange exchange({ok("CST-8:00:00"), ok("<Time><localTime/></Time>"), ok(kBadValue), ok(kDone)});
    exchange.device.veltaGetTimeZoneParam(exchange.code, exchange.answer);
    EXPECT_EQ(exchange.code, 0);
    EXPECT_EQ(exchange.answer, "{\"timeZone\":\"CST-8:00:00\"}\n");
    exchange.device.veltaGetTimeMngParam(exchange.code, exchange.answer);
    EXPECT_EQ(exchange.code, 0);
    EXPECT_EQ(exchange.answer, "{\"Time\":{\"localTime\":\"\",\"timeMode\":\"manual\"}}\n");
    exchange.device.veltaGetTimeMngParam(exchange.code, exchange.answer);
    EXPECT_EQ(exchange.code, 0x30000001);
    exchange.device.veltaSetTimeZoneParam(exchange.code, R"({"timeZone":"CST-5:45:00"})", exchange.answer);
    EXPECT_EQ(exchange.code, 0);
    EXPECT_THAT(exchange.requests().back(), StartsWith("PUT /VELTA/System/time/timeZone HTTP"));
    EXPECT_THAT(exchange.requests().back(), EndsWith("\r\n\r\nCST-5:45:00"));
}

TEST(DocumentExchange, tellsTheDevicesReasons) {
    struct Case {
        std::vector<std::string> answers;
        uint32_t code;
        const char* answer;  // its start
    };
    const Case reads[] = {
        {{ok("<IPAddress><a>1</a></IPAddress>")}, 0, "{\"IPAddress\":{\"a\":\"1\"}}\n"},
        {{ok("no document")}, 0x30000014, ""},
        {{ok(kBusy)}, 0x20000001, "{\"errorCode\":1073746205"},
        {{http(404, "no document")}, 0x60000001, ""},
        {{http(404, kBusy)}, 0x20000001, "{\"errorCode\":1073746205"},
        {{http(401, kBusy)}, 401, ""},
    };
    for (const Case& c : reads) {
        Exchange exchange(c.answers);
        EXPECT_EQ(exchange.device.veltaGetIPAddress(3, exchange.answer), c.code);
        EXPECT_THAT(exchange.answer, StartsWith(c.answer));
        EXPECT_EQ(exchange.answer.empty(), *c.answer == 0);
        EXPECT_THAT(exchange.requests()[0],
                    StartsWith("GET /VELTA/System/Network/interfaces/3/ipAddress HTTP"));
    }
    const Case reboots[] = {
        {{ok("<R><statusCode>0</statusCode></R>")}, 0, ""},
        {{http(503, kBusy)}, 0x20000001, "{\"errorCode\":1073746205"},
        {{http(401, "")}, 401, ""},
        {{}, 0x60000001, ""},
    };
    for (const Case& c : reboots) {
        Exchange exchange(c.answers);
        EXPECT_EQ(exchange.device.veltaPutRebootDevice(exchange.answer), c.code);
        EXPECT_THAT(exchange.answer, StartsWith(c.answer));
    }
}

TEST(AlarmOutput, isSwitchedByItsTrigger) {
    const std::string path = "/VELTA/System/IO/outputs/1/trigger";
    struct Case {
        const char* body;
        std::vector<std::string> answers;
        uint32_t code;
    };
    const Case cases[] = {
        {R"({"IOPortData":{"outputState":"high"}})", {ok(kDone)}, 0},
        {R"({"IOPortData":{"outputState":"low"}})", {ok("<R><statusCode>0</statusCode></R>")}, 0x30000001},
        {R"({"IOPortData":{"outputState":"low"}})", {ok("")}, 0x30000001},
        {R"({"IOPortData":{"outputState":"low"}})", {http(403, kBusy)}, 0x20000001},
        {R"({"IOPortData":{"outputState":"HIGH"}})", {}, 0x60000001},
        {R"({"IOPortData":{"outputState":1}})", {}, 0x60000001},
        {R"({"IOPortData":["outputState"]})", {}, 0x60000001},
        {R"(["IOPortData"])", {}, 0x60000001},
    };
    for (const Case& c : cases) {
        Exchange exchange(c.answers);
        Json::Value body;
        ASSERT_TRUE(velta::parseJson(c.body, body));
        EXPECT_EQ(exchange.device.veltaSetAlarmOutTrigger(path, body), c.code) << c.body;
        const auto requests = exchange.requests();
        ASSERT_EQ(requests.size(), c.answers.size());
        if (c.code != 0) continue;
        EXPECT_THAT(requests[0], StartsWith("PUT " + path + " HTTP"));
        EXPECT_THAT(requests[0],
                    EndsWith("\r\n\r\n<?xml version=\"1.0\" encoding=\"UTF-8\"?><IOPortData "
                             "xmlns=\"urn:velta:schema\"> <outputState>high</outputState></IOPortData>"));
    }
}

}  // namespace
