// Requests of a host on their way to a device and back. They need no log-in check, so nothing waits here.
#include <gmock/gmock.h>
#include <json/json.h>
#include <veltasim/device.h>

#include <memory>
#include <sstream>

#include "plugin.h"

using namespace host;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

class GatewayTest : public testing::Test {
 protected:
    veltasim::Device device;
    Library library;
    std::unique_ptr<Session> session;

    void SetUp() override {
        device.start();
        ASSERT_EQ(library.record->Init(), VELTA_OK);
        session = std::make_unique<Session>(library);
        ASSERT_EQ(session->connectTo(device.port()), 0U);
    }
    void TearDown() override {
        session.reset();
        EXPECT_EQ(library.record->Uninit(), VELTA_OK);
    }

    /* Requests that the device let in, as "METHOD target". */
    std::vector<std::string> served() {
        std::vector<std::string> lines;
        for (const auto& request : device.requests()) {
            if (!request.user.empty()) lines.push_back(request.method + " " + request.target);
        }
        return lines;
    }
    std::string raw(const char* request, unsigned size = 4096) {
        std::string text = request;
        std::string answer(4096, '#');
        EXPECT_EQ(
            session->gateway->VELTA_Getway(session->instance, text.data(), answer.data(), size, nullptr), 0);
        EXPECT_EQ(answer.find_first_not_of('#', size),
                  std::string::npos);  // nothing is written behind the buffer
        return answer.c_str();
    }
};

uint32_t errorCodeOf(const std::string& answer) {
    Json::Value status;
    std::istringstream(answer) >> status;
    return status["errorCode"].asUInt();
}

TEST_F(GatewayTest, forwardsWhatItGetsWithoutTheHostsParameter) {
    const std::string answer = session->request("GET", "/VELTA/System/deviceInfo?devIndex=1");
    EXPECT_THAT(answer, HasSubstr("<DeviceInfo"));
    device.setDocument("/VELTA/Some/Json", R"({"a": 1})");
    EXPECT_EQ(session->request("GET", "/VELTA/Some/Json?format=json&devIndex=1"), R"({"a": 1})");
    const std::string unknown =
        session->request("DELETE", "/VELTA/Some/Thing?devIndex=1&a=b", "<x>\xc3\xa9</x>");
    EXPECT_THAT(unknown, HasSubstr("<statusCode>4</statusCode>"));
    EXPECT_THAT(served(),
                testing::ElementsAre("GET /VELTA/System/deviceInfo", "GET /VELTA/Some/Json?format=json",
                                     "DELETE /VELTA/Some/Thing&a=b"));
    const auto last = device.requests().back();
    EXPECT_EQ(last.body, "<x>\xc3\xa9</x>");
    EXPECT_EQ(last.header("Content-Type"), "application/xml;charset=UTF-8");
    EXPECT_EQ(last.header("Connection"), "keep-alive");
    EXPECT_EQ(last.header("Expect"), "");
}

