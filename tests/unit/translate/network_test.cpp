#include <gtest/gtest.h>

#include "gateway/JsonText.h"
#include "translate/system/NetworkInterfaces.h"

namespace {

TEST(NetworkInterfaces, readTheDevicesDocument) {
    struct Case {
        const char* root;
        const char* xml;
        std::string json;  // empty: refused
    };
    const Case cases[] = {
        {"NetworkInterface",
         R"(<?xml version="1.0"?><NetworkInterface version="2.0"><id>1</id><IPAddress><ipVersion>v4</ipVersion>)"
         R"(<DNS><a>x</a></DNS><DNS/><DNS>&lt;y&gt;</DNS></IPAddress><name>a "b"</name></NetworkInterface>)",
         R"({"NetworkInterface":{"IPAddress":{"DNS":[{"a":"x"},"","<y>"],"ipVersion":"v4"},"id":"1",)"
         R"("name":"a \"b\""}})"},
        {"NetworkInterfaceList",
         "<NetworkInterfaceList><NetworkInterface><id>1</id></NetworkInterface></NetworkInterfaceList>",
         R"({"NetworkInterfaceList":{"NetworkInterface":[{"id":"1"}]}})"},
        {"NetworkInterfaceList", "<NetworkInterfaceList/>",
         R"({"NetworkInterfaceList":{"NetworkInterface":[]}})"},
        {"IPAddress", "<IPAddress>10.0.0.2</IPAddress>", ""},
        {"IPAddress", "<ResponseStatus><statusCode>1</statusCode></ResponseStatus>", ""},
        {"IPAddress", "<IPAddress><a>1</a>", ""},
        {"IPAddress", "", ""},
    };
    for (const Case& c : cases) {
        std::string answer;
        EXPECT_EQ(velta::transNetworkXml2Json(answer, c.xml, c.root), !c.json.empty()) << c.xml;
        EXPECT_EQ(answer, c.json.empty() ? "" : c.json + "\n");
    }
}

/* The document for a host's text; empty: refused. */
std::string documentOf(const std::string& text) {
    Json::Value body;
    EXPECT_TRUE(velta::parseJson(text, body)) << text;
    std::string xml;
    const bool isWritten = velta::transNetworkJson2Xml(xml, body, "IPAddress");
    EXPECT_EQ(isWritten, !xml.empty()) << text;
    return xml;
}

TEST(NetworkInterfaces, writeTheHostsObject) {
    EXPECT_EQ(documentOf(R"({"IPAddress":{"a":"<&>\"'\r","b":[{"c":-1},"\u00fc&#x41;"],"d":true,"e-.9":"",)"
                         R"("f":18446744073709551615}})"),
              R"(<?xml version="1.0" encoding="UTF-8"?><IPAddress version="2.0" xmlns="urn:velta:schema">)"
              "<a>&lt;&amp;&gt;&quot;&apos;&#13;</a><b><c>-1</c></b><b>\xc3\xbc&amp;#x41;</b><d>true</d>"
              "<e-.9></e-.9><f>18446744073709551615</f></IPAddress>");
}

TEST(NetworkInterfaces, refuseWhatIsNoDocument) {
    for (const char* text :
         {"[]", "7", "null", "{}", R"({"NetworkInterface":{"a":"1"}})", R"({"IPAddress":{"a":"1"},"b":"1"})",
          R"({"IPAddress":{}})", R"({"IPAddress":[{"a":"1"}]})", R"({"IPAddress":"1"})"})
        EXPECT_EQ(documentOf(text), "") << text;
    for (const std::string value :
         {"{}", "[]", R"([["1"]])", "null", R"(["1",null])", "1.5", "18446744073709551616", R"("\u0000")"})
        EXPECT_EQ(documentOf(R"({"IPAddress":{"a":)" + value + "}}"), "") << value;
    for (const std::string name : {"", "9a", "-a", "a b", "a:b", "a\\u0000", "a><b"})
        EXPECT_EQ(documentOf(R"({"IPAddress":{")" + name + R"(":"1"}})"), "") << name;
    std::string deep = R"({"a":"1"})";  // two levels with the root
    for (int levels = 2; levels < 16; ++levels)
        deep.insert(0, "{\"a\":").append("}");
    EXPECT_NE(documentOf("{\"IPAddress\":" + deep + "}"), "");
    EXPECT_EQ(documentOf("{\"IPAddress\":{\"a\":" + deep + "}}"), "");
}

}  // namespace
