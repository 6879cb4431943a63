#include <gmock/gmock.h>

#include "client.h"

using namespace std::chrono_literals;
using testing::HasSubstr;
using velta_test::Answer;
using velta_test::Client;
using velta_test::kSoon;
using velta_test::Subscriber;
using veltasim::Device;

namespace {

constexpr const char* kTime = "/VELTA/System/time";
constexpr const char* kTimeZone = "/VELTA/System/time/timeZone";
constexpr const char* kInterface = "/VELTA/System/Network/interfaces/1";

bool comesTrue(const std::function<bool()>& condition) {
    const auto deadline = std::chrono::steady_clock::now() + kSoon;
    while (!condition() && std::chrono::steady_clock::now() < deadline)
        std::this_thread::yield();
    return condition();
}

size_t countOf(const std::string& element, std::string_view text) {
    const std::string tag = "<" + element + ">";
    size_t count = 0;
    for (size_t at = text.find(tag); at != std::string::npos; at = text.find(tag, at + 1))
        ++count;
    return count;
}

TEST(Inventory, listsAsManyAsThereAre) {
    Device device({.inventory = {.videoInputs = std::nullopt, .proxyChannels = 3, .audioChannels = 0}});
    device.start();
    device.setProxyOnline(2, false);
    Client client(device);
    const std::string proxies = "/VELTA/ContentMgmt/InputProxy/channels";

    EXPECT_EQ(client.get("/VELTA/System/Video/inputs/channels").status, 404);
    EXPECT_THAT(client.get("/VELTA/System/Audio/channels").body, HasSubstr("></AudioChannelList>"));
    EXPECT_EQ(countOf("IOInputPort", client.get("/VELTA/System/IO/inputs").body), 2U);
    EXPECT_EQ(countOf("IOOutputPort", client.get("/VELTA/System/IO/outputs").body), 2U);
    EXPECT_THAT(client.get(proxies).body, HasSubstr("<id>3</id>\n<name>"));
    const std::string status = client.get(proxies + "/status").body;
    EXPECT_EQ(countOf("InputProxyChannelStatus", status), 3U);
    EXPECT_EQ(countOf("online", status), 3U);
    const size_t offline = status.find("<online>false</online>");
    EXPECT_EQ(countOf("id", status.substr(0, offline)), 2U);
    EXPECT_EQ(Client(device, "wrong").get(proxies).status, 401);
}

TEST(Outputs, keepWhatTheyWereSetTo) {
    Device device;
    device.start();
    Client client(device);
    const auto trigger = [&](const char* output, const char* body) {
        return client.put(std::string("/VELTA/System/IO/outputs/") + output + "/trigger", body);
    };
    const char* high = "<IOPortData version=\"2.0\"><outputState>high</outputState></IOPortData>";
    EXPECT_THAT(trigger("2", high).body, HasSubstr("<statusCode>1</statusCode>"));
    EXPECT_TRUE(device.outputIsHigh(2));
    EXPECT_FALSE(device.outputIsHigh(1));
    EXPECT_THAT(client.get("/VELTA/System/IO/outputs/2/status").body, HasSubstr(">active<"));
    for (const char* bad :
         {"<IOPortData/>", "<IOPortData><outputState>up</outputState></IOPortData>", "<x/>"}) {
        const Answer refused = trigger("2", bad);
        EXPECT_EQ(refused.status, 400);
        EXPECT_THAT(refused.body, HasSubstr("<statusCode>6</statusCode>")) << bad;
    }
    EXPECT_TRUE(device.outputIsHigh(2));
    for (const char* unknown : {"0", "3", "-1", "1x", "99999999999999999999"})
        EXPECT_EQ(trigger(unknown, high).status, 404) << unknown;
    trigger("2", "<IOPortData><outputState>low</outputState></IOPortData>");
    EXPECT_FALSE(device.outputIsHigh(2) || device.outputIsHigh(0) || device.outputIsHigh(-1));
}

TEST(Time, isShownInTheZone) {
    using namespace std::chrono;
    struct Case {
        const char* zone;
        const char* set;
        sys_seconds instant;
        const char* shown;  // the clock goes on
    };
    const char* european = "CST-1:00:00DST01:00:00,M3.5.0/02:00:00,M10.5.0/03:00:00";
    const char* southern = "CST-10:00:00DST00:30:00,M10.1.0/02:00:00,M4.1.0/03:00:00";
    const Case cases[] = {
        {"CST-8:00:00", "2026-01-31T12:00:00+08:00", sys_days(2026y / 1 / 31) + 4h,
         "2026-01-31T12:..:..\\+08:00"},
        {"CST+3:30:00", "2026-03-01T01:00:00Z", sys_days(2026y / 3 / 1) + 1h, "2026-02-28T21:..:..-03:30"},
        {european, "2026-07-01T12:00:00", sys_days(2026y / 7 / 1) + 10h, "2026-07-01T12:..:..\\+02:00"},
        {european, "2026-03-28T23:00:00Z", sys_days(2026y / 3 / 28) + 23h, "2026-03-29T00:..:..\\+01:00"},
        {european, "2026-03-29T01:00:00Z", sys_days(2026y / 3 / 29) + 1h, "2026-03-29T03:..:..\\+02:00"},
        {european, "2026-10-25T01:00:00Z", sys_days(2026y / 10 / 25) + 1h, "2026-10-25T02:..:..\\+01:00"},
        {southern, "2026-01-15T00:00:00Z", sys_days(2026y / 1 / 15), "2026-01-15T10:[345].:..\\+10:30"},
        {southern, "2026-07-15T00:00:00Z", sys_days(2026y / 7 / 15), "2026-07-15T10:..:..\\+10:00"},
        {"", "2028-02-29T12:00:00+05:00", sys_days(2028y / 2 / 29) + 7h, "2028-02-29T07:..:..\\+00:00"},
    };
    Device device;
    device.start();
    Client client(device);
    for (const Case& c : cases) {
        const Answer answer =
            client.put(kTime, std::string("<Time><timeMode>manual</timeMode><localTime>") + c.set +
                                  "</localTime><timeZone>" + c.zone + "</timeZone></Time>");
        EXPECT_EQ(answer.status, 200);
        EXPECT_GE(device.deviceTime(), c.instant) << c.set;
        EXPECT_LT(device.deviceTime(), c.instant + kSoon) << c.set;
        EXPECT_EQ(device.timeZone(), c.zone);
        EXPECT_THAT(client.get(kTime).body,
                    testing::ContainsRegex(std::string("<localTime>") + c.shown + "<"));
    }
    const auto before = device.deviceTime();
    EXPECT_TRUE(comesTrue([&] { return device.deviceTime() > before; }));
}

TEST(Time, refusesWhatIsNone) {
    Device device;
    device.start();
    Client client(device);
    for (const char* bad : {"", "noon", "2026-02-29T12:00:00Z", "2026-01-31T24:00:00Z",
                            "2026-01-31T12:60:00Z", "2026-01-31T12:00:00+8"}) {
        const Answer answer =
            client.put(kTime, std::string("<Time><timeZone>CST-1:00:00</timeZone><localTime>") + bad +
                                  "</localTime></Time>");
        EXPECT_EQ(answer.status, 400) << bad;
        EXPECT_THAT(answer.body, HasSubstr("<statusCode>6</statusCode>"));
    }
    EXPECT_EQ(client.put(kTime, "<Time><timeZone>UTC</timeZone></Time>").status, 400);
    EXPECT_THAT(client.put(kTimeZone, "UTC+0").body, HasSubstr("<statusCode>6</statusCode>"));
    EXPECT_EQ(client.get(kTimeZone).body, "CST-8:00:00");
    EXPECT_EQ(client.put(kTimeZone, "CST-1:00:00").status, 200);
    EXPECT_EQ(device.timeZone(), "CST-1:00:00");

    const std::string hostile = "CST-8:00:00" + std::string(200000, '<');
    device.setTimeZone(hostile);
    EXPECT_EQ(client.get(kTimeZone).body, hostile);
    EXPECT_THAT(client.get(kTime).body, HasSubstr("+00:00</localTime>"));
}

TEST(Reboot, answersAndThenGoesAway) {
    Device away({.rebootTime = 1h});
    Device back({.rebootTime = 1ms});
    for (Device* device : {&away, &back}) {
        device->start();
        Subscriber subscriber(*device);
        ASSERT_TRUE(device->waitForStreams(1, kSoon));
        Client client(*device);
        const Answer answer = client.put("/VELTA/System/reboot", "");
        EXPECT_EQ(answer.result, CURLE_OK);
        EXPECT_EQ(answer.status, 200);
        EXPECT_THAT(answer.body, HasSubstr("<statusCode>1</statusCode>"));
        EXPECT_EQ(subscriber.waitForEnd(), CURLE_OK);
    }
    EXPECT_TRUE(comesTrue([&] { return !away.isOn(); }));
    EXPECT_EQ(Client(away).get(kTime).result, CURLE_COULDNT_CONNECT);
    EXPECT_TRUE(comesTrue([&] { return Client(back).get(kTime).status == 200; }));
}

TEST(Network, replacesWhatIsNamed) {
    Device device;
    device.start();
    Client client(device);
    const std::string address = std::string(kInterface) + "/ipAddress";
    EXPECT_EQ(client
                  .put(address,
                       "<IPAddress><ipAddress>192.0.2.9</ipAddress><DefaultGateway><ipAddress>192.0.2.2"
                       "</ipAddress></DefaultGateway><ipv6Address>::1</ipv6Address></IPAddress>")
                  .status,
              200);
    EXPECT_EQ(
        client.put(kInterface, "<NetworkInterface><Link><MTU>1400</MTU></Link></NetworkInterface>").status,
        200);
    const std::string after = client.get(kInterface).body;
    for (const char* text : {"<ipAddress>192.0.2.9</ipAddress>\n<subnetMask>255.255.255.0</subnetMask>",
                             "<ipAddress>192.0.2.2</ipAddress>", "<ipv6Address>::1</ipv6Address>",
                             "<MTU>1400</MTU>", "<duplex>full</duplex>"})
        EXPECT_THAT(after, HasSubstr(text));

    const Answer bad = client.put(
        kInterface,
        "<NetworkInterface><IPAddress><ipAddress>192.0.2.256</ipAddress></IPAddress></NetworkInterface>");
    EXPECT_EQ(bad.status, 400);
    EXPECT_THAT(bad.body, HasSubstr("<errorCode>1610612740</errorCode>"));
    EXPECT_THAT(client.put(address, "<IPAddress>").body, HasSubstr("<statusCode>5</statusCode>"));
    EXPECT_EQ(client.put(kInterface, "<NetworkInterface><id>2</id></NetworkInterface>").status, 400);
    EXPECT_EQ(client.get("/VELTA/System/Network/interfaces/2").status, 404);
    EXPECT_EQ(client.get(kInterface).body, after);

    std::string deep;
    for (const char* tag : {"<a>", "</a>"}) {
        for (int i = 0; i < 200000; ++i)
            deep += tag;
    }
    EXPECT_EQ(client.put(address, "<IPAddress>" + deep + "</IPAddress>").status, 200);
    EXPECT_EQ(countOf("NetworkInterface", client.get("/VELTA/System/Network/interfaces").body), 1U);
}

TEST(ScriptedAnswer, standsForTheResource) {
    Device device;
    device.start();
    device.setDocument(kTime, "<odd");
    device.setAnswer("PUT", "/VELTA/System/reboot", 403, "{}");
    device.setDocument("/VELTA/Event/notification/alertStream", "no stream");
    Client client(device);
    EXPECT_EQ(client.get(std::string(kTime) + "?format=json").body, "<odd");
    EXPECT_EQ(client.put(kTime, "<Time/>").status, 200);
    const Answer scripted = client.put("/VELTA/System/reboot", "");
    EXPECT_EQ(scripted.status, 403);
    EXPECT_THAT(scripted.header, HasSubstr("application/json"));
    EXPECT_EQ(client.get("/VELTA/Event/notification/alertStream").body, "no stream");
    EXPECT_EQ(Client(device, "wrong").get(kTime).status, 401);
    device.clearAnswers();
    EXPECT_THAT(client.get(kTime).body, HasSubstr("</Time>"));
    EXPECT_TRUE(device.isOn());
}

}  // namespace
