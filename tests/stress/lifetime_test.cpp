// The ends of sessions and of the library at the worst moments, and a system that refuses what is asked of it.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <malloc.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <veltasim/device.h>

#include <array>
#include <future>
#include <memory>
#include <thread>

#include "interposed.h"
#include "plugin.h"
#include "process.h"

using namespace host;
using namespace stress;
using testing::HasSubstr;
using veltasim::Device;
using veltasim::FaultKind;

namespace {

const std::string kCheckPath = "/VELTA/Security/userCheck";
const std::string kStreamPath = "/VELTA/Event/notification/alertStream";

/* Whether a request with credentials has come. */
bool asked(const Device& device, const std::string& path) {
    const auto fits = [&](const auto& request) { return request.path() == path && !request.user.empty(); };
    return device.waitForRequest(fits, kDeadline).has_value();
}

/* By the handle: the session may end meanwhile. */
std::string request(const VELTA_GatewayTable* gateway, void* instance, const std::string& path) {
    std::string text = R"({"method":"GET","uri":")" + path + R"(?devIndex=1","body":""})";
    std::string answer(4096, '\0');
    EXPECT_EQ(gateway->VELTA_Getway(instance, text.data(), answer.data(), 4096, nullptr), VELTA_OK);
    return answer.c_str();
}

/* Sessions of a library that is started, each with a device. */
struct Rig {
    explicit Rig(size_t count, const veltasim::Options& options = {}) {
        EXPECT_EQ(library->record->Init(), VELTA_OK);
        library->setConfig("SetEventSub", "1");
        for (size_t i = 0; i < count; ++i) {
            devices.push_back(std::make_unique<Device>(options));
            devices.back()->start();
            sessions.push_back(std::make_unique<Session>(*library));
            EXPECT_EQ(sessions.back()->connectTo(devices.back()->port()), 0U);
        }
    }
    void armAll() {
        for (size_t i = 0; i < sessions.size(); ++i) {
            ASSERT_TRUE(sessions[i]->waitForStatus(VELTA_STATUS_ONLINE));
            ASSERT_EQ(sessions[i]->arm(), 0U);
            ASSERT_TRUE(devices[i]->waitForStreams(1, kDeadline));
        }
    }
    int stop() {
        for (auto& session : sessions)
            session->destroy();
        return library->record->Uninit();
    }

