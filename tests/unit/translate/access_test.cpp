// What access-control requests are made of, and an operation without a route.
#include <gtest/gtest.h>
#include <veltasim/device.h>

#include "device/CVeltaDevice.h"
#include "gateway/JsonText.h"
#include "gateway/Url.h"
#include "translate/acs/EventHosts.h"
#include "translate/acs/HexPicture.h"
#include "translate/acs/Schedules.h"

namespace {

TEST(Faces, areMovedByTheirAddress) {
    const std::string libraries = R"({"FDLib":[{"FDID":"1","faceLibType":"blackFD"}]})";
    const std::string refusal = R"({"statusCode":4})";
    const std::string face = R"({"FaceInfo":{"faceURL":"http://h/p","employeeNo":"a b&c","faceLibType":")";
    const struct {
        std::string body;
        int librariesStatus;
        std::string deviceAnswer;
        uint32_t code;
        size_t requests;
    } cases[] = {{face + "blackFD\"}}", 200, R"({"statusCode":1})", 0, 2},
                 {face + "blackFD\"}}", 200, refusal, 0x40000001, 2},
                 {face + "other\"}}", 200, "", 0x60000001, 1},
                 {"{}", 200, "", 0x60000001, 1},
                 {"{}", 403, "", 0xFFFFFFFF, 1}};
    for (const auto& c : cases) {
        veltasim::Device sim({.auth = veltasim::AuthScheme::None});
        sim.setAnswer("GET", "/VELTA/Intelligent/FDLib", c.librariesStatus,
                      c.librariesStatus == 200 ? libraries : refusal);
        sim.setAnswer("PUT", "/VELTA/Intelligent/FDLib/FDSearch", 200, c.deviceAnswer);
        sim.start();
        CVeltaDevice device;
        std::string url = "Connect=TCP/IP;Target=127.0.0.1;Port=" + std::to_string(sim.port()) + ";";
        std::string user = "u";
        EXPECT_EQ(device.Connect_V2(url.data(), user.data(), user.data()), 0);
        velta::HostBody body{c.body, {}};
        EXPECT_TRUE(velta::parseJson(c.body, body.json));
        std::string answer;
        EXPECT_EQ(device.veltaSetAcsFace(answer, "", body), c.code) << c.body;
        EXPECT_STREQ(answer.c_str(), c.deviceAnswer.c_str());
        ASSERT_EQ(sim.requests().size(), c.requests);
        if (c.requests == 1) continue;
        EXPECT_EQ(sim.requests().back().target,
                  "/VELTA/Intelligent/FDLib/FDSearch?format=json&FDID=1&FPID=a%20b%26c&faceLibType=blackFD");
        EXPECT_EQ(sim.requests().back().body, "{\"faceURL\":\"http://h/p\"}\n");
    }
}

TEST(HexPicture, readsPairsAsNumbers) {
    using Pair = std::pair<std::string, std::string>;
    for (const auto& [text, bytes] :
         {Pair{"FFd8fF", "\xff\xd8\xff"}, Pair{"", ""}, Pair{"4", "\x04"}, Pair{"4A5", "J\x05"},
          Pair{"g1", std::string(1, 0)}, Pair{"1g", "\x01"}, Pair{" 7", "\x07"}, Pair{"-1", "\xff"},
          Pair{"+1", "\x01"}, Pair{"\n2", "\x02"}, Pair{"0x", std::string(1, 0)}, Pair{"1 ", "\x01"}})
        EXPECT_EQ(velta::hexToStr(text), bytes) << text;
    EXPECT_EQ(velta::stringToHex(std::string("\x00\xaf", 2), ", "), "00, AF, ");
    EXPECT_EQ(velta::stringToHex("", ":"), "");
}

TEST(HostAddress, isFourNumbers) {
    for (const char* good : {"0.0.0.0", "255.255.255.255", "010.1.1.1", " 1.+2.3.4"})
        EXPECT_TRUE(IsIp(good)) << good;
    for (const char* bad : {"", "1.2.3", "1.2.3.4.", "1.2.3.4 ", "1.2.3.256", "-1.2.3.4", "1..3.4", "a.b.c.d",
                            "99999999999999999999.2.3.4"})
        EXPECT_FALSE(IsIp(bad)) << bad;
}

TEST(Text, looksTheSameInAUrlAndWithoutBlanks) {
    EXPECT_EQ(velta::percentEncoded("Aa0-._~ #&?=/%+\n\xc3\xa9"), "Aa0-._~%20%23%26%3F%3D%2F%25%2B%0A%C3%A9");
    EXPECT_EQ(velta::trim(" a\tb \r\n", " \t"), "ab\r\n");
}

}  // namespace
