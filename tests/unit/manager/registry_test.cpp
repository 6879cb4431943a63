#include <gtest/gtest.h>

#include "device/CVeltaDevice.h"
#include "manager/CVeltaDevMgr.h"

namespace {

class RegistryTest : public testing::Test {
 protected:
    CVeltaDevMgr& manager = CVeltaDevMgr::instance();
    CVeltaDevice first;
    CVeltaDevice second;

    CVeltaDevice* at(const std::string& addr) {
        CVeltaDevice* dev = nullptr;
        manager.getEventCallBackParam(addr, dev);
        return dev;
    }
    CVeltaDevice* device(const std::string& key) {
        const VXBase::ReadGuard guard(manager.deviceLock());
        return manager.getDevice(key);
    }
};

TEST_F(RegistryTest, forgetsASessionUnderAllItsKeys) {
    {
        CVeltaDevice device;
        char url1[] = "Connect=TCP/IP;Target=10.0.0.5;Port=80;DevIndex=1;";
        char url2[] = "Connect=TCP/IP;Target=10.0.0.5;Port=80;DevIndex=2;";
        char text[] = "x";
        ASSERT_EQ(device.Connect_V2(url1, text, text), 0);
        ASSERT_EQ(device.Connect_V2(url2, text, text), 0);
        manager.addDevice("3", &second, {});
        manager.addEventCallBack("10.0.0.5:80", &device);
        manager.addEventCallBack("10.0.0.5:81", &second);
        EXPECT_EQ(this->device("1"), &device);
    }
    EXPECT_EQ(device("1"), nullptr);
    EXPECT_EQ(device("2"), nullptr);
    EXPECT_EQ(device("3"), &second);
    EXPECT_EQ(at("10.0.0.5:80"), nullptr);
    EXPECT_EQ(at("10.0.0.5:81"), &second);
    EXPECT_EQ(manager.getEventCallBackNum(), 1);
}

TEST_F(RegistryTest, findsALocalSenderUnderAnyLocalAddress) {
    tagNetworkInfo info{};
    manager.getCurrentNetworkInfo(info, true);
    CVeltaDevice* dev = nullptr;
    manager.addEventCallBack("127.0.0.1:80", &first);
    EXPECT_EQ(manager.getMutiNetworkEventParam("127.0.0.1", "80", dev), 0);
    EXPECT_EQ(manager.getMutiNetworkEventParam("203.0.113.9", "80", dev), -1);
    if (info.ipv4Count == 0) GTEST_SKIP() << "this machine has no address but loopback";
    const std::string own = reinterpret_cast<const char*>(info.ipv4[0].address);
    dev = nullptr;
    EXPECT_EQ(manager.getMutiNetworkEventParam(own, "80", dev), 0);
    EXPECT_EQ(dev, &first);
    EXPECT_EQ(manager.getMutiNetworkEventParam(own, "81", dev), -1);
    manager.addEventCallBack(own + ":81", &second);
    EXPECT_EQ(manager.getMutiNetworkEventParam(own, "81", dev), 0);
    EXPECT_EQ(dev, &second);
}

TEST_F(RegistryTest, refusesBadAlarmMessages) {
    manager.addEventCallBack("10.0.0.5:80", &first);
    struct Case {
        const char* message;
        uint32_t result;
    };
    const Case cases[] = {
        {"", 0x60000001},
        {" {\"ipAddress\":\"10.0.0.5\"}", 0x60000001},
        {"{\"ipAddress\":\"10.0.0.5\"", 0x60000001},
        {"{\"ipAddress\":7}", 0x60000001},
        {"{\"ipAddress\":\"\"}", 0x60000001},
        {"{\"ipAddress\":\"10.0.0.6\",\"dateTime\":\"t\"}", 0xFFFFFFFF},
        {"{\"ipAddress\":\"10.0.0.5\",\"portNo\":8080,\"dateTime\":\"t\"}", 0xFFFFFFFF},
        {"{\"ipAddress\":\"10.0.0.5\"}", 0xFFFFFFFF},
        {"{\"ipAddress\":\"10.0.0.5\",\"portNo\":\"8080\",\"dateTime\":\"t\"}", 0},  // not a number: port 80
        {"{\"ipAddress\":\"10.0.0.5\",\"dateTime\":\"t\",\"AccessControllerEvent\":{\"picturesNumber\":1}}",
         0},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(static_cast<uint32_t>(manager.processAcsAlarm(c.message)), c.result) << c.message;
    }
}

TEST_F(RegistryTest, timersOfOthersAreIgnored) {
    EXPECT_EQ(manager.onlineStatusTimer(12345), 0);
    EXPECT_EQ(manager.alarmStatusTimer(12345), 0);
    // The alarm status check is not scheduled, but does its work: a session that is not armed is left alone.
    manager.addEventCallBack("10.0.0.5:80", &first);
    EXPECT_EQ(manager.alarmStatusTimer(XPR_TIMER_INVALID), 0);
    EXPECT_FALSE(first.isArm());
}

}  // namespace
