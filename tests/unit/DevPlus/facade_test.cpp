#include <gtest/gtest.h>
#include <velta/velta.h>

#include "DevPlus/Facade.h"
#include "device/CVeltaDevice.h"

namespace {

TEST(Registry, keepsTheFirstOfAKey) {
    CDevBase base;
    int first = 0;
    int second = 0;
    base.AddImplement("key", &first, &first);
    base.AddImplement("key", &second, &second);
    EXPECT_EQ(base.GetInterface("key"), &first);
    EXPECT_EQ(base.GeDevBaseObject("key"), &first);
    for (const char* unknown : {"Key", "", static_cast<const char*>(nullptr)}) {
        EXPECT_EQ(base.GetInterface(unknown), nullptr);
        EXPECT_EQ(base.GeDevBaseObject(unknown), nullptr);
    }
    EXPECT_EQ(velta::facadeOf<CDevEvent>(&base), nullptr);
}

TEST(Facade, storedCallbacksNeedAnInstance) {
    struct Call {
        void* handle = nullptr;
        int status = 0;
    } call;
    const auto onStatus = [](void* handle, int status, char*, void* user) {
        *static_cast<Call*>(user) = {handle, status};
    };
    const auto onEvent = [](void* handle, char*, tagEVENT_BASE_INFO*, tagEVENT_EXT_INFO*, void* user) {
        *static_cast<Call*>(user) = {handle, 99};
    };
    CDevConnect_V2 connect;
    CDevEvent event;
    EXPECT_EQ(static_cast<uint32_t>(connect.SetConnStatusCallBack(onStatus, &call)), 0x3000100CU);
    EXPECT_EQ(static_cast<uint32_t>(event.SetEventCallBack(onEvent, &call)), 0x3000100CU);
    connect.InvokeConnStatusCallBack(1, nullptr);
    event.InvokeEventCallBack(nullptr, nullptr, nullptr);
    EXPECT_EQ(call.handle, nullptr);

    CDevBase base;
    connect.Bind(&base);
    event.Bind(&base);
    connect.InvokeConnStatusCallBack(1, nullptr);  // bound, but nobody listens
    EXPECT_EQ(call.handle, nullptr);
    EXPECT_EQ(connect.SetConnStatusCallBack(onStatus, &call), 0);
    EXPECT_EQ(event.SetEventCallBack(onEvent, &call), 0);
    connect.InvokeConnStatusCallBack(11, nullptr);
    EXPECT_EQ(call.handle, &base);
    EXPECT_EQ(call.status, 11);
    event.InvokeEventCallBack(nullptr, nullptr, nullptr);
    EXPECT_EQ(call.status, 99);
}

}  // namespace
