#include "gateway/Url.h"

#include <gtest/gtest.h>

#include "gateway/TagText.h"

namespace {

TEST(Url, comparesThePath) {
    EXPECT_EQ(CompareUrl("/VELTA/X?a=1", "/VELTA/X"), 0);
    EXPECT_NE(CompareUrl("/VELTA/X/", "/VELTA/X"), 0);
    EXPECT_NE(CompareUrl("/velta/X", "/VELTA/X"), 0);
    EXPECT_TRUE(velta::isJsonURL("/a?format=json"));
    EXPECT_FALSE(velta::isJsonURL("/a?Format=json"));
}

TEST(Url, matchesNumbers) {
    const auto matches = [](const char* url, const char* pattern, int count) {
        return velta::CheckUrlWithVariable(url, pattern, count);
    };
    for (const char* url : {"/door/7", "/door/0", "/door/-1", "/door/2147483647", "/door/-2147483648?a=1"}) {
        EXPECT_TRUE(matches(url, "/door/%d", 1)) << url;
    }
    for (const char* url : {"/door/07", "/door/+7", "/door/ 7", "/door/-0", "/door/", "/door/x", "/door/7x",
                            "/door/7/", "/door/2147483648", "/door/4294967297", "/Door/7", "", "?/door/7"}) {
        EXPECT_FALSE(matches(url, "/door/%d", 1)) << url;
    }
    EXPECT_TRUE(matches("/a/1/b/2", "/a/%d/b/%d", 2));
    EXPECT_FALSE(matches("/a/1/b/x", "/a/%d/b/%d", 2));
    EXPECT_TRUE(matches("/a?b", "/a", 0));
    EXPECT_FALSE(matches("/a", "/a", -1));
    EXPECT_FALSE(matches("/a", "/a", 5));
    EXPECT_FALSE(matches("/a/1", "/a/1", 1));  // a number that the pattern does not ask for
}

TEST(Url, losesTheHostsParameter) {
    struct Case {
        const char* url;
        bool found;
        const char* kept;
    };
    const Case cases[] = {
        {"/VELTA/System/Network/interfaces?devIndex=2", true, "/VELTA/System/Network/interfaces"},
        {"/VELTA/X?format=json", false, "untouched"},
        {"/VELTA/X?mydevIndex=2", false, "untouched"},
        {"/VELTA/X?DevIndex=2", false, "untouched"},
        {"/devIndex/X?devIndex=2&a=1", true, "&a=1"},  // cut where the bare name stands first
        {"devIndex?devIndex=2", true, "?devIndex=2"},
        {"", false, "untouched"},
    };
    for (const Case& c : cases) {
        std::string out = "untouched";
        EXPECT_EQ(velta::removeQueryFromUrl(out, c.url, "devIndex"), c.found) << c.url;
        EXPECT_EQ(out, c.kept) << c.url;
    }
}

TEST(TagText, replacesADeviceName) {
    struct Case {
        std::string document;
        bool found;
        std::string result;
    };
    const Case cases[] = {
        {"<D><deviceName>old</deviceName><id>1</id></D>", true,
         "<D><deviceName>A & B</deviceName><id>1</id></D>"},
        {"<deviceName></deviceName>", true, "<deviceName>A & B</deviceName>"},
        {std::string("<deviceName>x</deviceName>\0", 27), true, "<deviceName>A & B</deviceName>"},
        {"</deviceName><deviceName>", false, "</deviceName><deviceName>"},
        {"<deviceName>", false, "<deviceName>"},
        {"", false, ""},
    };
    for (const Case& c : cases) {
        std::string document = c.document;
        EXPECT_EQ(velta::replaceDeviceName(document, "A & B"), c.found) << c.document;
        EXPECT_EQ(document, c.result);
    }
}

}  // namespace
