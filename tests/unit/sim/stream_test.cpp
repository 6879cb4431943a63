#include <arpa/inet.h>
#include <gmock/gmock.h>
#include <json/json.h>
#include <sys/socket.h>
#include <unistd.h>

#include "client.h"

using namespace std::chrono_literals;
using testing::HasSubstr;
using testing::Not;
using velta_test::kSoon;
using velta_test::Subscriber;
using veltasim::Device;

namespace {

constexpr const char* kJsonHead =
    "--MIME_boundary\r\nContent-Type: application/json; charset=\"UTF-8\"\r\nContent-Length: ";
constexpr const char* kPictureHead =
    "\r\n--MIME_boundary\r\nContent-Disposition: form-data; name=\"Picture\"; filename=\"Picture.jpg\"\r\n"
    "Content-Type: image/jpeg\r\nContent-Length: ";

// Cuts the next part off the front of the stream and gives its body.
std::string takePart(std::string& stream, const std::string& head) {
    const size_t begin = stream.find(head);
    if (begin == std::string::npos) return "no such part";
    const size_t length = std::stoul(stream.substr(begin + head.size(), 20));
    const size_t body = stream.find("\r\n\r\n", begin) + 4;
    std::string part = stream.substr(body, length);
    stream.erase(0, body + length);
    return part;
}

TEST(Stream, carriesEventsWithPictures) {
    Device device;
    device.start();
    Subscriber subscriber(device);
    ASSERT_TRUE(device.waitForStreams(1, kSoon));
    EXPECT_NE(subscriber.waitFor("\r\nContent-Type: multipart/mixed; boundary=MIME_boundary\r\n"), "");

    device.sendAccessEvent();
    for (const auto size :
         {veltasim::PictureSize::Small, veltasim::PictureSize::Medium, veltasim::PictureSize::Large})
        EXPECT_THAT(picture(size),
                    testing::AllOf(testing::StartsWith("\xff\xd8\xff"), testing::EndsWith("\xff\xd9")));
    const std::string picture = std::string(veltasim::picture(veltasim::PictureSize::Large)) +
                                std::string(10U << 20U, '\0');  // as large as pictures get
    device.sendAccessEvent({.doorNo = 2, .picture = picture, .moreMembers = {{"mask", "\"no\""}}});
    device.sendAlarm({.eventType = "last", .moreMembers = {{"channelID", "9"}}});
    std::string stream = subscriber.waitFor("\"eventType\":\t\"last\"");

    Json::Value plain;
    Json::Value pictured;
    Json::Value alarm;
    std::istringstream(takePart(stream, kJsonHead)) >> plain;
    std::istringstream(takePart(stream, kJsonHead)) >> pictured;
    EXPECT_THAT(stream, testing::StartsWith(kPictureHead));
    EXPECT_TRUE(takePart(stream, kPictureHead) == picture);
    EXPECT_THAT(stream, testing::StartsWith(std::string("\r\n") + kJsonHead));
    std::istringstream(takePart(stream, kJsonHead)) >> alarm;

    EXPECT_EQ(plain["portNo"], device.port());
    EXPECT_EQ(plain["ipAddress"], "127.0.0.1");
    EXPECT_THAT(plain["dateTime"].asString(), testing::MatchesRegex("....-..-..T..:..:..[+-]..:.."));
    EXPECT_FALSE(plain["AccessControllerEvent"].isMember("picturesNumber"));
    EXPECT_EQ(plain["AccessControllerEvent"]["serialNo"], 1);
    EXPECT_EQ(pictured["AccessControllerEvent"]["serialNo"], 2);
    EXPECT_EQ(pictured["AccessControllerEvent"]["picturesNumber"], 1);
    EXPECT_EQ(pictured["AccessControllerEvent"]["doorNo"], 2);
    EXPECT_EQ(pictured["AccessControllerEvent"]["mask"], "no");
    EXPECT_EQ(alarm["channelID"], 9);
    EXPECT_FALSE(alarm.isMember("AccessControllerEvent"));
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
    EXPECT_THAT(second->waitFor("forAll"), Not(HasSubstr("deployExceedMax")));
    second.reset();
    EXPECT_TRUE(device.waitForStreams(1, kSoon));

    Subscriber fourth(device);  // takes the place of the second
    EXPECT_TRUE(device.waitForStreams(2, kSoon));
    device.endStreams(Device::StreamEnd::AtOnce);
    EXPECT_EQ(first.waitForEnd(), CURLE_OK);
    EXPECT_EQ(device.streamCount(), 0U);
    device.powerOff();
    EXPECT_EQ(third.waitForEnd(), CURLE_OK);
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
    EXPECT_EQ(subscriber.waitForEnd(), CURLE_OK);
    EXPECT_THAT(subscriber.waitFor("\r\n"), testing::EndsWith("--MIME_boundary--\r\n"));
}

TEST(Stream, aSubscriberThatDoesNotReadHoldsUpNobody) {
    Device device({.auth = veltasim::AuthScheme::None, .maxQueuedBytes = 2U << 20U});
    device.start();
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(device.port());
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    const int idle = socket(AF_INET, SOCK_STREAM, 0);
    const int smallest = 1;
    setsockopt(idle, SOL_SOCKET, SO_RCVBUF, &smallest, sizeof smallest);
    ASSERT_EQ(connect(idle, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    const std::string request = "GET /VELTA/Event/notification/alertStream HTTP/1.1\r\nHost: device\r\n\r\n";
    ASSERT_EQ(send(idle, request.data(), request.size(), 0), static_cast<ssize_t>(request.size()));
    ASSERT_TRUE(device.waitForStreams(1, kSoon));
    Subscriber reader(device);
    ASSERT_TRUE(device.waitForStreams(2, kSoon));

    // More than the socket of the idle one takes; the reader's queue is empty whenever the next event comes.
    for (size_t i = 1; i <= 10; ++i) {
        device.sendAccessEvent({.picture = std::string(1U << 20U, 'p')});
        ASSERT_NE(reader.waitFor("p\r\n", i), "");
    }
    EXPECT_GT(device.lostEvents(), 0U);
    EXPECT_LT(device.lostEvents(), 10U);
    EXPECT_FALSE(device.waitForDrained(1ms));
    close(idle);
    EXPECT_TRUE(device.waitForStreams(1, kSoon));
    EXPECT_TRUE(device.waitForDrained(kSoon));
}

}  // namespace
