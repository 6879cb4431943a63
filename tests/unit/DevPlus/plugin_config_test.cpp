#include "DevPlus/PluginConfig.h"

#include <gtest/gtest.h>

#include "manager/CVeltaDevMgr.h"

namespace {

TEST(PluginConfig, switchesEventForwarding) {
    CVeltaDevMgr& manager = CVeltaDevMgr::instance();
    struct Case {
        const char* head;
        const char* message;
        bool forwarded;
    };
    // Both heads drive the same switch; the last one wins.
    const Case cases[] = {{"SetEventSub", "1", true},    {"SetMarlListen", "0", false},
                          {"SetMarlListen", "-1", true}, {"SetEventSub", "off", false},
                          {"SetEventSub", " 2x", true},  {"SetEventSub", "", false}};
    for (const Case& c : cases) {
        EXPECT_EQ(SetConfigProcess(c.head, c.message), 0);
        EXPECT_EQ(manager.getEventTransmitCfg(), c.forwarded) << c.head << " " << c.message;
    }
}

TEST(PluginConfig, refusesUnknownHeads) {
    EXPECT_EQ(nConfigProcFuncCount, 5);
    EXPECT_EQ(SetConfigProcess("SetMARLSDKLog", "anything"), 0);
    EXPECT_EQ(SetConfigProcess("InitListenPort", ""), 0);
    for (const char* head : {"setEventSub", "SetEventSub ", "", static_cast<const char*>(nullptr)}) {
        EXPECT_EQ(SetConfigProcess(head, "1"), -1);
    }
    EXPECT_EQ(SetConfigProcess("SetEventSub", nullptr), -1);
}

TEST(PluginConfig, setsTheNetZone) {
    CVeltaDevMgr& manager = CVeltaDevMgr::instance();
    const auto notify = [](const std::string& text) {
        return SetConfigProcess("NetZoneTableNotify", text.c_str());
    };
    const auto zone = [](const char* protocol, const char* ip, int id) {
        return std::string(R"({"protocolType":")") + protocol + R"(","accessIp":")" + ip + R"(","id":)" +
               std::to_string(id) + "}";
    };
    const auto table = [](const std::string& zones) { return R"({"accessNetInfos":[)" + zones + "]}"; };

    EXPECT_EQ(notify(table(zone("VELTA", "10.1.2.3", 2) + "," + zone("OTHER", "10.9.9.9", 9))), 0);
    EXPECT_EQ(manager.getNetZoneIp(), "10.1.2.3");
    EXPECT_EQ(manager.getNetZoneId(), 2);
    EXPECT_EQ(notify(table(zone("VELTA", "10.1.2.4", 3) + "," + zone("VELTA", "10.1.2.5", 4))), 0);
    EXPECT_EQ(manager.getNetZoneIp(), "10.1.2.5");
    // Unreadable messages keep what was there.
    for (const char* bad :
         {"", "no json", "[1]", R"({"accessNetInfos":[{"protocolType":{}}]})", R"({"accessNetInfos":[7]})",
          R"({"accessNetInfos":[{"protocolType":"VELTA","accessIp":"1.1.1.1","id":"x"}]})"}) {
        EXPECT_EQ(notify(bad), -1) << bad;
        EXPECT_EQ(manager.getNetZoneIp(), "10.1.2.5") << bad;
    }
    EXPECT_EQ(notify(table(zone("OTHER", "10.9.9.9", 9))), 0);
    EXPECT_EQ(manager.getNetZoneIp(), "");
    EXPECT_EQ(manager.getNetZoneId(), -1);
}

}  // namespace
