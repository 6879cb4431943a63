#include <gmock/gmock.h>
#include <json/json.h>

#include "client.h"

using testing::HasSubstr;
using velta_test::Answer;
using velta_test::Client;

namespace {

constexpr const char* kDeviceInfo = "/VELTA/System/deviceInfo";

TEST(Resource, deviceInfoIsWrittenAndReadBack) {
    veltasim::Device device;
    device.start();
    Client client(device);
    const Answer before = client.get(kDeviceInfo);
    EXPECT_THAT(before.body, testing::StartsWith("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                                 "<DeviceInfo version=\"2.0\" xmlns=\"urn:velta:schema\">\n"
                                                 "<deviceName>Access Controller</deviceName>\n<deviceID>"));

    const Answer written =
        client.put(kDeviceInfo,
                   "<DeviceInfo><deviceName>T\u00fcr &amp; Tor</deviceName><model>other</model>"
                   "<telecontrolID>7</telecontrolID></DeviceInfo>");
    EXPECT_EQ(written.status, 200);
    EXPECT_THAT(written.body, HasSubstr("<requestURL>/VELTA/System/deviceInfo</requestURL>\n"
                                        "<statusCode>1</statusCode>\n<statusString>OK</statusString>"));
    EXPECT_EQ(device.deviceName(), "T\u00fcr & Tor");
    const std::string after = client.get(kDeviceInfo).body;
    EXPECT_THAT(after, HasSubstr("<telecontrolID>7</telecontrolID>"));
    EXPECT_THAT(after, HasSubstr("<model>VA204</model>"));
}

TEST(Resource, refusesWhatItCannotTake) {
    veltasim::Device device({.maxRequestBody = 5000});
    device.start();
    Client client(device);
    const std::string longName =
        "<DeviceInfo><deviceName>" + std::string(33, 'n') + "</deviceName></DeviceInfo>";
    struct Case {
        const char* method;
        const char* target;
        std::string body;
        long status;
        const char* text;
    };
    const Case cases[] = {
        {"PUT", kDeviceInfo, "<DeviceInfo><deviceName>x</DeviceInfo>", 400, "<statusCode>5</statusCode>"},
        {"PUT", kDeviceInfo, "<Other/>", 400, "<subStatusCode>badXmlContent</subStatusCode>"},
        {"PUT", kDeviceInfo, longName, 400, "<errorCode>1610612737</errorCode>"},
        {"PUT", kDeviceInfo, "<DeviceInfo><telecontrolID>256</telecontrolID></DeviceInfo>", 400,
         "telecontrolID"},
        {"PUT", kDeviceInfo, std::string(5001, ' '), 413, "badRequestLength"},
        {"DELETE", kDeviceInfo, "", 405, "<subStatusCode>notSupport</subStatusCode>"},
        {"GET", "/VELTA/System/deviceInfo/more", "", 404, "<statusCode>4</statusCode>"},
        {"GET", "/VELTA/System/nothing?format=json", "", 404, "\"errorCode\":\t1073741825"},
    };
    for (const Case& c : cases) {
        const Answer answer = client.send(c.method, c.target, c.body);
        EXPECT_EQ(answer.status, c.status) << c.method << ' ' << c.target << ' ' << c.body;
        EXPECT_THAT(answer.body, HasSubstr(c.text));
    }
    EXPECT_EQ(device.deviceName(), "Access Controller");
}

TEST(Resource, recordsRequestsAsTheyCame) {
    veltasim::Device device({.maxRecordedRequests = 3, .maxRecordedBody = 4});
    device.start();
    Client client(device);
    for (int i = 0; i < 3; ++i)
        client.put("/VELTA/x?a=%20b", "<longer>");
    const auto last = device.waitForRequest(
        [](const auto& request) { return request.user == "admin" && request.number == 4; },
        velta_test::kSoon);
    ASSERT_TRUE(last);
    EXPECT_EQ(last->method, "PUT");
    EXPECT_EQ(last->target, "/VELTA/x?a=%20b");
    EXPECT_EQ(last->path(), "/VELTA/x");
    EXPECT_EQ(last->body, "<lon");
    EXPECT_EQ(last->status, 404);
    EXPECT_EQ(device.requests().size(), 3U);
    device.forgetRequests();
    EXPECT_FALSE(device.waitForRequest([](const auto&) { return true; }, std::chrono::milliseconds(1)));
}

TEST(Resource, capabilitiesAreJson) {
    veltasim::Device device;
    device.start();
    Json::Value json;
    std::istringstream(Client(device).get("/VELTA/AccessControl/capabilities?format=json").body) >> json;
    EXPECT_TRUE(json["AccessControl"].isObject());
}

TEST(Resource, aTakenPortIsAnError) {
    veltasim::Device first;
    first.start();
    veltasim::Device second({.port = first.port()});
    try {
        second.start();
        FAIL() << "two devices on one port";
    } catch (const std::system_error& error) {
        EXPECT_EQ(error.code(), std::errc::address_in_use);
    }
}

}  // namespace
