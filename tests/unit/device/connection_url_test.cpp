#include <gtest/gtest.h>

#include "device/Connection.h"

using velta::ConnectionUrl;

namespace {

TEST(ConnectionUrl, keepsItsOddRules) {
    struct Case {
        const char* text;
        const char* host;
        int port;
    };
    const Case cases[] = {
        {"Target=a;Port=80", "a", 0},       // only terminated items count
        {"target=a;Port=12abc;", "", 12},   // no case folding; leading digits
        {"Target= a ;Port=x1;", " a ", 0},  // no trimming
        {"=x;Target=a;Port=5;", "a", 5},    // no key
        {"Target;Port=5;", "", 5},          // the key runs to the next "=" and is unknown
        {"Port=5;Target=a=b;", "a=b", 5},   // the first "=" counts
        {"no items at all", "", 0},        {"Port=99999999999999999999;", "", 2147483647},
    };
    for (const Case& c : cases) {
        const auto url = ConnectionUrl::parse(c.text);
        EXPECT_EQ(url.host, c.host) << c.text;
        EXPECT_EQ(url.port, c.port) << c.text;
    }
    // An "=" behind the ";" gives its key everything up to there and the rest of the text as its value.
    EXPECT_EQ(ConnectionUrl::parse("Port=1;\nx;Target=a;b;").host, "a");
    EXPECT_EQ(ConnectionUrl::parse("x;Target=a;").host, "a");
}

TEST(ConnectionUrl, refusesWhatCannotBeADevice) {
    for (const char* text :
         {"Target=a;Port=0;", "Target=a;Port=-80;", "Target=a;Port=65536;", "Target=a\r\nb;Port=80;",
          "Target=a;Port=80;DevIndex=1\n;", "Target=a;Port=80;DeviceName=\x01;"}) {
        EXPECT_FALSE(ConnectionUrl::parse(text).isSound()) << text;
    }
    EXPECT_TRUE(ConnectionUrl::parse("Target=a;Port=65535;DeviceName=T\xc3\xbcr;").isSound());
}

}  // namespace