    std::unique_ptr<Library> library = std::make_unique<Library>();
    std::vector<std::unique_ptr<Device>> devices;
    std::vector<std::unique_ptr<Session>> sessions;
};

TEST(Lifetime, destroyingInTheCallbackWaitsForRequestsOnOtherThreads) {
    Rig rig(1);
    Session& session = *rig.sessions[0];
    Device& device = *rig.devices[0];
    rig.armAll();
    device.setFault({.kind = FaultKind::HangBefore, .path = "/VELTA/Held"});
    std::thread other([gateway = session.gateway, instance = session.instance] {
        EXPECT_THAT(request(gateway, instance, "/VELTA/Held"), HasSubstr("errorCode"));
    });
    ASSERT_TRUE(asked(device, "/VELTA/Held"));
    std::atomic<bool> destroyed{false};
    session.onEvent = [&](const Event&) {
        EXPECT_EQ(session.destroy(), VELTA_OK);
        destroyed = true;
    };
    device.sendAlarm();
    ASSERT_TRUE(device.waitForStreams(0, kDeadline));  // the destruction is under way
    EXPECT_FALSE(destroyed);
    device.clearFaults();
    other.join();
    EXPECT_TRUE(session.waitForEvents(1));
    EXPECT_EQ(rig.stop(), VELTA_OK);
}

TEST(Lifetime, destroyingInTheCallbackReleasesThoseWhoWaitForIt) {
    Rig rig(1);
    Session& session = *rig.sessions[0];
    rig.armAll();
    std::thread other;
    session.onEvent = [&](const Event&) {
        other = std::thread([event = session.event, instance = session.instance] {
            EXPECT_EQ(event->SetEventCallBack(instance, nullptr, nullptr), VELTA_OK);
        });
        ASSERT_TRUE(rig.devices[0]->waitForStreams(0, kDeadline));  // the cancel waits for this callback now
        EXPECT_EQ(session.destroy(), VELTA_OK);
    };
    rig.devices[0]->sendAlarm();
    ASSERT_TRUE(session.waitForEvents(1));
    other.join();
    EXPECT_EQ(rig.stop(), VELTA_OK);
}

TEST(Lifetime, whatConnectsWhileItIsDestroyedIsGone) {
    constexpr size_t kSessions = 16;
    Rig rig(2);
    Device& live = *rig.devices[0];
    Device& dead = *rig.devices[1];
    rig.sessions[1]->destroy();
    live.setFault({.kind = FaultKind::HangBefore, .path = kCheckPath});
    ASSERT_TRUE(asked(live, kCheckPath));  // the registry can't be changed
    std::vector<std::thread> threads;
    std::array<std::atomic<int>, kSessions> slept{};
    for (size_t i = 0; i < kSessions; ++i) {
        auto session = std::make_unique<Session>(*rig.library);
        threads.emplace_back([&, i, instance = session->instance, table = session->connect] {
            countSleeps(slept[i]);
            std::string url = "Connect=TCP/IP;Target=127.0.0.1;Port=" + std::to_string(dead.port()) +
                              ";DevIndex=late" + std::to_string(i) + ";";
            std::string text = "admin";
            EXPECT_EQ(table->Connect_V2(instance, url.data(), text.data(), text.data()), VELTA_OK);
        });
        ASSERT_TRUE(waitUntil([&] { return slept[i] > 0; }));
        threads.emplace_back([owned = std::move(session)] { EXPECT_EQ(owned->destroy(), VELTA_OK); });
    }
    live.clearFaults();
    for (std::thread& thread : threads)
        thread.join();
    dead.forgetRequests();
    for (int check = 0; check < 2; ++check) {
        live.forgetRequests();
        ASSERT_TRUE(asked(live, kCheckPath));
    }
    EXPECT_THAT(dead.requests(), testing::IsEmpty());
    EXPECT_EQ(rig.stop(), VELTA_OK);
}

TEST(Lifetime, aCancelNeverTakesTheCallbackOfALaterArming) {
    Rig rig(1);
    Session& session = *rig.sessions[0];
    rig.armAll();
    for (int round = 0; round < 200; ++round) {
        std::thread canceller([&] { session.cancel(); });
        std::thread armer([&] { session.arm(); });
        canceller.join();
        armer.join();
        ASSERT_EQ(session.arm(), 0U);
        session.forgetEvents();
        ASSERT_TRUE(waitUntil([&] {
            rig.devices[0]->sendAlarm();
            return !session.events().empty();
        })) << round;
    }
    EXPECT_EQ(rig.stop(), VELTA_OK);
}

TEST(Lifetime, aCheckThatHangsDelaysDestroyingOnly) {
    Rig rig(2);
    rig.devices[0]->setFault({.kind = FaultKind::HangBefore, .path = kCheckPath});
    ASSERT_TRUE(asked(*rig.devices[0], kCheckPath));
    auto checked = std::async(std::launch::async, [&] { return rig.sessions[0]->destroy(); });
    auto other = std::async(std::launch::async, [&] { return rig.sessions[1]->destroy(); });
    for (auto* end : {&checked, &other}) {
        ASSERT_EQ(end->wait_for(kDeadline), std::future_status::ready);
        EXPECT_EQ(end->get(), VELTA_OK);
    }
    EXPECT_EQ(rig.stop(), VELTA_OK);
}

TEST(Lifetime, hostMayExitWithoutUninit) {
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "the leak check of a process whose threads still run at its end fails by itself";
#endif
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        static Library library;
        library.record->Init();
        static Session session(library);
        session.connectTo(9);
        session.instance = nullptr;  // left alive
        exit(7);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 7);
}

void useAll(bool online) {
    Rig rig(2, {.maxRecordedRequests = 5});
    for (auto& session : rig.sessions) {
        session->request("GET", "/VELTA/System/deviceInfo?devIndex=1");
        session->request("GET", "/VELTA/System/deviceInfo?format=json");
        session->request("PUT", "/VELTA/System/deviceInfo?format=json",
                         R"({"DeviceInfo":{"deviceName":"Gate"}})");
        std::string inventory(8192, '\0');
        EXPECT_EQ(session->gateway->DeviceLoop(session->instance, inventory.data(), 8192), VELTA_OK);
    }
    if (online) {
        rig.armAll();
        rig.devices[0]->sendAccessEvent(
            {.picture = std::string(veltasim::picture(veltasim::PictureSize::Large))});
        EXPECT_TRUE(rig.sessions[0]->waitForEvents(1));
    }
    EXPECT_EQ(rig.stop(), VELTA_OK);
}

TEST(Lifetime, unloadingLeavesNothingBehind) {
    useAll(true);  // what libraries of the system keep once for the process
    const long threads = threadCount();
    const long descriptors = descriptorCount();
    const size_t bytes = mallinfo2().uordblks;
    for (const bool online : {false, false, false, true})
        useAll(online);
    EXPECT_TRUE(waitUntil([&] { return threadCount() == threads; })) << threadCount() - threads;
    EXPECT_EQ(descriptorCount(), descriptors);
    EXPECT_LT(mallinfo2().uordblks, bytes + (size_t{64} << 10));
}

