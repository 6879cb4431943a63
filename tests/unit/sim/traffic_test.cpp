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
          Case{"status=805306388", CURLE_OK, 403, "<subStatusCode>internalError<"},
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

// A client whose connection ends without an answer asks again if it had used the connection before.
TEST_F(FaultTest, hangsUntilCleared) {
    for (const auto& [kind, status, result] : {std::tuple(FaultKind::HangBefore, 0, CURLE_OK),
                                               std::tuple(FaultKind::HangMidway, 200, CURLE_PARTIAL_FILE)}) {
        device.forgetRequests();
        auto answer =
            std::async(std::launch::async, [this, fault = Fault{.kind = kind}] { return answerWith(fault); });
        ASSERT_TRUE(
            device.waitForRequest([s = status](const auto& request) { return request.status == s; }, kSoon));
        ASSERT_TRUE(device.waitForDrained(kSoon));
        EXPECT_EQ(answer.wait_for(0s), std::future_status::timeout);
        device.clearFaults();
        EXPECT_EQ(answer.get().result, result);
    }
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

TEST_F(FaultTest, powerGoesAndComesBackOnTheSamePort) {
    Subscriber subscriber(device);
    ASSERT_TRUE(device.waitForStreams(1, kSoon));
    device.powerOff();
    EXPECT_EQ(device.streamCount(), 0U);
    EXPECT_TRUE(subscriber.waitForEnd());
    EXPECT_EQ(client.get(kDeviceInfo).result, CURLE_COULDNT_CONNECT);
    device.powerOn();
    EXPECT_EQ(client.get(kDeviceInfo).body, sound);
    device.powerOff(1ms);
    EXPECT_TRUE(comesTrue([&] { return client.get(kDeviceInfo).body == sound; }));
}

constexpr const char* kJsonHead =
    "--velta_events\r\nContent-Type: application/json; charset=\"UTF-8\"\r\nContent-Length: ";
constexpr const char* kPictureHead =
    "\r\n--velta_events\r\nContent-Disposition: form-data; name=\"Picture\"; filename=\"Picture.jpg\"\r\n"
    "Content-Type: image/jpeg\r\nContent-Length: ";

TEST(Stream, carriesEventsWithPictures) {
    Device device;
    device.start();
    Subscriber subscriber(device);
    ASSERT_TRUE(device.waitForStreams(1, kSoon));
    EXPECT_NE(subscriber.waitFor("\r\nContent-Type: multipart/mixed; boundary=velta_events\r\n"), "");

    device.sendAccessEvent();
    const std::string picture = std::string(veltasim::picture(veltasim::PictureSize::Large)) +
                                std::string(10U << 20U, '\0');  // as large as pictures get
    device.sendAccessEvent({.doorNo = 2, .picture = picture, .moreMembers = {{"mask", "\"no\""}}});
    device.sendAlarm({.eventType = "last", .moreMembers = {{"channelID", "9"}}});
    std::string stream = subscriber.waitFor("\"eventType\":\t\"last\"");

    // The parts one by one; what they announce is how long they are.
    const auto take = [&](const std::string& head) {
        const size_t begin = stream.find(head);
        const size_t length = std::stoul(stream.substr(begin + head.size(), 20));
        stream.erase(0, stream.find("\r\n\r\n", begin) + 4);
        return std::exchange(stream, stream.substr(length)).substr(0, length);
    };
    const std::string plain = take(kJsonHead);
    const std::string pictured = take(kJsonHead);
    EXPECT_TRUE(stream.starts_with(kPictureHead) && take(kPictureHead) == picture);
    const std::string alarm = take(std::string("\r\n") + kJsonHead);

    EXPECT_THAT(plain, testing::ContainsRegex("\"dateTime\":\t\"....-..-..T..:..:..[+-]..:..\""));
    EXPECT_THAT(plain, HasSubstr("\"127.0.0.1\",\n\t\"portNo\":\t" + std::to_string(device.port())));
    EXPECT_THAT(plain, testing::AllOf(HasSubstr("\"serialNo\":\t1,"), Not(HasSubstr("picturesNumber"))));
    for (const char* member : {"serialNo\":\t2", "picturesNumber\":\t1", "doorNo\":\t2", "mask\":\t\"no\""})
        EXPECT_THAT(pictured, HasSubstr(member));
    EXPECT_THAT(alarm, testing::AllOf(HasSubstr("channelID\":\t9"), Not(HasSubstr("AccessControllerEvent"))));
    EXPECT_THROW(device.sendAccessEvent({.moreMembers = {{"mask", "{"}}}), std::invalid_argument);
}

TEST(Stream, limitsItsSubscribers) {
    Device device({.maxStreams = 2});
    device.start();
    Subscriber first(device);
    auto second = std::make_unique<Subscriber>(device);
    ASSERT_TRUE(device.waitForStreams(2, kSoon));
    Subscriber third(device);
    EXPECT_THAT(third.waitFor("deployExceedMax"), HasSubstr("200 OK"));

    device.sendAlarm({.eventType = "forAll"});
    EXPECT_THAT(first.waitFor("forAll"), Not(HasSubstr("deployExceedMax")));
    second.reset();
    EXPECT_TRUE(device.waitForStreams(1, kSoon));

    device.endStreams(Device::StreamEnd::AtOnce);
    EXPECT_TRUE(first.waitForEnd());
    device.powerOff();
    EXPECT_TRUE(third.waitForEnd());
    EXPECT_THAT(third.waitFor("deployExceedMax"), Not(HasSubstr("forAll")));
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
    EXPECT_FALSE(device.waitForDrained(1ms));
    idle.reset();
    EXPECT_TRUE(device.waitForStreams(1, kSoon));
    EXPECT_TRUE(device.waitForDrained(kSoon));
}

}  // namespace
