#include <gmock/gmock.h>

#include <future>

#include "client.h"

using namespace std::chrono_literals;
using testing::HasSubstr;
using velta_test::Answer;
using velta_test::Client;
using velta_test::kSoon;
using velta_test::Subscriber;
using veltasim::Device;
using veltasim::Fault;
using veltasim::FaultKind;

namespace {

constexpr const char* kDeviceInfo = "/VELTA/System/deviceInfo";

class FaultTest : public testing::Test {
 protected:
    void SetUp() override {
        device.start();
        sound = Client(device).get(kDeviceInfo).body;
    }

    Answer answerWith(const Fault& fault) {
        device.setFault(fault);
        return Client(device).get(kDeviceInfo);
    }

    Device device;
    std::string sound;  // an answer without fault
};

TEST_F(FaultTest, spoilsAnswers) {
    const Answer dropped = answerWith({.kind = FaultKind::Drop, .count = 1});
    EXPECT_EQ(dropped.result, CURLE_PARTIAL_FILE);
    EXPECT_EQ(dropped.body, sound.substr(0, sound.size() / 2));

    const Answer tooLong = answerWith({.kind = FaultKind::WrongLength, .count = 1});
    EXPECT_EQ(tooLong.result, CURLE_PARTIAL_FILE);
    EXPECT_EQ(tooLong.body, sound);
    const Answer tooShort = answerWith({.kind = FaultKind::WrongLength, .amount = -5, .count = 1});
    EXPECT_EQ(tooShort.result, CURLE_OK);
    EXPECT_EQ(tooShort.body, sound.substr(0, sound.size() - 5));

    const Answer malformed = answerWith({.kind = FaultKind::MalformedBody, .count = 1});
    EXPECT_EQ(malformed.result, CURLE_OK);
    EXPECT_EQ(malformed.body, sound.substr(0, sound.size() / 2));

    const Answer error = answerWith({.kind = FaultKind::HttpError, .count = 1});
    EXPECT_EQ(error.status, 500);
    EXPECT_THAT(error.body, HasSubstr("<statusCode>3</statusCode>"));

    const auto begin = std::chrono::steady_clock::now();
    const Answer slow = answerWith({.kind = FaultKind::SlowBytes, .amount = 2000, .count = 1});
    EXPECT_GT(std::chrono::steady_clock::now() - begin, sound.size() * 1000ms / 2000);
    EXPECT_EQ(slow.body, sound);
    EXPECT_THAT(device.faults(), testing::IsEmpty());
    EXPECT_EQ(Client(device).get(kDeviceInfo).body, sound);
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
    device.setFault({.kind = FaultKind::HttpError, .amount = 503, .path = "/VELTA/System", .count = 2});
    Client client(device);
    EXPECT_EQ(client.get("/VELTA/Security/userCheck").status, 200);
    EXPECT_EQ(client.get(kDeviceInfo).status, 503);
    EXPECT_EQ(device.faults().at(0).count, 1U);
    EXPECT_EQ(client.get("/VELTA/System/other?format=json").status, 503);
    EXPECT_EQ(client.get(kDeviceInfo).status, 200);
}

TEST_F(FaultTest, anErrorCodeBringsTheStatusThatBelongsToIt) {
    struct Case {
        int64_t errorCode;
        long httpStatus;
        const char* text;
    };
    for (const Case& c : {Case{0, 400, "<statusCode>6</statusCode>"}, Case{0x20000001, 503, "Device Busy"},
                          Case{0x4000000A, 403, "<errorCode>1073741834</errorCode>"},
                          Case{0x60000004, 400, "<subStatusCode>badIPv4Address</subStatusCode>"},
                          Case{0xF0000000, 400, "<statusCode>15</statusCode>"}}) {
        const Answer answer = answerWith({.kind = FaultKind::Status, .amount = c.errorCode, .count = 1});
        EXPECT_EQ(answer.status, c.httpStatus) << c.errorCode;
        EXPECT_THAT(answer.body, HasSubstr(c.text));
    }
}

TEST_F(FaultTest, spoilsPartsOfAStream) {
    device.setFault({.kind = FaultKind::HttpError, .count = 1});
    EXPECT_EQ(Client(device).get("/VELTA/Event/notification/alertStream").status, 500);
    Subscriber subscriber(device);
    ASSERT_TRUE(device.waitForStreams(1, kSoon));
    device.setFault({.kind = FaultKind::MalformedBody, .count = 1});
    device.setFault({.kind = FaultKind::Drop, .count = 1});
    device.sendAlarm({.eventType = "half", .eventDescription = std::string(2000, 'x')});
    EXPECT_THAT(subscriber.waitFor("xxx\r\n"), testing::Not(HasSubstr("deviceID")));
    device.sendAlarm({.eventType = "cut", .eventDescription = std::string(2000, 'x')});
    EXPECT_EQ(subscriber.waitForEnd(), CURLE_OK);
    EXPECT_THAT(subscriber.waitFor("cut"), testing::EndsWith("xxx"));
}

TEST_F(FaultTest, powerGoesAndComesBackOnTheSamePort) {
    Subscriber subscriber(device);
    Client client(device);
    client.get(kDeviceInfo);
    ASSERT_TRUE(device.waitForStreams(1, kSoon));
    const uint16_t port = device.port();
    device.powerOff();
    EXPECT_EQ(device.streamCount(), 0U);
    EXPECT_EQ(subscriber.waitForEnd(), CURLE_OK);
    EXPECT_EQ(client.get(kDeviceInfo).result, CURLE_COULDNT_CONNECT);
    device.powerOn();
    EXPECT_EQ(device.port(), port);
    EXPECT_EQ(client.get(kDeviceInfo).body, sound);

    device.powerOff(1ms);
    const auto deadline = std::chrono::steady_clock::now() + kSoon;
    while (!device.isOn() && std::chrono::steady_clock::now() < deadline)
        std::this_thread::yield();
    EXPECT_EQ(client.get(kDeviceInfo).body, sound);
}

TEST(FaultText, isReadAsWritten) {
    const auto slow = veltasim::parseFault("slow=200,path=/VELTA/System,count=3");
    ASSERT_TRUE(slow);
    EXPECT_EQ(nameOf(slow->kind), "slow");
    EXPECT_EQ(slow->amount, 200);
    EXPECT_EQ(slow->path, "/VELTA/System");
    EXPECT_EQ(slow->count, 3U);
    EXPECT_EQ(veltasim::parseFault("drop")->count, Fault::kForEver);
    EXPECT_EQ(veltasim::parseFault("wrong-length=-4")->amount, -4);
    for (const char* bad : {"", "slower", "slow=x", "slow,count=-1", "slow,count", "slow,where=/"})
        EXPECT_FALSE(veltasim::parseFault(bad)) << bad;
}

}  // namespace
