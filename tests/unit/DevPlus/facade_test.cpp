#include <gtest/gtest.h>
#include <velta/velta.h>

#include "device/CVeltaDevice.h"

extern "C" int c99_host_status(VELTA_ConnectTable* table, void* instance);

namespace {

template <class Table>
Table* tableOf(CDevBase& instance, const char* key) {
    return static_cast<Table*>(instance.GetInterface(key));
}

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
}

TEST(Facade, wrappersRefuseWhatHasNoInterface) {
    CVeltaDevice device;
    CDevBase stranger;
    auto* connect = tableOf<VELTA_ConnectTable>(device, VELTA_KEY_CONNECT);
    auto* event = tableOf<VELTA_EventTable>(device, VELTA_KEY_EVENT);
    auto* gateway = tableOf<VELTA_GatewayTable>(device, VELTA_KEY_GATEWAY);
    auto* stream = tableOf<VELTA_StreamTable>(device, VELTA_KEY_STREAM);
    for (void* handle : {static_cast<void*>(nullptr), static_cast<void*>(&stranger)}) {
        const int results[] = {
            connect->SetConnStatusCallBack(handle, nullptr, nullptr),
            connect->Connect_V2(handle, nullptr, nullptr, nullptr),
            connect->DisConnect(handle),
            event->SetEventCallBack(handle, nullptr, nullptr),
            gateway->DeviceLoop(handle, nullptr, 0),
            gateway->VELTA_Getway(handle, nullptr, nullptr, 0, nullptr),
            stream->StopTalk(handle, nullptr),
            stream->StartStream(handle, nullptr, nullptr, nullptr, nullptr),
        };
        for (const int result : results)
            EXPECT_EQ(static_cast<uint32_t>(result), 0x82000005U);
    }
    EXPECT_EQ(c99_host_status(connect, nullptr), -100);
    EXPECT_EQ(c99_host_status(connect, static_cast<CDevBase*>(&device)), VELTA_STATUS_UNKNOWN);
}

TEST(Facade, operationsThatNoDeviceHasAreNotSupported) {
    CVeltaDevice device;
    void* const handle = static_cast<CDevBase*>(&device);
    auto* connect = tableOf<VELTA_ConnectTable>(device, VELTA_KEY_CONNECT);
    auto* event = tableOf<VELTA_EventTable>(device, VELTA_KEY_EVENT);
    auto* gateway = tableOf<VELTA_GatewayTable>(device, VELTA_KEY_GATEWAY);
    auto* stream = tableOf<VELTA_StreamTable>(device, VELTA_KEY_STREAM);
    const int notSupported[] = {
        connect->Connect(handle, nullptr),
        connect->SetDevRegisterCallBack(handle, nullptr, nullptr, nullptr),
        connect->SetLoginResultCallBack(handle, nullptr, nullptr),
        connect->SetConnectParams(handle, nullptr),
        event->GetArmingSchedule(handle, nullptr, nullptr, nullptr),
        event->SetArmingSchedule(handle, nullptr, nullptr, 0),
        gateway->ActiveDevice(handle, nullptr, nullptr, 0),
        stream->StartStream(handle, nullptr, nullptr, nullptr, nullptr),
        stream->StopStream(handle, nullptr),
        stream->ForceIFrame(handle, nullptr),
        stream->StartPlayBack(handle, nullptr, nullptr, nullptr, nullptr),
        stream->StartRPlayBack(handle, nullptr, nullptr, nullptr, nullptr),
        stream->StopPlayBack(handle, nullptr),
        stream->Pause(handle, nullptr),
        stream->Resume(handle, nullptr),
        stream->SetScale(handle, nullptr, 1.0),
        stream->SeekByRelTime(handle, nullptr, 0, 0),
        stream->SeekByAbsTime(handle, nullptr, nullptr, nullptr),
    };
    for (const int result : notSupported)
        EXPECT_EQ(static_cast<uint32_t>(result), 0x40000001U);
    const int idle[] = {
        stream->StartTalk(handle, nullptr, nullptr, nullptr, nullptr),
        stream->StopTalk(handle, nullptr),
        stream->SendTalkData(handle, nullptr, nullptr, 0),
        stream->StartDownloadRecord(handle, nullptr, nullptr, nullptr, nullptr, nullptr),
        stream->StopDownloadRecord(handle, nullptr),
    };
    for (const int result : idle)
        EXPECT_EQ(result, 0);
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

TEST(Session, checksItsConnectionParameters) {
    CVeltaDevice device;
    char url[] = "Connect=TCP/IP;Target=10.0.0.5;Port=80;DevIndex=1;";
    char user[] = "u";
    char password[] = "p";
    char empty[] = "";
    std::string longest(VELTA_MAX_CREDENTIALS - 1, 'p');
    const auto connect = [&](char* u, char* name, char* word) {
        return static_cast<uint32_t>(device.Connect_V2(u, name, word));
    };
    EXPECT_EQ(connect(nullptr, user, password), 0x4000000AU);
    EXPECT_EQ(connect(url, nullptr, password), 0x4000000AU);
    EXPECT_EQ(connect(url, user, nullptr), 0x4000000AU);
    EXPECT_EQ(connect(url, user, empty), 0x60000001U);
    EXPECT_EQ(connect(url, empty, password), 0x60000001U);
    char wrongKind[] = "connect=TCP/IP;Target=10.0.0.5;Port=80;";
    EXPECT_EQ(connect(wrongKind, user, password), 0x60000001U);
    char noEnd[] = "Connect=TCP/IP;Target=10.0.0.5;Port=80";
    EXPECT_EQ(connect(noEnd, user, password), 0x60000001U);
    EXPECT_EQ(connect(url, user, longest.data()), 0U);
    longest += 'x';
    EXPECT_EQ(connect(url, user, longest.data()), 0x60000001U);
    int status = 5;
    EXPECT_EQ(static_cast<uint32_t>(device.GetConnectStatus(nullptr, nullptr)), 0x4000000AU);
    EXPECT_EQ(device.GetConnectStatus(&status, nullptr), 0);
    EXPECT_EQ(status, VELTA_STATUS_UNKNOWN);
    EXPECT_EQ(device.DisConnect(), 0);
    device.GetConnectStatus(&status, nullptr);
    EXPECT_EQ(status, VELTA_STATUS_DISCONNECTED);
}

}  // namespace