/* Takes every descriptor that the process may still have. */
class DescriptorsExhausted {
 public:
    DescriptorsExhausted() {
        getrlimit(RLIMIT_NOFILE, &before_);
        rlimit few = before_;
        few.rlim_cur = 128;
        setrlimit(RLIMIT_NOFILE, &few);
        for (int fd = open("/dev/null", O_RDONLY); fd >= 0; fd = open("/dev/null", O_RDONLY))
            taken_.push_back(fd);
    }
    ~DescriptorsExhausted() {
        for (const int fd : taken_)
            close(fd);
        setrlimit(RLIMIT_NOFILE, &before_);
    }
    DescriptorsExhausted(const DescriptorsExhausted&) = delete;
    DescriptorsExhausted& operator=(const DescriptorsExhausted&) = delete;

 private:
    rlimit before_{};
    std::vector<int> taken_;
};

void runOutOfDescriptors(uint16_t port) {
    Library library;
    ASSERT_EQ(library.record->Init(), VELTA_OK);
    library.setConfig("SetEventSub", "1");
    {
        Session session(library);
        ASSERT_EQ(session.connectTo(port), 0U);
        ASSERT_TRUE(session.waitForStatus(VELTA_STATUS_ONLINE));
        {
            const DescriptorsExhausted exhausted;
            Session late(library);
            EXPECT_EQ(late.connectTo(port), 0U);  // contacts nobody
            for (const char* uri : {"/VELTA/System/deviceInfo?devIndex=1", "/VELTA/System/time?format=json"})
                EXPECT_THAT(session.request("GET", uri), HasSubstr("\"errorCode\"")) << uri;
            std::string inventory(8192, '\0');
            EXPECT_EQ(session.gateway->DeviceLoop(session.instance, inventory.data(), 8192), VELTA_OK);
            EXPECT_EQ(session.arm(), 0U);  // its thread runs, and ends
            EXPECT_EQ(session.cancel(), 0U);
        }
        EXPECT_THAT(session.request("GET", "/VELTA/System/deviceInfo?devIndex=1"), HasSubstr("<DeviceInfo"));
        EXPECT_EQ(session.arm(), 0U);
        EXPECT_TRUE(session.waitForEvents(1));
    }
    EXPECT_EQ(library.record->Uninit(), VELTA_OK);
}

TEST(Lifetime, runningOutOfDescriptorsIsSurvived) {
    int ports[2];
    ASSERT_EQ(pipe(ports), 0);
    const pid_t child = fork();  // the device must keep its own
    if (child == 0) {
        uint16_t port = 0;
        if (read(ports[0], &port, sizeof port) == sizeof port) runOutOfDescriptors(port);
        _exit(HasFailure() || port == 0 ? 1 : 0);
    }
    Device device({.eventAtConnect = veltasim::AccessEvent{}});
    device.start();
    const uint16_t port = device.port();
    EXPECT_EQ(write(ports[1], &port, sizeof port), static_cast<ssize_t>(sizeof port));
    close(ports[0]);
    close(ports[1]);
    int status = -1;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
}

TEST(Lifetime, refusedThreadsAreReported) {
    Library library;
    std::thread([] {}).join();  // a sanitizer starts a thread of its own with the first one
    const long threads = threadCount();
    for (const int started : {0, 1}) {
        const ThreadsRefused refused(started);
        EXPECT_EQ(library.record->Init(), VELTA_REFUSED) << started;
        EXPECT_TRUE(waitUntil([&] { return threadCount() == threads; })) << started;
    }
    Rig rig(1);
    Session& session = *rig.sessions[0];
    ASSERT_TRUE(session.waitForStatus(VELTA_STATUS_ONLINE));
    {
        const ThreadsRefused refused(0);
        EXPECT_EQ(session.arm(), 0xFFFFFFFFU);
        EXPECT_EQ(session.cancel(), 0xFFFFFFFFU);  // nothing was armed
    }
    rig.armAll();
    rig.devices[0]->sendAlarm();
    EXPECT_TRUE(session.waitForEvents(1));
    EXPECT_EQ(rig.stop(), VELTA_OK);
}

TEST(Lifetime, theWallClockMayJump) {
    wallClockReadings = 0;
    Rig rig(1);
    EXPECT_GT(wallClockReadings, 0);
    Session& session = *rig.sessions[0];
    Device& device = *rig.devices[0];
    rig.armAll();
    EXPECT_TRUE(device.waitForRequest(
        [](const auto& made) { return made.path() == kStreamPath && made.status == 200; }, kDeadline));
    size_t events = 0;
    for (const time_t jump : {time_t{400'000'000}, time_t{-1'500'000'000}, time_t{0}}) {
        wallClockJump = jump;
        device.forgetRequests();
        device.sendAlarm();
        EXPECT_TRUE(session.waitForEvents(++events));
        EXPECT_THAT(session.request("GET", "/VELTA/System/deviceInfo?devIndex=1"), HasSubstr("<DeviceInfo"));
        EXPECT_TRUE(asked(device, kCheckPath));
        for (const auto& made : device.requests())
            EXPECT_NE(made.path(), kStreamPath);  // the stream has lasted
    }
    EXPECT_THAT(session.statusLog(), testing::ElementsAre("0 "));
    EXPECT_EQ(rig.stop(), VELTA_OK);
}

}  // namespace
