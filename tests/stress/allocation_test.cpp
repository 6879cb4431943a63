// Every allocation of the library fails once, and then all of them from there on: the host gets a documented
// result, nothing is lost for good, and the device is never sent half a document. Each case runs in a process of its
// own: a plug-in that was stopped once checks no sessions any more.
#include <gmock/gmock.h>
#include <json/json.h>
#include <sys/wait.h>
#include <unistd.h>
#include <veltasim/device.h>
#include <velta/velta.h>

#include <functional>
#include <set>

#include "DevPlus/VeltaDev.h"
#include "process.h"
#include "refusal.h"

using namespace stress;
using testing::AnyOf;
using testing::IsSubsetOf;

namespace {

constexpr auto kOutOfMemory = static_cast<int>(VELTA_E_OUT_OF_MEMORY);
constexpr int kMostAllocations = 100'000;

/* Long enough that no text of it fits into a string object. */
constexpr const char* kAddress = "127.100.100.100";
constexpr const char* kUser = "administrator-of-the-site";
constexpr const char* kPassword = "velta-sim-with-a-long-one";

template <class Table>
Table* tableOf(xplugin_export_interface_t* record, void* instance, const char* key) {
    void* found = nullptr;
    EXPECT_EQ(record->QueryInterface(instance, key, &found), VELTA_OK);
    return static_cast<Table*>(found);
}

class Allocation : public testing::Test {
 protected:
    veltasim::Device device{{.bindAddress = kAddress,
                             .user = kUser,
                             .password = kPassword,
                             .maxFailedLogins = 0,
                             .heartbeat = std::chrono::milliseconds(0),
                             .maxRecordedRequests = 20}};
    xplugin_export_interface_t* record =
        static_cast<xplugin_export_interface_t*>(XPLUGIN_GetPluginInterface());
    void* instance = nullptr;
    VELTA_ConnectTable* connect = nullptr;
    VELTA_EventTable* event = nullptr;
    VELTA_GatewayTable* gateway = nullptr;
    std::atomic<int> events{0};
    std::atomic<int> oddStatuses{0};

    void SetUp() override {
        device.start();
        ASSERT_EQ(record->Init(), VELTA_OK);
        ASSERT_EQ(Plugin_SetConfig("SetEventSub", "1"), VELTA_OK);
        ASSERT_EQ(record->CreateInstance(&instance), VELTA_OK);
        connect = tableOf<VELTA_ConnectTable>(record, instance, VELTA_KEY_CONNECT);
        event = tableOf<VELTA_EventTable>(record, instance, VELTA_KEY_EVENT);
        gateway = tableOf<VELTA_GatewayTable>(record, instance, VELTA_KEY_GATEWAY);
        ASSERT_EQ(connectTo(instance), VELTA_OK);
    }
    void TearDown() override {
        EXPECT_EQ(record->DestroyInstance(instance), VELTA_OK);
        EXPECT_EQ(record->Uninit(), VELTA_OK);
    }

    int connectTo(void* session) {
        std::string url = std::string("Connect=TCP/IP;Target=") + kAddress +
                          ";Port=" + std::to_string(device.port()) +
                          ";DevIndex=the index of this session;DeviceName=The gate of the main building;";
        std::string user = kUser;
        std::string password = kPassword;
        const InLibrary call;
        return connect->Connect_V2(session, url.data(), user.data(), password.data());
    }
    int status() {
        int now = -99;
        EXPECT_EQ(connect->GetConnectStatus(instance, &now, nullptr), VELTA_OK);
        return now;
    }
    static void onEvent(void*, char*, tagEVENT_BASE_INFO*, tagEVENT_EXT_INFO*, void* user) {
        ++static_cast<Allocation*>(user)->events;
    }
    int arm() {
        const InLibrary call;
        return event->SetEventCallBack(instance, onEvent, this);
    }
    int cancel() { return event->SetEventCallBack(instance, nullptr, nullptr); }
    /* Sends an event with a picture and waits for it; false when memory ran out on its way. */
    bool eventArrives() {
        const int before = events;
        device.sendAccessEvent({.picture = std::string(veltasim::picture(veltasim::PictureSize::Medium))});
        EXPECT_TRUE(waitUntil([&] { return events > before || hasRefused(); }));
        return events > before;
    }

