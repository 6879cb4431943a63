#include <gtest/gtest.h>

#include "gateway/JsonText.h"
#include "translate/system/NetworkInterfaces.h"

namespace {

TEST(NetworkInterfaces, readTheDevicesDocument) {
    struct Case {
        const char* root;
        const char* xml;
        const char* json;  // null: refused
    };
    const Case cases[] = {
        {"NetworkInterface",
         R"(<?xml version="1.0"?><NetworkInterface version="2.0"><id>1</id><IPAddress><ipAddress>10.0.0.2</ipAddress>)"
         R"(<DNS><a>x</a></DNS><DNS/><DNS>&lt;y&gt;</DNS></IPAddress><name>a "b"</name></NetworkInterface>)",
         R"({"NetworkInterface":{"IPAddress":{"DNS":[{"a":"x"},"","<y>"],"ipAddress":"10.0.0.2"},"id":"1",)"
         R"("name":"a \"b\""}})"},
        {"NetworkInterfaceList",
         "<NetworkInterfaceList><NetworkInterface><id>1</id></NetworkInterface></NetworkInterfaceList>",
         R"({"NetworkInterfaceList":{"NetworkInterface":[{"id":"1"}]}})"},
        {"NetworkInterfaceList",
         "<NetworkInterfaceList><NetworkInterface><id>1</id></NetworkInterface><NetworkInterface/>"
         "</NetworkInterfaceList>",
         R"({"NetworkInterfaceList":{"NetworkInterface":[{"id":"1"},""]}})"},
        {"NetworkInterfaceList", "<NetworkInterfaceList/>",
         R"({"NetworkInterfaceList":{"NetworkInterface":[]}})"},
        {"IPAddress", "<IPAddress>10.0.0.2</IPAddress>", nullptr},
        {"IPAddress", "<ResponseStatus><statusCode>1</statusCode></ResponseStatus>", nullptr},
        {"IPAddress", "<IPAddress><a>1</a>", nullptr},
        {"IPAddress", "", nullptr},
    };
    for (const Case& c : cases) {
        std::string answer = "untouched";
        EXPECT_EQ(velta::transNetworkXml2Json(answer, c.xml, c.root), c.json != nullptr) << c.xml;
        EXPECT_EQ(answer, c.json != nullptr ? std::string(c.json) + "\n" : "untouched");
    }
}

TEST(NetworkInterfaces, writeTheHostsObject) {
    Json::Value body;
    ASSERT_TRUE(velta::parseJson(
        R"({"IPAddress":{"a":"<&>\"'\r","b":[{"c":-1},"\u00fc&#x41;"],"d":true,"e-.9":18446744073709551615,"f":""}})",
        body));
    std::string xml;
    ASSERT_TRUE(velta::transNetworkJson2Xml(xml, body, "IPAddress"));
    EXPECT_EQ(xml,
              R"(<?xml version="1.0" encoding="UTF-8"?><IPAddress version="2.0" xmlns="urn:velta:schema">)"
              "<a>&lt;&amp;&gt;&quot;&apos;&#13;</a><b><c>-1</c></b><b>\xc3\xbc&amp;#x41;</b><d>true</d>"
              "<e-.9>18446744073709551615</e-.9><f></f></IPAddress>");
}

/* An object in which levels elements stand in each other, the root included. */
std::string nested(int levels) {
    std::string text = "\"x\"";
    for (int level = 1; level < levels; ++level)
        text.insert(0, "{\"a\":").append("}");
    return "{\"IPAddress\":" + text + "}";
}

TEST(NetworkInterfaces, refuseWhatIsNoDocument) {
    for (const std::string& text : {
             std::string("[]"),
             std::string("7"),
             std::string("null"),
             std::string("{}"),
             std::string(R"({"NetworkInterface":{"a":"1"}})"),
             std::string(R"({"IPAddress":{"a":"1"},"b":"1"})"),
             std::string(R"({"IPAddress":{}})"),
             std::string(R"({"IPAddress":[{"a":"1"}]})"),
             std::string(R"({"IPAddress":"1"})"),
             std::string(R"({"IPAddress":{"a":{}}})"),
             std::string(R"({"IPAddress":{"a":[]}})"),
             std::string(R"({"IPAddress":{"a":[["1"]]}})"),
             std::string(R"({"IPAddress":{"a":null}})"),
             std::string(R"({"IPAddress":{"a":["1",null]}})"),
             std::string(R"({"IPAddress":{"a":1.5}})"),
             std::string(R"({"IPAddress":{"a":18446744073709551616}})"),
             std::string(R"({"IPAddress":{"a":"\u0000"}})"),
             std::string(R"({"IPAddress":{"":"1"}})"),
             std::string(R"({"IPAddress":{"9a":"1"}})"),
             std::string(R"({"IPAddress":{"a b":"1"}})"),
             std::string(R"({"IPAddress":{"a\u0000":"1"}})"),
             std::string(R"({"IPAddress":{"a><b":"1"}})"),
             nested(17),
         }) {
        Json::Value body;
        ASSERT_TRUE(velta::parseJson(text, body)) << text;
        std::string xml = "untouched";
        EXPECT_FALSE(velta::transNetworkJson2Xml(xml, body, "IPAddress")) << text;
        EXPECT_EQ(xml, "untouched");
    }
    Json::Value body;
    ASSERT_TRUE(velta::parseJson(nested(16), body));
    std::string xml;
    EXPECT_TRUE(velta::transNetworkJson2Xml(xml, body, "IPAddress"));
}

}  // namespace
