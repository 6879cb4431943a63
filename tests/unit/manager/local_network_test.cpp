#include "manager/LocalNetwork.h"

#include <gmock/gmock.h>
#include <xpr/adapter.h>

#include <cstring>

namespace {

TEST(LocalNetwork, collectsUsableAddressesInOrder) {
    XPR_IPv4Address more[20] = {};
    for (int i = 0; i < 20; ++i) {
        ("10.0.0." + std::to_string(i)).copy(more[i].text, sizeof more[i].text);
        more[i].next = i < 19 ? &more[i + 1] : nullptr;
    }
    XPR_IPv4Address broken{"1.2.3", more};
    XPR_IPv4Address any{"0.0.0.0", &broken};
    XPR_IPv4Address loopback4{"127.0.0.1", &any};
    XPR_IPv6Address global{{0x20, 0x01}, nullptr};
    XPR_IPv6Address loopback6{{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1}, &global};
    XPR_Adapter second{"eth1", {2, 0, 0, 0, 0, 2, 7, 8}, 8, more, nullptr, nullptr};
    XPR_Adapter first{"lo", {2, 0, 0, 0, 0, 1}, 6, &loopback4, &loopback6, &second};

    const tagNetworkInfo info = velta::LocalNetwork::collect(&first);
    EXPECT_EQ(info.ipv4Count, 16);
    EXPECT_STREQ(reinterpret_cast<const char*>(info.ipv4[0].address), "10.0.0.0");
    EXPECT_STREQ(reinterpret_cast<const char*>(info.ipv4[15].address), "10.0.0.15");
    EXPECT_EQ(info.ipv4[0].valid, 1);
    EXPECT_EQ(info.ipv4[0].hardwareAddress[5], 1);
    EXPECT_EQ(info.ipv6Count, 1);
    EXPECT_EQ(info.ipv6[0].address[0], 0x20);
    EXPECT_EQ(info.ipv6[1].valid, 0);
    EXPECT_EQ(velta::LocalNetwork::collect(nullptr).ipv4Count, 0);
    EXPECT_EQ(velta::LocalNetwork::collect(&second).ipv4[0].hardwareAddress[6],
              7);  // what fits of eight bytes
}

TEST(LocalNetwork, refreshesAtMostEveryTwoMinutes) {
    velta::LocalNetwork network;
    tagNetworkInfo info{};
    const int read = network.getCurrentNetworkInfo(info, true);
    EXPECT_EQ(read, info.ipv4Count + info.ipv6Count > 0 ? 1 : 0);
    tagNetworkInfo untouched{};
    untouched.reserved = 42;
    EXPECT_EQ(network.getCurrentNetworkInfo(untouched, true), 1);
    EXPECT_EQ(untouched.reserved, 42);
    EXPECT_EQ(network.getCurrentNetworkInfo(untouched, false), 1);
    EXPECT_EQ(std::memcmp(&untouched, &info, sizeof info), 0);
}

TEST(Text, isSplit) {
    using testing::ElementsAre;
    EXPECT_THAT(StringSplit("", "."), ElementsAre(""));
    EXPECT_THAT(StringSplit("a--b", "--"), ElementsAre("a", "-b"));  // goes on one character behind the match
    EXPECT_THAT(StringSplit("---", "--"), ElementsAre("", "", "-"));
}

TEST(Text, isAnAddressOfVersionFour) {
    for (const char* good : {"10.0.0.5", "01.2.3.4", "1..2.3", "255.255.255.255", "a.b.c.d"}) {
        EXPECT_TRUE(VX_BASE_ParseIp4(good)) << good;
    }
    for (const char* bad : {"256.1.1.1", "1.2.3", "1.2.3.4.5", "0001.2.3.4", ""}) {
        EXPECT_FALSE(VX_BASE_ParseIp4(bad)) << bad;
    }
}

}  // namespace
