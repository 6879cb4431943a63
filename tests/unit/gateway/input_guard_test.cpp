#include "gateway/InputGuard.h"

#include <gtest/gtest.h>

#include "gateway/CXmlBase.h"
#include "gateway/JsonText.h"

namespace {

std::string repeated(const std::string& text, int times) {
    std::string all;
    for (int i = 0; i < times; ++i)
        all += text;
    return all;
}

TEST(InputGuard, refusesDeepAndCrowdedJson) {
    const auto nested = [](int levels) { return repeated("[", levels) + repeated("]", levels); };
    Json::Value root;
    EXPECT_TRUE(velta::parseJson(nested(velta::kMaxJsonNesting), root));
    EXPECT_FALSE(velta::parseJson(nested(velta::kMaxJsonNesting + 1), root));
    EXPECT_FALSE(velta::parseJson(repeated("{\"a\":", 1'000'000), root));
    // Brackets that are no brackets.
    EXPECT_TRUE(velta::parseJson(R"({"a":")" + repeated("[\\\"", 1000) + R"("})", root));
    EXPECT_TRUE(velta::parseJson(
        "/*" + repeated("[*/ /*", 1000) + "*/{\"a\":1 // " + repeated("{", 1000) + "\n}", root));
    const std::string most = "[" + repeated("1,", static_cast<int>(velta::kMaxJsonValues) - 1) + "1";
    EXPECT_TRUE(velta::parseJson(most + "]", root));
    EXPECT_FALSE(velta::parseJson(most + ",1]", root));
    // What stands behind the value does not count.
    EXPECT_TRUE(velta::parseJson("{}" + repeated("[", 100000), root));
}

TEST(InputGuard, refusesDeepWideAndCrowdedXml) {
    CXmlBase xml;
    EXPECT_NE(
        xml.Parse((repeated("<a>", velta::kMaxXmlNesting) + repeated("</a>", velta::kMaxXmlNesting)).c_str()),
        nullptr);
    EXPECT_EQ(xml.Parse(repeated("<a>", 100'000).c_str()), nullptr);
    EXPECT_EQ(xml.Parse(("<a" + repeated(" b='1'", velta::kMaxXmlAttributes + 1) + "/>").c_str()), nullptr);
    // Closing tags that are no closing tags must not make up for opening ones.
    for (const char* fake :
         {"<!--</a>-->", "<![CDATA[</a>]]>", "<?pi </a>?>", "<b c='</a>'/>", "<b c=\"/>\"/>"}) {
        EXPECT_EQ(xml.Parse(repeated(std::string("<a>") + fake, 1000).c_str()), nullptr) << fake;
    }
    const std::string list = "<list>" + repeated("<item no='1'/><item></item>", 10000) + "</list>";
    EXPECT_NE(xml.Parse(list.c_str()), nullptr);
    EXPECT_EQ(xml.Parse(("<list>" + repeated("<a/>", velta::kMaxXmlElements) + "</list>").c_str()), nullptr);
    EXPECT_EQ(xml.Parse(nullptr), nullptr);
}

}  // namespace
