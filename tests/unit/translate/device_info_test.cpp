#include <gtest/gtest.h>
#include <json/json.h>

#include "device/CVeltaDevice.h"
#include "gateway/JsonText.h"

namespace {

constexpr const char* kComplete =
    R"({"DeviceInfo":{"devType":-7,"operationSystem":"os","telecontrolID":255,"deviceType":"ACS",
        "softwareVersion":"s","decoderReleasedDate":"dr","decoderVersion":"d","hardwareVersion":"h",
        "bootReleasedDate":"br","bootVersion":"b","encoderReleasedDate":"er","encoderVersion":"e",
        "firmwareReleasedDate":"fr","firmwareVersion":"f","macAddress":"ma","serialNumber":"sn","model":"m",
        "systemContact":"c","deviceDescription":"<b>&</b>","deviceID":"","deviceName":"n"}})";

bool isAccepted(const Json::Value& body) {
    std::string xml;
    return CVeltaDevice::transDeviceInfoJson2Xml(xml, body);
}

TEST(DeviceInfo, goesToTheDeviceInItsOrder) {
    Json::Value body;
    ASSERT_TRUE(velta::parseJson(kComplete, body));
    std::string xml;
    ASSERT_TRUE(CVeltaDevice::transDeviceInfoJson2Xml(xml, body));
    EXPECT_EQ(xml,
              R"(<?xml version="1.0" encoding="utf-8"?><DeviceInfo version="2.0" xmlns="urn:velta:schema">)"
              "<deviceName>n</deviceName><deviceID></deviceID><deviceDescription><b>&</b></deviceDescription>"
              "<systemContact>c</systemContact><model>m</model><serialNumber>sn</serialNumber>"
              "<macAddress>ma</macAddress><firmwareVersion>f</firmwareVersion>"
              "<firmwareReleasedDate>fr</firmwareReleasedDate><bootVersion>b</bootVersion>"
              "<bootReleasedDate>br</bootReleasedDate><hardwareVersion>h</hardwareVersion>"
              "<encoderVersion>e</encoderVersion><encoderReleasedDate>er</encoderReleasedDate>"
              "<decoderVersion>d</decoderVersion><decoderReleasedDate>dr</decoderReleasedDate>"
              "<softwareVersion>s</softwareVersion><deviceType>ACS</deviceType>"
              "<telecontrolID>255</telecontrolID><operationSystem>os</operationSystem><devType>-7</devType>"
              "</DeviceInfo>");
}

TEST(DeviceInfo, isCheckedMemberByMember) {
    Json::Value complete;
    ASSERT_TRUE(velta::parseJson(kComplete, complete));
    const std::string required =
        " deviceName deviceID model serialNumber macAddress firmwareVersion deviceType ";
    for (const std::string& name : complete["DeviceInfo"].getMemberNames()) {
        Json::Value body = complete;
        body["DeviceInfo"].removeMember(name);
        EXPECT_EQ(isAccepted(body), required.find(" " + name + " ") == std::string::npos) << name;
        const Json::Value otherKind =
            complete["DeviceInfo"][name].isInt() ? Json::Value("5") : Json::Value(5);
        for (const Json::Value& wrong :
             {Json::Value(), Json::Value(Json::arrayValue), otherKind, Json::Value(1e300)}) {
            body["DeviceInfo"][name] = wrong;
            EXPECT_FALSE(isAccepted(body)) << name << wrong;
        }
    }
    const auto with = [&complete](const char* name, const Json::Value& value) {
        Json::Value body = complete;
        body["DeviceInfo"][name] = value;
        return body;
    };
    EXPECT_TRUE(isAccepted(with("deviceName", std::string(32, 'n'))));
    EXPECT_FALSE(isAccepted(with("deviceName", std::string(33, 'n'))));
    EXPECT_TRUE(isAccepted(with("telecontrolID", 1)));
    EXPECT_FALSE(isAccepted(with("telecontrolID", 0)) || isAccepted(with("telecontrolID", 256)));
    for (const char* text : {"[]", "{}", "7", R"({"DeviceInfo":[]})", R"({"DeviceInfo":null})"}) {
        Json::Value body;
        ASSERT_TRUE(velta::parseJson(text, body));
        EXPECT_FALSE(isAccepted(body)) << text;
    }
}

TEST(DeviceInfo, comesFromTheDeviceAsTexts) {
    const std::string reply =
        "<DeviceInfo><telecontrolID>1</telecontrolID><deviceName>a&amp;b</deviceName><model/>"
        "<deviceID>1</deviceID><devType>7</devType></DeviceInfo>";
    std::string answer;
    ASSERT_TRUE(CVeltaDevice::transDeviceInfoXml2Json(answer, reply + '\0'));
    EXPECT_EQ(
        answer,
        R"({"DeviceInfo":{"bootVersion":null,"devType":"7","deviceID":"1","deviceName":"a&b","deviceType":null,)"
        R"("firmwareVersion":null,"macAddress":null,"model":null,"serialNumber":null}})"
        "\n");
    for (const char* other :
         {"<DeviceInfo/>", "<DeviceInfo><deviceName>", "<R><deviceName>n</deviceName></R>", ""})
        EXPECT_FALSE(CVeltaDevice::transDeviceInfoXml2Json(answer, other)) << other;
}

TEST(DeviceName, hasOnlyHarmlessCharacters) {
    EXPECT_TRUE(CVeltaDevice::checkDeviceName("Door 1 ~(main)", 14));
    EXPECT_TRUE(CVeltaDevice::checkDeviceName("ab/", 2));
    for (const char c : std::string("/\\:*?'\"<>|%\t\x7f\xc3\0", 15))
        EXPECT_FALSE(CVeltaDevice::checkDeviceName((std::string("a") + c).c_str(), 2)) << static_cast<int>(c);
}

}  // namespace
