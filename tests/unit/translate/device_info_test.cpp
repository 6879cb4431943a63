#include <gtest/gtest.h>
#include <json/json.h>

#include "device/CVeltaDevice.h"
#include "gateway/JsonText.h"

namespace {

Json::Value completeInfo() {
    Json::Value body;
    EXPECT_TRUE(velta::parseJson(
        R"({"DeviceInfo":{"devType":-7,"operationSystem":"os","telecontrolID":255,"deviceType":"ACS",
            "softwareVersion":"s","decoderReleasedDate":"dr","decoderVersion":"d","hardwareVersion":"h",
            "bootReleasedDate":"br","bootVersion":"b","encoderReleasedDate":"er","encoderVersion":"e",
            "firmwareReleasedDate":"fr","firmwareVersion":"f","macAddress":"ma","serialNumber":"sn","model":"m",
            "systemContact":"c","deviceDescription":"<b>&</b>","deviceID":"","deviceName":"n"}})",
        body));
    return body;
}

TEST(DeviceInfo, goesToTheDeviceInItsOrder) {
    std::string xml;
    ASSERT_TRUE(CVeltaDevice::transDeviceInfoJson2Xml(xml, completeInfo()));
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
    const Json::Value complete = completeInfo();
    const std::string required =
        " deviceName deviceID model serialNumber macAddress firmwareVersion deviceType ";
    std::string xml;
    for (const std::string& name : complete["DeviceInfo"].getMemberNames()) {
        Json::Value body = complete;
        body["DeviceInfo"].removeMember(name);
        const bool isRequired = required.find(" " + name + " ") != std::string::npos;
        EXPECT_EQ(CVeltaDevice::transDeviceInfoJson2Xml(xml, body), !isRequired) << name;
        const bool isNumber = complete["DeviceInfo"][name].isInt();
        for (const Json::Value& wrong : {Json::Value(), Json::Value(Json::arrayValue),
                                         isNumber ? Json::Value("5") : Json::Value(5), Json::Value(1e300)}) {
            body["DeviceInfo"][name] = wrong;
            EXPECT_FALSE(CVeltaDevice::transDeviceInfoJson2Xml(xml, body)) << name << wrong;
        }
    }
    struct Case {
        const char* name;
        Json::Value value;
        bool isAllowed;
    };
    const Case cases[] = {
        {"deviceName", std::string(32, 'n'), true},
        {"deviceName", std::string(33, 'n'), false},
        {"telecontrolID", 0, false},
        {"telecontrolID", 1, true},
        {"telecontrolID", 256, false},
        {"devType", 4294967296, false},
    };
    for (const Case& c : cases) {
        Json::Value body = complete;
        body["DeviceInfo"][c.name] = c.value;
        EXPECT_EQ(CVeltaDevice::transDeviceInfoJson2Xml(xml, body), c.isAllowed) << c.name << c.value;
    }
    for (const char* text : {"[]", "{}", "7", R"({"DeviceInfo":[]})", R"({"DeviceInfo":null})"}) {
        Json::Value body;
        ASSERT_TRUE(velta::parseJson(text, body));
        EXPECT_FALSE(CVeltaDevice::transDeviceInfoJson2Xml(xml, body)) << text;
    }
}

TEST(DeviceInfo, comesFromTheDeviceAsTexts) {
    const std::string nulls = R"("firmwareVersion":null,"macAddress":null,"model":null)";
    struct Case {
        const char* xml;
        std::string json;  // of the object; empty: refused
    };
    const Case cases[] = {
        {"<DeviceInfo><deviceName>a&amp;b</deviceName><deviceID/><telecontrolID>255</telecontrolID></"
         "DeviceInfo>",
         R"("bootVersion":null,"deviceID":"","deviceName":"a&b","deviceType":null,)" + nulls +
             R"(,"serialNumber":null,"telecontrolID":"255")"},
        {"<DeviceInfo><deviceID>1</deviceID><deviceName>n</deviceName></DeviceInfo>",
         R"("bootVersion":null,"deviceID":null,"deviceName":"n","deviceType":null,)" + nulls +
             R"(,"serialNumber":null)"},
        {"<DeviceInfo/>", ""},
        {"<ResponseStatus><deviceName>n</deviceName></ResponseStatus>", ""},
        {"<DeviceInfo><deviceName>", ""},
        {"", ""},
    };
    for (const Case& c : cases) {
        std::string answer = "untouched";
        EXPECT_EQ(CVeltaDevice::transDeviceInfoXml2Json(answer, std::string(c.xml) + '\0'), !c.json.empty());
        EXPECT_EQ(answer, c.json.empty() ? "untouched" : "{\"DeviceInfo\":{" + c.json + "}}\n") << c.xml;
    }
}

TEST(DeviceName, hasOnlyHarmlessCharacters) {
    EXPECT_TRUE(CVeltaDevice::checkDeviceName("Door 1 ~(main)", 14));
    EXPECT_TRUE(CVeltaDevice::checkDeviceName("ab/", 2));
    for (const char c : std::string("/\\:*?'\"<>|%\t\x7f\xc3\0", 15)) {
        const char name[] = {'a', c, 'b'};
        EXPECT_FALSE(CVeltaDevice::checkDeviceName(name, 3)) << static_cast<int>(c);
    }
    EXPECT_FALSE(CVeltaDevice::checkDeviceName(nullptr, 1));
}

}  // namespace
