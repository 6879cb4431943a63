// What access-control requests are made of, and what needs a session that is online or an operation without a
// route.
#include <gtest/gtest.h>

#include "exchange.h"
#include "gateway/Url.h"
#include "translate/acs/EventHosts.h"
#include "translate/acs/HexPicture.h"
#include "translate/acs/Schedules.h"

namespace {

using namespace exchange;

const std::string kOk = R"({"statusCode":1})";
const std::string kLibraries = R"({"statusCode":1,"FDLib":[{"FDID":"1","faceLibType":"blackFD"}]})";

// An access-control operation with the host's body. Online: after a log-in, which takes the first answer.
Operation access(uint32_t (CVeltaDevice::*operation)(std::string&, const std::string&,
                                                     const velta::HostBody&),
                 const std::string& text, bool online = false) {
    return [=](CVeltaDevice& device, std::string& answer) {
        velta::HostBody body{text, {}};
        EXPECT_TRUE(velta::parseJson(text, body.json));
        if (online) {
            EXPECT_EQ(device.veltaStatusCheck(), 0);
        }
        return (device.*operation)(answer, "/VELTA/A", body);
    };
}

TEST(AccessExchange, addsPersonsAndFacesWhileOnline) {
    const std::string single = R"({"UserInfo" : {"userType":"none of the three"}})";
    const std::string face = R"({"FaceInfo":{"employeeNo":"1","hexImg":"FF"}})";
    const std::string batch = R"({"UserInfo":[{"employeeNo":"1","Valid":{"beginTime":"1","endTime":"2"}}]})";
    const auto addUser = [](const std::string& body) {
        return access(&CVeltaDevice::veltaAddAcsUser, body, true);
    };
    check({
        {addUser(single), {ok(""), ok("{}")}, 0, "{}", "POST /VELTA/A?format=json " + single},
        {addUser(single), {ok(""), http(500, "{}")}, 0xFFFFFFFF, "{}"},
        {addUser(single), {ok(""), ""}, 0xFFFFFFFF},
        {addUser(batch),
         {ok(""), ok("no json")},
         0,
         R"({"UserInfoOutList":{"UserInfoOut":[{"employeeNo":"1","errorCode":1610612759,)"},
        {access(&CVeltaDevice::veltaAddAcsFace, face, true), {ok(""), ok(kLibraries), ""}, 0xFFFFFFFF},
        {access(&CVeltaDevice::veltaAddAcsFace, face, true), {ok(""), ok(kLibraries), http(401, "")}, 401},
    });
}

TEST(AccessExchange, movesFacesByTheirAddress) {
    const auto modify = [](const std::string& body) { return access(&CVeltaDevice::veltaSetAcsFace, body); };
    const auto face = [](const std::string& type) {
        return R"({"FaceInfo":{"faceURL":"http://h/p","employeeNo":"a b&c","faceLibType":")" + type +
               R"("}})";
    };
    check({
        {modify(face("blackFD")),
         {ok(kLibraries), ok(kOk)},
         0,
         kOk,
         "PUT /VELTA/Intelligent/FDLib/FDSearch?format=json&FDID=1&FPID=a%20b%26c&faceLibType=blackFD "
         "{\"faceURL\":\"http://h/p\"}\n"},
        {modify(face("blackFD")),
         {ok(kLibraries), ok(R"({"statusCode":4})")},
         0x40000001,
         R"({"statusCode":4})"},
        {modify(face("other")), {ok(kLibraries)}, 0x60000001},
        {modify("{}"), {ok(kLibraries)}, 0x60000001},
        {modify("{}"), {http(403, R"({"statusCode":4})")}, 0xFFFFFFFF},
    });
}

TEST(HexPicture, readsPairsAsNumbers) {
    struct Case {
        std::string text;
        std::string bytes;
    };
    const Case cases[] = {
        {"FFd8fF", "\xff\xd8\xff"},
        {"", ""},
        {"4", "\x04"},
        {"4A5", "J\x05"},
        {"g1", std::string(1, 0)},
        {"1g", "\x01"},
        {" 7", "\x07"},
        {"-1", "\xff"},
        {"+1", "\x01"},
        {"\n2", "\x02"},
        {"0x", std::string(1, 0)},
        {"1 ", "\x01"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(velta::hexToStr(c.text), c.bytes) << c.text;
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
