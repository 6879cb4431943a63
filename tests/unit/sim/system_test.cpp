#include "client.h"

using namespace std::chrono_literals;
using namespace velta_test;
using testing::HasSubstr;
using veltasim::AuthScheme;
using veltasim::Device;

namespace {

using System = DeviceTest;

constexpr const char* kTime = "/VELTA/System/time";

TEST(SystemDevice, answersWhatItHasAndRefusesTheRest) {
    Device device({.maxRequestBody = 5000});
    device.start();
    Client client(device);
    const std::string name33(33, 'n');
    client.talk("/VELTA/System/", "PUT deviceInfo <DeviceInfo><deviceName>" + name33 +
                                      R"(</deviceName></DeviceInfo> -> 400 <errorCode>1610612737</errorCode>
PUT deviceInfo <DeviceInfo><deviceName>x</DeviceInfo> -> 400 <statusCode>5</statusCode>
PUT deviceInfo <DeviceInfo><deviceName>x</deviceName><telecontrolID>256</telecontrolID></DeviceInfo> -> 400 telecontrolID
GET deviceInfo -> 200 <?xml version="1.0" encoding="UTF-8"?><DeviceInfo version="2.0" xmlns="urn:velta:schema"><deviceName>Access Controller</deviceName><deviceID>
GET nothing -> 404 "errorCode":1073741825
PUT deviceInfo <DeviceInfo><deviceName>T&#252;r &amp; Tor</deviceName><model>other</model><telecontrolID>7</telecontrolID></DeviceInfo> -> 200 <request>/VELTA/System/deviceInfo</request><statusCode>1</statusCode><statusString>OK<
GET deviceInfo -> 200 <model>VA204</model>
GET IO/outputs -> 200 <id>2</id><initialState>low</initialState></IOOutputPort></IOOutputPortList>
PUT IO/outputs/2/trigger <IOPortData><outputState>up</outputState></IOPortData> -> 400 <statusCode>6</statusCode>
PUT IO/outputs/1x/trigger <IOPortData/> -> 404
PUT IO/outputs/99999999999999999999/trigger <IOPortData/> -> 404)");
    EXPECT_EQ(device.deviceName(), "T\u00fcr & Tor");
    EXPECT_FALSE(device.outputIsHigh(0) || device.outputIsHigh(-1));
    EXPECT_EQ(client.put("/VELTA/System/deviceInfo", std::string(5001, ' ')).status, 413);
}

TEST_F(System, showsItsTimeInTheZone) {
    struct Case {
        const char* zone;
        const char* set;
        const char* shown;  // as far as it lasts
        const char* offset;
    };
    const char* european = "CST-1:00:00DST01:00:00,M3.5.0/02:00:00,M10.5.0/03:00:00";
    const char* southern = "CST-10:00:00DST00:30:00,M10.1.0/02:00:00,M4.1.0/03:00:00";
    for (const Case& c : {Case{"CST-8:00:00", "2026-01-31T12:00:00+08:00", "2026-01-31T12:", "+08:00"},
                          Case{"CST+3:30:00", "2026-03-01T01:00:00Z", "2026-02-28T21:", "-03:30"},
                          Case{european, "2026-03-29T01:00:00Z", "2026-03-29T03:", "+02:00"},
                          Case{european, "2026-10-25T01:00:00Z", "2026-10-25T02:", "+01:00"},
                          Case{southern, "2026-01-15T00:00:00Z", "2026-01-15T10:3", "+10:30"},
                          Case{"", "2028-02-29T12:00:00+05:00", "2028-02-29T07:", "+00:00"}}) {
        client.talk(kTime, std::string("PUT . <Time><localTime>") + c.set + "</localTime><timeZone>" +
                               c.zone + "</timeZone></Time> -> 200\nGET . -> 200 <localTime>" + c.shown +
                               "\nGET . -> 200 " + c.offset + "</localTime><timeZone>" + c.zone + "<");
    }
    client.talk(kTime, R"(
PUT . <Time><timeZone>CST-1:00:00</timeZone><localTime>noon</localTime></Time> -> 400 <statusCode>6</statusCode>
PUT . <Time><localTime>2026-02-29T12:00:00Z</localTime></Time> -> 400
PUT . <Time><localTime>2026-01-31T12:00:00+8</localTime></Time> -> 400
GET . -> 200 2028-02-29T07:)");
    const auto before = device.deviceTime();
    EXPECT_TRUE(waitUntil([&] { return device.deviceTime() > before; }));
    device.setTimeZone("CST-8:00:00" + std::string(200000, '<'));
    EXPECT_THAT(client.get(kTime).body, HasSubstr("+00:00</localTime>"));
}

TEST(SystemDevice, rebootsAfterItsAnswer) {
    Device device({.rebootTime = 1h});
    device.start();
    Subscriber subscriber(device);
    ASSERT_TRUE(device.waitForStreams(1, kSoon));
    Client(device).talk("/VELTA/System/", "PUT reboot <x/> -> 200 <statusCode>1<");
    EXPECT_TRUE(subscriber.waitForEnd());
    EXPECT_TRUE(waitUntil([&] { return !device.isOn(); }));
}

TEST_F(System, outlivesDeepDocuments) {
    std::string deep;
    for (int i = 0; i < 400000; ++i)
        deep += i < 200000 ? "<a>" : "</a>";
    client.talk("/VELTA/System/Network/interfaces",
                "PUT /1/ipAddress <IPAddress>" + deep + "</IPAddress> -> 200");
}

constexpr const char* kUserCheck = "/VELTA/Security/userCheck";

class LogIn : public testing::TestWithParam<std::pair<AuthScheme, const char*>> {};

TEST_P(LogIn, locksTheUserAfterFailuresInARow) {
    Device device({.auth = GetParam().first, .maxFailedLogins = 2});
    device.start();
    const auto check = [&device](const char* password) { return Client(device, password).get(kUserCheck); };
    EXPECT_THAT(check("wrong").body, HasSubstr("<attemptsLeft>1</attemptsLeft>"));
    EXPECT_THAT(check("velta-sim-1").body, HasSubstr("<httpStatus>200</httpStatus>"));
    EXPECT_THAT(device.requests().back().header("authorization"), HasSubstr(GetParam().second));

    const Answer refused = check("wrong");  // success had forgiven the first
    EXPECT_THAT(refused.header, HasSubstr("WWW-Authenticate: "));
    EXPECT_THAT(refused.body, HasSubstr("<statusString>Unauthorized</statusString>\n<lockStatus>unlock<"));
    EXPECT_FALSE(device.isLocked());
    check("wrong");
    EXPECT_TRUE(device.isLocked());
    EXPECT_THAT(check("velta-sim-1").body, HasSubstr("<lockStatus>lock</lockStatus>\n<lockSeconds>"));
    device.unlockUser();
    EXPECT_EQ(check("velta-sim-1").status, 200);
}

INSTANTIATE_TEST_SUITE_P(Schemes, LogIn,
                         testing::Values(std::pair(AuthScheme::Digest, "algorithm=md5"),
                                         std::pair(AuthScheme::DigestSha256, "algorithm=sha-256"),
                                         std::pair(AuthScheme::Basic, "Basic ")));

// A client that comes back after a restart of the device still uses the nonce of before.
TEST(LogIn, anOldNonceIsNoFailure) {
    Device device({.maxFailedLogins = 1});
    device.start();
    Client client(device);
    client.get(kUserCheck);
    device.powerOff();
    device.powerOn();
    client.get(kUserCheck);
    device.setFault({.kind = veltasim::FaultKind::StaleNonce, .count = 1});
    client.get(kUserCheck);
    std::vector<int> statuses;
    for (const auto& request : device.requests())
        statuses.push_back(request.status);
    EXPECT_THAT(statuses, testing::ElementsAre(401, 200, 401, 200, 401, 200));
}

// Many clients come at the same time, and those that stay use their nonce for long.
TEST(LogIn, clientsDoNotDisturbEachOther) {
    Device device({.maxFailedLogins = 1});
    device.start();
    std::atomic<int> good = 0;
    const auto come = [&](bool stays) {
        Client steady(device);
        for (int i = 0; i < 50; ++i)
            good += (stays ? steady.get(kUserCheck) : Client(device).get(kUserCheck)).status == 200 ? 1 : 0;
    };
    {
        const std::jthread others[] = {std::jthread(come, false), std::jthread(come, false),
                                       std::jthread(come, false), std::jthread(come, false)};
        come(true);
    }
    EXPECT_EQ(good, 250);
    EXPECT_FALSE(device.isLocked());
}

}  // namespace