TEST_F(GatewayTest, refusesBadEnvelopesWithoutAskingTheDevice) {
    struct Case {
        const char* request;
        uint32_t errorCode;
    };
    const Case cases[] = {
        {"", 0x60000001},
        {"   ", 0x60000001},
        {"no json", 0x60000001},
        {"null", 0x60000001},
        {R"([{"method":"GET"}])", 0x60000001},
        {R"({"method":"GET","uri":"/VELTA/X?devIndex=1"})", 0x60000001},
        {R"({"method":"GET","uri":"/VELTA/X?devIndex=1","body":{}})", 0x60000001},
        {R"({"method":"GET","url":"/VELTA/X?devIndex=1","body":""})", 0x60000001},
        {R"({"method":null,"uri":"/VELTA/X?devIndex=1","body":""})", 0x60000001},
        {R"({"method":{},"uri":"/VELTA/X?devIndex=1","body":""})", 0x60000001},
        {R"({"method":"get","uri":"/VELTA/X?devIndex=1","body":""})", 0x60000001},
        {R"({"method":"GET","uri":"/VELTA/X?a=1","body":""})", 0x60000001},
        {R"({"method":"GET","uri":"/VELTA/X","body":""})", 0x4000111D},  // passing through needs a query
    };
    for (const Case& c : cases)
        EXPECT_EQ(errorCodeOf(raw(c.request)), c.errorCode) << c.request;
    EXPECT_EQ(errorCodeOf(raw(std::string(100'000, '[').c_str())), 0x60000001U);
    std::string answer(100, '#');
    EXPECT_EQ(session->gateway->VELTA_Getway(session->instance, nullptr, answer.data(), 100, nullptr), 0);
    EXPECT_THAT(answer, HasSubstr("1610612737"));
    EXPECT_THAT(device.requests(), IsEmpty());
    EXPECT_THAT(raw(R"(  {"method":"GET","uri":"/VELTA/System/deviceInfo?devIndex=1","body":""}  )"),
                HasSubstr("<DeviceInfo"));
}

TEST_F(GatewayTest, takesRequestsOfAnySizeAndBytes) {
    // Megabytes go through whole; no envelope gets larger by being large.
    const std::string large(size_t{5} << 20, 'x');
    device.setAnswer("PUT", "/VELTA/Some/Thing", 200, "taken");
    EXPECT_EQ(session->request("PUT", "/VELTA/Some/Thing?devIndex=1", large), "taken");
    EXPECT_EQ(device.requests().back().header("Content-Length"), std::to_string(large.size()));
    EXPECT_EQ(errorCodeOf(raw(large.c_str())), 0x60000001U);
    EXPECT_EQ(errorCodeOf(raw((R"({"method":"GET","uri":")" + large + R"(","body":""})").c_str())),
              0x4000111DU);
    // Bytes that are no UTF-8 reach the device as they are, unless the document is written anew.
    const std::string bytes = "\xff\xfe\xc3";
    EXPECT_EQ(
        raw((R"({"method":"PUT","uri":"/VELTA/Some/Thing?devIndex=1","body":")" + bytes + R"("})").c_str()),
        "taken");
    EXPECT_EQ(device.requests().back().body, bytes);
    device.setAnswer("POST", "/VELTA/AccessControl/CardInfo/Record", 200, R"({"statusCode":1})");
    EXPECT_EQ(raw((R"({"method":"POST","uri":"/VELTA/AccessControl/CardInfo/Record?format=json","body":)"
                   R"("{\"CardInfo\":{\"employeeNo\":\"1\",\"cardNo\":\")" +
                   bytes + R"(\"}}"})")
                      .c_str()),
              R"({"statusCode":1})");
    EXPECT_THAT(device.requests().back().body, HasSubstr("\\ufffd"));
}

TEST_F(GatewayTest, cutsTheAnswerToTheBuffer) {
    const char* request = R"({"method":"GET","uri":"/VELTA/System/deviceInfo?devIndex=1","body":""})";
    const std::string whole = raw(request);
    EXPECT_EQ(raw(request, 11), whole.substr(0, 10));
    EXPECT_EQ(raw(request, 1), "");
    EXPECT_EQ(raw(request, 0), std::string(4096, '#'));
    std::string text = request;
    EXPECT_EQ(session->gateway->VELTA_Getway(session->instance, text.data(), nullptr, 100, nullptr), 0);
}

TEST_F(GatewayTest, mergesADeviceNameIntoTheDevicesOwnDocument) {
    const std::string answer =
        session->request("PUT", "/VELTA/System/deviceInfo?devIndex=1",
                         "<DeviceInfo><deviceName>East gate</deviceName></DeviceInfo>");
    EXPECT_THAT(answer, HasSubstr("<statusCode>1</statusCode>"));
    EXPECT_EQ(device.deviceName(), "East gate");
    EXPECT_THAT(served(),
                testing::ElementsAre("GET /VELTA/System/deviceInfo", "PUT /VELTA/System/deviceInfo"));
    EXPECT_THAT(device.requests().back().body, HasSubstr("<serialNumber>"));
    EXPECT_EQ(device.requests().back().body.find('\0'), std::string::npos);
}

TEST_F(GatewayTest, aFailedExchangeIsAnUnknownError) {
    device.setFault({.kind = veltasim::FaultKind::HttpError});
    EXPECT_THAT(session->request("GET", "/VELTA/System/deviceInfo?devIndex=1"), HasSubstr("ResponseStatus"));
    device.clearFaults();
    device.setFault({.kind = veltasim::FaultKind::Drop});
    EXPECT_EQ(errorCodeOf(session->request("GET", "/VELTA/System/deviceInfo?devIndex=1")), 0x4000111DU);
    // The document of the device can't be read, so its name is not written, and its answer is nobody's
    // answer.
    device.clearFaults();
    device.setFault({.kind = veltasim::FaultKind::HttpError, .count = 1});
    EXPECT_EQ(errorCodeOf(session->request("PUT", "/VELTA/System/deviceInfo?devIndex=1",
                                           "<DeviceInfo><deviceName>x</deviceName></DeviceInfo>")),
              0x4000111DU);
    device.powerOff();
    EXPECT_EQ(errorCodeOf(session->request("GET", "/VELTA/System/deviceInfo?devIndex=1")), 0x4000111DU);
    device.powerOn();
    EXPECT_THAT(session->request("GET", "/VELTA/System/deviceInfo?devIndex=1"), HasSubstr("<DeviceInfo"));
}

TEST_F(GatewayTest, rebootGoesOutWithoutABody) {
    session->request("PUT", "/VELTA/System/reboot?devIndex=1", "<ignored/>");
    const auto request = device.requests().back();
    EXPECT_EQ(request.target, "/VELTA/System/reboot");
    EXPECT_EQ(request.body, "");
    EXPECT_EQ(request.header("Content-Length"), "0");
    EXPECT_EQ(request.header("Accept"), "*/*");
    EXPECT_EQ(request.header("Content-Type"), "");
}

TEST_F(GatewayTest, logsInWithEveryScheme) {
    for (const auto scheme : {veltasim::AuthScheme::Digest, veltasim::AuthScheme::DigestSha256,
                              veltasim::AuthScheme::Basic, veltasim::AuthScheme::None}) {
        veltasim::Device other({.auth = scheme});
        other.start();
        Session visitor(library);
        ASSERT_EQ(visitor.connectTo(other.port()), 0U);
        EXPECT_THAT(visitor.request("PUT", "/VELTA/Some/Thing?devIndex=1", "whole"), HasSubstr("notSupport"));
        const auto requests = other.requests();
        // A device that asks for no log-in carries out the first request: it must be whole, and the only one.
        EXPECT_EQ(requests.size(), scheme == veltasim::AuthScheme::None ? 1U : 2U);
        EXPECT_EQ(requests.back().body, "whole");
        EXPECT_EQ(requests.front().header("Authorization"), "");
    }
}

std::string inventoryText(Session& session, unsigned size = 1 << 16) {
    std::string buffer(size, '#');
    EXPECT_EQ(session.gateway->DeviceLoop(session.instance, buffer.data(), size), 0);
    return buffer.c_str();
}

Json::Value inventory(Session& session) {
    Json::Value device;
    std::istringstream(inventoryText(session)) >> device;
    return device;
}

TEST_F(GatewayTest, listsTheDevicesChannels) {
    veltasim::Device recorder(
        {.inventory = {.videoInputs = 1, .proxyChannels = 2, .audioChannels = 0, .ioOutputs = std::nullopt}});
    recorder.start();
    recorder.setProxyOnline(2, false);
    Session visitor(library);
    ASSERT_EQ(visitor.connectTo(recorder.port()), 0U);
    const Json::Value read = inventory(visitor);
    EXPECT_EQ(read["devIndex"].asString(), "");
    EXPECT_TRUE(read["onlineStatus"].asBool());
    EXPECT_EQ(read["port"].asInt(), recorder.port());
    EXPECT_EQ(read["serialNo"].asString(), recorder.options().identity.serialNumber);
    EXPECT_THAT(read["devVersion"].asString(),
                testing::StartsWith(recorder.options().identity.firmwareVersion + " "));
    EXPECT_EQ(read["netZoneId"].asInt(), -1);
    const Json::Value& video = read["videoChannels"];
    ASSERT_EQ(video.size(), 3U);
    EXPECT_EQ(video[0]["channelType"].asString(), "analog");
    EXPECT_EQ(video[1]["channelType"].asString(), "digital");
    EXPECT_EQ(video[1]["channelStatus"].asString(), "true");
    EXPECT_EQ(video[2]["channelNo"].asInt(), 2);
    EXPECT_EQ(video[2]["channelStatus"].asString(), "false");
    EXPECT_TRUE(read["audioChannels"].isArray());
    EXPECT_TRUE(read["alarmOutChannels"].isNull());  // the device has no such resource
    // Inputs are named by their position.
    ASSERT_EQ(read["alarmInChannels"].size(), 2U);
    EXPECT_EQ(read["alarmInChannels"][0]["channelNo"].asInt(), 1);
    EXPECT_EQ(read["alarmInChannels"][0]["channelName"].asString(), "AlarmInChan_0");
    EXPECT_EQ(inventoryText(visitor).back(), '}');  // the line feed is what a text that fits loses
    // Outputs by their number.
    EXPECT_EQ(inventory(*session)["alarmOutChannels"][1]["channelName"].asString(), "AlarmOutChan_2");
}

TEST_F(GatewayTest, readsOddInventories) {
    device.setDocument("/VELTA/System/IO/outputs",
                       "<L><IOOutputPort><id>7x</id></IOOutputPort><Other/><IOOutputPort/></L>");
    const Json::Value outputs = inventory(*session)["alarmOutChannels"];
    ASSERT_EQ(outputs.size(), 2U);
    EXPECT_EQ(outputs[0]["channelNo"].asInt(), 7);
    EXPECT_EQ(outputs[1]["channelName"].asString(), "AlarmOutChan_0");

    device.setDocument("/VELTA/System/IO/outputs", "no document");
    std::string buffer(64, '#');
    EXPECT_EQ(static_cast<uint32_t>(session->gateway->DeviceLoop(session->instance, buffer.data(), 64)),
              0x60000001U);
    EXPECT_EQ(buffer[0], '#');

    device.setDocument("/VELTA/System/deviceInfo", "<DeviceInfo><model>M</model></DeviceInfo>");
    EXPECT_EQ(inventoryText(*session), R"({"devIndex":"","onlineStatus":false})");
}

TEST_F(GatewayTest, writesTheInventoryAsItAlwaysHas) {
    device.setDocument("/VELTA/System/deviceInfo",
                       "<D><model>100%s%n%%d%%%</model><serialNumber/><firmwareVersion>1</firmwareVersion>"
                       "<firmwareReleasedDate/></D>");
    const std::string text = inventoryText(*session);
    EXPECT_THAT(text, HasSubstr(R"("devType":"100%s%n%d%%")"));
    EXPECT_EQ(inventoryText(*session, 10), text.substr(0, 9));
    EXPECT_EQ(inventoryText(*session, 1), "");
    EXPECT_EQ(session->gateway->DeviceLoop(session->instance, nullptr, 100), 0);
}

Json::Value jsonOf(const std::string& text) {
    Json::Value value;
    std::istringstream(text) >> value;
    return value;
}

TEST_F(GatewayTest, translatesTheSystemResources) {
    const Json::Value info =
        jsonOf(session->request("GET", "/VELTA/System/deviceInfo?format=json"))["DeviceInfo"];
    EXPECT_EQ(info["serialNumber"].asString(), device.options().identity.serialNumber);

    EXPECT_EQ(errorCodeOf(session->request(
                  "PUT", "/VELTA/System/time?format=json&devIndex=1",
                  R"({"Time":{"timeMode":"manual","localTime":"2026-05-01T08:30:00+05:30"}})")),
              1U);
    EXPECT_THAT(device.timeZone(), testing::StartsWith("CST-5:30:00"));
    const Json::Value time = jsonOf(session->request("GET", "/VELTA/System/time?format=json"))["Time"];
    EXPECT_THAT(time["localTime"].asString(), testing::StartsWith("2026-05-01T08:3"));
    EXPECT_EQ(
        jsonOf(session->request("GET", "/VELTA/System/time/timeZone?format=json"))["timeZone"].asString(),
        device.timeZone());

    const Json::Value interfaces =
        jsonOf(session->request("GET", "/VELTA/System/Network/interfaces?format=json"));
    ASSERT_TRUE(interfaces["NetworkInterfaceList"]["NetworkInterface"].isArray());
    EXPECT_EQ(errorCodeOf(session->request("PUT", "/VELTA/System/Network/interfaces/1/ipAddress?format=json",
                                           R"({"IPAddress":{"ipAddress":"10.9.8.7"}})")),
              1U);
    EXPECT_EQ(
        jsonOf(session->request(
            "GET", "/VELTA/System/Network/interfaces/1/ipAddress?format=json"))["IPAddress"]["ipAddress"]
            .asString(),
        "10.9.8.7");
}

TEST_F(GatewayTest, refusesWhatNoRouteTakesThatWay) {
    struct Case {
        const char* method;
        const char* uri;
        uint32_t errorCode;
    };
    const Case cases[] = {
        {"GET", "/VELTA/System/reboot?format=json", 0x40000001},
        {"get", "/VELTA/System/time?format=json", 0x40000001},
        {"DELETE", "/VELTA/System/Network/interfaces/1?format=json", 0x40000001},
        {"GET", "/VELTA/System/Network/interfaces/0?format=json", 0x60000001},
        {"GET", "/VELTA/System/Network/interfaces/-1/ipAddress?format=json", 0x60000001},
        {"PUT", "/VELTA/System/deviceInfo?format=json", 0x60000001},
        {"PUT", "/VELTA/System/time/timeZone?format=json", 0x60000001},
    };
    for (const Case& c : cases)
        EXPECT_EQ(errorCodeOf(session->request(c.method, c.uri, "{}")), c.errorCode) << c.uri;
    EXPECT_THAT(device.requests(), IsEmpty());
}

TEST_F(GatewayTest, sendsATranslatedRequestOnce) {
    device.setFault({.kind = veltasim::FaultKind::Drop, .path = "/VELTA/System/reboot"});
    EXPECT_EQ(errorCodeOf(session->request("PUT", "/VELTA/System/reboot?format=json&devIndex=1")),
              0x60000001U);
    EXPECT_THAT(served(), testing::ElementsAre("PUT /VELTA/System/reboot"));
}

TEST_F(GatewayTest, switchesOutputs) {
    const auto trigger = [&](const char* uri, const char* body, const char* method = "PUT") {
        return errorCodeOf(session->request(method, uri, body));
    };
    EXPECT_EQ(
        trigger("/VELTA/System/IO/outputs/2/trigger?devIndex=0", R"({"IOPortData":{"outputState":"high"}})"),
        1U);
    EXPECT_TRUE(device.outputIsHigh(2));
    EXPECT_EQ(trigger("/VELTA/System/IO/outputs/2/trigger?x", R"({"IOPortData":{"outputState":"low"}})"), 1U);
    EXPECT_FALSE(device.outputIsHigh(2));
    EXPECT_EQ(trigger("/VELTA/System/IO/outputs/2/trigger?x", R"({"IOPortData":{"outputState":"HIGH"}})"),
              0x60000001U);
    EXPECT_EQ(trigger("/VELTA/System/IO/outputs/2/trigger?x", R"({"IOPortData":{"outputState":1}})"),
              0x60000001U);
    EXPECT_EQ(trigger("/VELTA/System/IO/outputs/3/trigger?x", R"({"IOPortData":{"outputState":"high"}})"),
              0x60000001U);
    EXPECT_EQ(trigger("/VELTA/System/IO/outputs/2/trigger?x", "", "GET"), 0x40000001U);
    EXPECT_EQ(trigger("/VELTA/System/IO/outputs/2/trigger", R"({"IOPortData":{"outputState":"high"}})"),
              0x4000111DU);
    session->request("PUT", "/VELTA/System/IO/outputs/02/trigger?devIndex=0", "as it stands");
    EXPECT_EQ(device.requests().back().target, "/VELTA/System/IO/outputs/02/trigger");
    EXPECT_EQ(device.requests().back().body, "as it stands");
}

}  // namespace