    /* act() with each allocation refused in turn; check(whether one was) afterwards, with memory again. */
    static void refuseEach(const std::function<void()>& act, const std::function<void()>& check) {
        for (const bool forGood : {false, true}) {
            long at = 1;
            for (bool refused = true; refused && at < kMostAllocations && !HasFailure(); ++at) {
                refuseAllocation(at, forGood);
                act();
                refused = endRefusal();
                check();
            }
            EXPECT_GT(at, 2);
            EXPECT_LT(at, kMostAllocations);
            std::printf("%ld allocations\n", at - 2);
        }
    }
};

struct Request {
    const char* name;
    const char* method;
    const char* uri;
    const char* body;
};
[[maybe_unused]] std::ostream& operator<<(std::ostream& out, const Request& request) {
    return out << request.name;
}

class AllocationInARequest : public Allocation, public testing::WithParamInterface<Request> {
 protected:
    std::string ask(int& result) {
        Json::Value envelope;
        envelope["method"] = GetParam().method;
        envelope["uri"] = GetParam().uri;
        envelope["body"] = GetParam().body;
        std::string text = envelope.toStyledString();
        static char answer[1 << 16];
        answer[0] = '\0';
        {
            const InLibrary call;
            result = gateway->VELTA_Getway(instance, text.data(), answer, sizeof answer, nullptr);
        }
        return answer;
    }
    /* What the device has received since this was asked last. Without queries: libcurl loses one when memory runs
     * out while it takes the address apart. */
    std::set<std::string> received() {
        std::set<std::string> found;
        for (const auto& request : device.requests())
            found.insert(request.method + " " + std::string(request.path()) + " " + request.body);
        device.forgetRequests();
        return found;
    }
};

TEST_P(AllocationInARequest, refused) {
    device.setAnswer("POST", "/VELTA/AccessControl/UserInfo/Record", 200, R"({"statusCode":1})");
    int result = -1;
    const std::string answer = ask(result);
    const std::set<std::string> sound = received();
    refuseEach([&] { ask(result); },
               [&] {
                   EXPECT_THAT(result, AnyOf(VELTA_OK, kOutOfMemory));
                   EXPECT_THAT(received(), IsSubsetOf(sound));
                   EXPECT_EQ(ask(result), answer);
                   EXPECT_EQ(result, VELTA_OK);
                   received();
               });
}

constexpr const char* kBatch =
    R"({"UserInfo":[{"employeeNo":"1","Valid":{"beginTime":"2026-01-01T00:00:00","endTime":"2036-01-01T00:00:00"}},)"
    R"({"employeeNo":"2","Valid":{"beginTime":"2026-01-01T00:00:00","endTime":"2036-01-01T00:00:00"}}]})";

INSTANTIATE_TEST_SUITE_P(
    Requests, AllocationInARequest,
    testing::Values(Request{"forwarded", "GET", "/VELTA/System/deviceInfo?devIndex=1", ""},
                    Request{
                        "forwardedName", "PUT", "/VELTA/System/deviceInfo?devIndex=1",
                        "<DeviceInfo><deviceName>The other gate of the building</deviceName></DeviceInfo>"},
                    Request{"translatedGet", "GET", "/VELTA/System/deviceInfo?format=json", ""},
                    Request{"translatedPut", "PUT", "/VELTA/AccessControl/Door/param/1?format=json",
                            R"({"DoorParam":{"doorName":"The gate of the main building","openDuration":5}})"},
                    Request{"network", "GET", "/VELTA/System/Network/interfaces?format=json", ""},
                    Request{"batch", "POST", "/VELTA/AccessControl/UserInfo/Record?format=json", kBatch}),
    [](const auto& param) { return param.param.name; });

TEST_F(Allocation, refusedInConnecting) {
    void* other = nullptr;
    int result = -1;
    refuseEach(
        [&] {
            {
                const InLibrary call;
                result = record->CreateInstance(&other);
            }
            if (result == VELTA_OK) result = connectTo(other);
        },
        [&] {
            EXPECT_THAT(result, AnyOf(VELTA_OK, VELTA_REFUSED, kOutOfMemory));
            EXPECT_EQ(record->DestroyInstance(std::exchange(other, nullptr)), VELTA_OK);
        });
}

TEST_F(Allocation, refusedInDestroying) {
    void* other = nullptr;
    int result = -1;
    const auto make = [&] {
        ASSERT_EQ(record->CreateInstance(&other), VELTA_OK);
        ASSERT_EQ(connectTo(other), VELTA_OK);
    };
    make();
    refuseEach(
        [&] {
            const InLibrary call;
            result = record->DestroyInstance(other);
        },
        [&] {
            EXPECT_EQ(result, VELTA_OK);
            make();
        });
    EXPECT_EQ(record->DestroyInstance(other), VELTA_OK);
}

TEST_F(Allocation, refusedInConfiguring) {
    int result = -1;
    refuseEach(
        [&] {
            const InLibrary call;
            result = Plugin_SetConfig(
                "NetZoneTableNotify",
                R"({"accessNetInfos":[{"protocolType":"VELTA","accessIp":"100.200.100.200"}]})");
        },
        [&] { EXPECT_THAT(result, AnyOf(VELTA_OK, VELTA_REFUSED)); });
}

TEST_F(Allocation, refusedInACheck) {
    refuseEach(runTimerOnce, [&] {
        // Without memory for it, libcurl leaves out a log-in.
        EXPECT_THAT(status(), AnyOf(VELTA_STATUS_ONLINE, VELTA_STATUS_UNKNOWN, VELTA_STATUS_REFUSED));
        runTimerOnce();
        EXPECT_EQ(status(), VELTA_STATUS_ONLINE);
        EXPECT_EQ(connectTo(instance), VELTA_OK);  // the name is to be written again
    });
}

TEST_F(Allocation, refusedFromArmingToDelivery) {
    runTimerOnce();
    ASSERT_EQ(status(), VELTA_STATUS_ONLINE);
    int result = -1;
    refuseEach(
        [&] {
            result = arm();
            if (result != VELTA_OK) return;
            EXPECT_TRUE(waitUntil([&] { return device.streamCount() == 1 || hasRefused(); }));
            if (device.streamCount() == 1) eventArrives();
        },
        [&] {
            EXPECT_THAT(result, AnyOf(VELTA_OK, VELTA_REFUSED, kOutOfMemory));
            EXPECT_THAT(cancel(), AnyOf(VELTA_OK, VELTA_REFUSED));
            EXPECT_TRUE(device.waitForStreams(0, std::chrono::seconds(120)));
            EXPECT_EQ(arm(), VELTA_OK);
            EXPECT_TRUE(device.waitForStreams(1, std::chrono::seconds(120)));
            refuseAllocation(0, false);  // forgets the last refusal
            EXPECT_TRUE(eventArrives());
            endRefusal();
            EXPECT_EQ(cancel(), VELTA_OK);
            EXPECT_TRUE(device.waitForStreams(0, std::chrono::seconds(120)));
        });
}

/* Each in a process of its own: the first Init of a process does more than the next one. */
TEST(AllocationInInit, refused) {
    enum { kGood, kBad, kNotRefused };
    int status = kGood;
    int at = 0;
    while (status == kGood && ++at < kMostAllocations) {
        const pid_t child = fork();
        if (child == 0) {
            auto* record = static_cast<xplugin_export_interface_t*>(XPLUGIN_GetPluginInterface());
            std::thread([] {}).join();  // a sanitizer starts a thread of its own with the first one
            const long threads = threadCount();
            refuseAllocation(at, false);
            int result = -1;
            {
                const InLibrary call;
                result = record->Init();
            }
            const bool refused = endRefusal();
            const bool stopped = record->Uninit() == result;  // there is nothing to stop after a failure
            const bool good = stopped && waitUntil([threads] { return threadCount() == threads; });
            _exit(!good ? kBad : refused ? kGood : kNotRefused);
        }
        ASSERT_EQ(waitpid(child, &status, 0), child);
        status = WIFEXITED(status) ? WEXITSTATUS(status) : kBad;
    }
    EXPECT_EQ(status, kNotRefused) << "allocation " << at;
    EXPECT_GT(at, 1);
}

}  // namespace
