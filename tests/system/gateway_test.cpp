// Requests of a host on their way to a device and back. They need no log-in check, so nothing waits here.
#include "fixture.h"

using namespace host;
using testing::HasSubstr;

namespace {

class GatewayTest : public SessionTest {
 protected:
    std::string raw(std::string request) {
        std::string answer(4096, '#');
        EXPECT_EQ(
            session->gateway->VELTA_Getway(session->instance, request.data(), answer.data(), 4096, nullptr),
            0);
        return answer.c_str();
    }
};

uint32_t errorCodeOf(const std::string& answer) {
    return parsed(answer)["errorCode"].asUInt();
}

TEST_F(GatewayTest, takesRequestsOfAnySizeAndBytes) {
    // Megabytes go through whole; no envelope gets larger by being large.
    const std::string large(size_t{5} << 20, 'x');
    device.setAnswer("PUT", "/VELTA/Some/Thing", 200, "taken");
    EXPECT_EQ(session->request("PUT", "/VELTA/Some/Thing?devIndex=1", large), "taken");
    EXPECT_EQ(device.requests().back().header("Content-Length"), std::to_string(large.size()));
    EXPECT_EQ(device.requests().back().header("Connection"), "keep-alive");
    EXPECT_EQ(errorCodeOf(raw(large)), 0x60000001U);
    EXPECT_EQ(errorCodeOf(raw(std::string(100'000, '['))), 0x60000001U);
    EXPECT_EQ(errorCodeOf(raw(R"({"method":"GET","uri":")" + large + R"(","body":""})")), 0x4000111DU);
    // Bytes that are no UTF-8 reach the device as they are, unless the document is written anew.
    const std::string bytes = "\xff\xfe\xc3";
    EXPECT_EQ(raw(R"({"method":"PUT","uri":"/VELTA/Some/Thing?devIndex=1","body":")" + bytes + R"("})"),
              "taken");
    EXPECT_EQ(device.requests().back().body, bytes);
    device.setAnswer("POST", "/VELTA/AccessControl/CardInfo/Record", 200, R"({"statusCode":1})");
    EXPECT_EQ(raw(R"({"method":"POST","uri":"/VELTA/AccessControl/CardInfo/Record?format=json","body":)"
                  R"("{\"CardInfo\":{\"employeeNo\":\"1\",\"cardNo\":\")" +
                  bytes + R"(\"}}"})"),
              R"({"statusCode":1})");
    EXPECT_THAT(device.requests().back().body, HasSubstr("\\ufffd"));
}

TEST_F(GatewayTest, writesNoNameIntoADocumentThatItCannotRead) {
    // The document of the device can't be read, so its name is not written, and its answer is nobody's
    // answer.
    device.setFault({.kind = veltasim::FaultKind::HttpError, .count = 1});
    EXPECT_EQ(errorCodeOf(session->request("PUT", "/VELTA/System/deviceInfo?devIndex=1",
                                           "<DeviceInfo><deviceName>x</deviceName></DeviceInfo>")),
              0x4000111DU);
    EXPECT_THAT(session->request("GET", "/VELTA/System/deviceInfo?devIndex=1"), HasSubstr("<DeviceInfo"));
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

std::string inventory(Session& session, unsigned size = 1 << 16) {
    std::string buffer(size, '#');
    EXPECT_EQ(session.gateway->DeviceLoop(session.instance, buffer.data(), size), 0);
    return buffer.c_str();
}

TEST_F(GatewayTest, readsOddInventories) {
    device.setDocument("/VELTA/System/IO/outputs",
                       "<L><IOOutputPort><id>7x</id></IOOutputPort><Other/><IOOutputPort/></L>");
    const Json::Value outputs = parsed(inventory(*session))["alarmOutChannels"];
    ASSERT_EQ(outputs.size(), 2U);
    EXPECT_EQ(outputs[0]["channelNo"].asInt(), 7);
    EXPECT_EQ(outputs[1]["channelName"].asString(), "AlarmOutChan_0");

    device.setDocument("/VELTA/System/IO/outputs", "<L/>");
    EXPECT_TRUE(parsed(inventory(*session))["alarmOutChannels"].isArray());

    device.setDocument("/VELTA/System/IO/outputs", "no document");
    std::string untouched(64, '#');
    EXPECT_EQ(static_cast<uint32_t>(session->gateway->DeviceLoop(session->instance, untouched.data(), 64)),
              0x60000001U);
    EXPECT_EQ(untouched[0], '#');
}

TEST_F(GatewayTest, writesTheInventoryAsItAlwaysHas) {
    device.setDocument("/VELTA/System/deviceInfo",
                       "<D><model>100%s%n%%d%%%</model><serialNumber/><firmwareVersion>1</firmwareVersion>"
                       "<firmwareReleasedDate/></D>");
    EXPECT_THAT(inventory(*session), HasSubstr(R"("devType":"100%s%n%d%%")"));
    EXPECT_EQ(session->gateway->DeviceLoop(session->instance, nullptr, 100), 0);
}

TEST_F(GatewayTest, sendsATranslatedRequestOnce) {
    device.setFault({.kind = veltasim::FaultKind::Drop, .path = "/VELTA/System/reboot"});
    EXPECT_EQ(errorCodeOf(session->request("PUT", "/VELTA/System/reboot?format=json&devIndex=1")),
              0x60000001U);
    size_t served = 0;
    for (const auto& request : device.requests())
        served += request.user.empty() ? 0 : 1;
    EXPECT_EQ(served, 1U);
}

}  // namespace
