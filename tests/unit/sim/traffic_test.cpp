#include <future>

#include "client.h"

using namespace std::chrono_literals;
using namespace velta_test;
using testing::HasSubstr;
using testing::Not;
using veltasim::Device;
using veltasim::Fault;
using veltasim::FaultKind;

namespace {

constexpr const char* kDeviceInfo = "/VELTA/System/deviceInfo";

class FaultTest : public DeviceTest {
 protected:
    Answer answerWith(const Fault& fault) {
        device.setFault(fault);
        return Client(device).get(kDeviceInfo);
    }

    const std::string sound = client.get(kDeviceInfo).body;
    const std::string half = sound.substr(0, sound.size() / 2);
};

TEST_F(FaultTest, spoilsAnswers) {
    struct Case {
        const char* fault;
        CURLcode result;
        long status;
        std::string text;
    };
    for (const Case& c :
         {Case{"drop", CURLE_PARTIAL_FILE, 200, half}, Case{"wrong-length", CURLE_PARTIAL_FILE, 200, sound},
          Case{"wrong-length=-5", CURLE_OK, 200, sound.substr(0, sound.size() - 5)},
          Case{"malformed", CURLE_OK, 200, half},
          Case{"http-error", CURLE_OK, 500, "<statusCode>3</statusCode>"},
          Case{"status=536870913", CURLE_OK, 503, "Device Busy"},
          Case{"status=1610612740", CURLE_OK, 400, "<subStatusCode>badIPv4Address<"},
          Case{"status=4026531840", CURLE_OK, 400, "<statusCode>15</statusCode>"}}) {
        const Answer answer = answerWith(*veltasim::parseFault(std::string(c.fault) + ",count=1"));
        EXPECT_TRUE(c.status == 200 ? answer.body == c.text : answer.body.find(c.text) != std::string::npos)
            << answer.body;
        EXPECT_EQ(answer.result, c.result) << c.fault;
        EXPECT_EQ(answer.status, c.status) << c.fault;
    }
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(answerWith({.kind = FaultKind::SlowBytes, .amount = 2000, .count = 1}).body, sound);
    EXPECT_GT(std::chrono::steady_clock::now() - begin, sound.size() * 1000ms / 2000);
    EXPECT_THAT(device.faults(), testing::IsEmpty());
}

TEST_F(FaultTest, hangsMidwayUntilCleared) {
    device.forgetRequests();
    auto answer =
        std::async(std::launch::async, [this] { return answerWith({.kind = FaultKind::HangMidway}); });
    ASSERT_TRUE(device.waitForRequest([](const auto& request) { return request.status == 200; }, kSoon));
    ASSERT_TRUE(device.waitForDrained(kSoon));
    EXPECT_EQ(answer.wait_for(0s), std::future_status::timeout);
    device.clearFaults();
    EXPECT_EQ(answer.get().result, CURLE_PARTIAL_FILE);
}

TEST_F(FaultTest, strikesWhereAndAsOftenAsAsked) {
    device.setFault(*veltasim::parseFault("http-error=503,path=/VELTA/System,count=2"));
    client.talk("/VELTA/", R"(
GET Security/userCheck -> 200
GET System/deviceInfo -> 503
GET System/other -> 503
GET System/deviceInfo -> 200)");
    for (const char* bad : {"", "slower", "slow=x", "slow,count=-1", "slow,count", "slow,where=/"})
        EXPECT_FALSE(veltasim::parseFault(bad)) << bad;
}

TEST_F(FaultTest, powerComesBackByItself) {
    device.powerOff(1ms);
    EXPECT_TRUE(waitUntil([&] { return client.get(kDeviceInfo).body == sound; }));
}

TEST_F(FaultTest, spoilsPartsOfAStream) {
    Subscriber subscriber(device);
    ASSERT_TRUE(device.waitForStreams(1, kSoon));
    device.setFault({.kind = FaultKind::MalformedBody, .count = 1});
    device.setFault({.kind = FaultKind::Drop, .count = 1});
    device.sendAlarm({.eventType = "half", .eventDescription = std::string(2000, 'x')});
    EXPECT_THAT(subscriber.waitFor("xxx\r\n"), Not(HasSubstr("deviceID")));
    device.sendAlarm({.eventType = "cut", .eventDescription = std::string(2000, 'x')});
    EXPECT_TRUE(subscriber.waitForEnd());
    EXPECT_THAT(subscriber.waitFor("cut"), testing::EndsWith("xxx"));
}

TEST(Stream, limitsItsSubscribers) {
    Device device({.maxStreams = 1});
    device.start();
    Subscriber first(device);
    ASSERT_TRUE(device.waitForStreams(1, kSoon));
    Subscriber second(device);
    EXPECT_THAT(second.waitFor("deployExceedMax"), HasSubstr("200 OK"));
    device.sendAlarm({.eventType = "forAll"});
    EXPECT_NE(first.waitFor("forAll"), "");
    device.powerOff();
    EXPECT_TRUE(second.waitForEnd());
    EXPECT_THAT(second.waitFor("deployExceedMax"), Not(HasSubstr("forAll")));
}

TEST(Stream, beginsWithAWaitingEventAndBeats) {
    Device device({.heartbeat = 20ms, .eventAtConnect = veltasim::AccessEvent{.name = "Early"}});
    device.start();
    Subscriber subscriber(device);
    const std::string stream =
        subscriber.waitFor("<eventType>videoloss</eventType>\n<eventState>inactive", 2);
    EXPECT_LT(stream.find("Early"), stream.find("videoloss"));
    device.sendRaw("--MIME_bound");
    device.sendRaw("ary, in two pieces");
    EXPECT_NE(subscriber.waitFor("in two pieces"), "");
    device.endStreams(Device::StreamEnd::AfterQueue);
    EXPECT_TRUE(subscriber.waitForEnd());
    EXPECT_THAT(subscriber.waitFor("\r\n"), testing::EndsWith("--velta_events--\r\n"));
    EXPECT_THROW(device.sendAccessEvent({.moreMembers = {{"mask", "{"}}}), std::invalid_argument);
}

TEST(Stream, aSubscriberThatDoesNotReadHoldsUpNobody) {
    Device device({.maxQueuedBytes = 2U << 20U});
    device.start();
    auto idle = std::make_unique<Subscriber>(device, false);
    ASSERT_TRUE(device.waitForStreams(1, kSoon));
    Subscriber reader(device);
    ASSERT_TRUE(device.waitForStreams(2, kSoon));

    // More than the socket of the idle one takes; the reader's queue is empty whenever the next event comes.
    for (size_t i = 1; i <= 20; ++i) {
        device.sendAccessEvent({.picture = std::string(1U << 20U, '\0') + 'p'});
        ASSERT_NE(reader.waitFor("p\r\n", i), "");
    }
    EXPECT_GT(device.lostEvents(), 0U);
    EXPECT_LT(device.lostEvents(), 20U);
    idle.reset();
    EXPECT_TRUE(device.waitForStreams(1, kSoon));
    EXPECT_TRUE(device.waitForDrained(kSoon));
}

}  // namespace
