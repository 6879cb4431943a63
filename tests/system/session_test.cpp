// Sessions with their devices, from log-in to the return of a lost device. All of them live side by side and
// wait for the same online checks; the cases run in their order.
#include <gmock/gmock.h>
#include <veltasim/device.h>

#include <atomic>
#include <memory>
#include <thread>

#include "plugin.h"

using namespace host;
using testing::ElementsAre;
using testing::IsEmpty;
using veltasim::Device;
using veltasim::PictureSize;

namespace {

constexpr int kMany = 40;

std::string smallPicture() {
    return std::string(veltasim::picture(PictureSize::Small));
}

/* A device and the session that belongs to it. */
struct Pair {
    explicit Pair(Library& library, veltasim::Options options = {})
        : device(std::move(options)), session(library) {
        device.start();
    }
    Device device;
    Session session;
};

struct Site {
    Library library;
    std::unique_ptr<Pair> door, refused, locked, dead, lost, eager, dying, leaving, crowded;
    std::vector<std::unique_ptr<Pair>> many;

    Site() {
        EXPECT_EQ(library.record->Init(), VELTA_OK);
        EXPECT_EQ(library.setConfig("SetEventSub", "1"), VELTA_OK);
        for (std::unique_ptr<Pair>* pair : {&door, &locked, &dead, &lost, &dying, &leaving}) {
            *pair = std::make_unique<Pair>(library);
        }
        refused = std::make_unique<Pair>(library);
        eager = std::make_unique<Pair>(
            library, veltasim::Options{.eventAtConnect = veltasim::AccessEvent{.picture = smallPicture()}});
        crowded = std::make_unique<Pair>(library, veltasim::Options{.maxStreams = 0});
        locked->device.lockUser(std::chrono::hours(1));
        dead->device.powerOff();
        for (int i = 0; i < kMany; ++i)
            many.push_back(std::make_unique<Pair>(library));

        refused->session.connectTo(refused->device.port(), "admin", "wrong");
        for (auto* pair : {&door, &locked, &dead, &lost, &eager, &dying, &leaving, &crowded}) {
            EXPECT_EQ((*pair)->session.connectTo((*pair)->device.port()), 0U);
        }
        for (auto& pair : many)
            pair->session.connectTo(pair->device.port());
    }
};

class Sessions : public testing::Test {
 protected:
    static std::unique_ptr<Site> site;

    static void SetUpTestSuite() {
        veltasim::raiseOpenFileLimit();
        site = std::make_unique<Site>();
    }
    static void TearDownTestSuite() {
        Library library;  // keeps it loaded while its sessions go
        site->many.clear();
        for (auto* pair : {&site->door, &site->refused, &site->locked, &site->dead, &site->lost, &site->eager,
                           &site->dying, &site->leaving, &site->crowded}) {
            pair->reset();
        }
        EXPECT_EQ(site->library.record->Uninit(), VELTA_OK);
        site.reset();
    }
};
std::unique_ptr<Site> Sessions::site;

TEST_F(Sessions, learnTheirStatus) {
    for (auto& pair : site->many)
        ASSERT_TRUE(pair->session.waitForStatus(VELTA_STATUS_ONLINE));
    for (auto* pair : {&site->door, &site->lost, &site->eager, &site->dying, &site->leaving}) {
        ASSERT_TRUE((*pair)->session.waitForStatus(VELTA_STATUS_ONLINE));
        EXPECT_THAT((*pair)->session.statusLog(), ElementsAre("0 "));
    }
    ASSERT_TRUE(site->refused->session.waitForStatus(VELTA_STATUS_REFUSED));
    EXPECT_THAT(site->refused->session.statusLog(), ElementsAre("11 OfflineHint=4"));
    ASSERT_TRUE(site->locked->session.waitForStatus(VELTA_STATUS_LOCKED));
    EXPECT_THAT(site->locked->session.statusLog(), ElementsAre("12 OfflineHint=5"));
    EXPECT_EQ(site->dead->session.status(), VELTA_STATUS_UNKNOWN);
    EXPECT_THAT(site->dead->session.statusLog(), IsEmpty());  // nothing changed
}

TEST_F(Sessions, loseTheirDevice) {
    ASSERT_EQ(site->lost->session.arm(), 0U);
    ASSERT_TRUE(site->lost->device.waitForStreams(1, kDeadline));
    site->lost->device.powerOff();  // found out by the next check, in the last cases
}

TEST_F(Sessions, receiveAnEventWithItsPicture) {
    Session& session = site->door->session;
    Device& device = site->door->device;
    ASSERT_EQ(session.arm(), 0U);
    EXPECT_EQ(session.arm(), 0U);
    ASSERT_TRUE(device.waitForStreams(1, kDeadline));
    const std::string picture(veltasim::picture(PictureSize::Large));
    device.sendAccessEvent({.name = "J\xc3\xbcrgen", .picture = picture});
    ASSERT_TRUE(session.waitForEvents(1));
    const Event event = session.events().at(0);
    EXPECT_EQ(event.instance, session.instance);
    EXPECT_THAT(event.base.payload, testing::HasSubstr("J\\u00fcrgen"));
    EXPECT_TRUE(event.jpeg() == picture);

    session.forgetEvents();
    device.sendAlarm({.eventType = "tamperDetection"});
    ASSERT_TRUE(session.waitForEvents(1));
    const Event alarm = session.events().at(0);
    EXPECT_STREQ(alarm.base.description, "Tamper detection alarm");
    EXPECT_EQ(alarm.picture, "");
}

TEST_F(Sessions, receiveAnEventThatComesWithTheResponseHeaders) {
    Session& session = site->eager->session;
    ASSERT_EQ(session.arm(), 0U);
    ASSERT_TRUE(session.waitForEvents(1));
    EXPECT_TRUE(session.events().at(0).jpeg() == smallPicture());
}

TEST_F(Sessions, outliveAnUnreadablePart) {
    Session& session = site->door->session;
    session.forgetEvents();
    site->door->device.sendRaw(
        "--velta_events\r\nContent-Type: application/json\r\nContent-Length: 9\r\n\r\n{\"a\": oops\r\n");
    site->door->device.sendAccessEvent({.picture = smallPicture()});
    ASSERT_TRUE(session.waitForEvents(1));
    EXPECT_TRUE(session.events().at(0).jpeg() == smallPicture());
}

TEST_F(Sessions, keepEventsOfManyDevicesApart) {
    for (auto& pair : site->many)
        ASSERT_EQ(pair->session.arm(), 0U);
    for (auto& pair : site->many)
        ASSERT_TRUE(pair->device.waitForStreams(1, kDeadline));
    constexpr size_t kEvents = 5;
    for (size_t round = 1; round <= kEvents; ++round) {
        for (auto& pair : site->many)
            pair->device.sendAccessEvent({.picture = smallPicture()});
        for (auto& pair : site->many)
            ASSERT_TRUE(pair->session.waitForEvents(round));
    }
    for (auto& pair : site->many) {
        const auto events = pair->session.events();
        EXPECT_EQ(events.size(), kEvents);
        for (const Event& event : events)
            EXPECT_EQ(event.base.devicePort, pair->device.port());
    }
}

TEST_F(Sessions, endAQuietStreamAtOnce) {
    Pair& quiet = *site->many[0];
    for (int i = 0; i < 20; ++i) {  // open, or still connecting
        ASSERT_EQ(quiet.session.cancel(), 0U);
        EXPECT_EQ(quiet.session.cancel(), 0xFFFFFFFFU);
        ASSERT_EQ(quiet.session.arm(), 0U);
    }
    ASSERT_EQ(quiet.session.cancel(), 0U);
    ASSERT_TRUE(quiet.device.waitForStreams(0, kDeadline));
    quiet.session.forgetEvents();
    ASSERT_EQ(quiet.session.arm(), 0U);
    ASSERT_TRUE(quiet.device.waitForStreams(1, kDeadline));
    quiet.device.sendAlarm();
    EXPECT_TRUE(quiet.session.waitForEvents(1));
}

TEST_F(Sessions, mayBeDestroyedInsideTheirOwnCallback) {
    Session& session = site->dying->session;
    std::atomic<int> calls{0};
    session.onEvent = [&](const Event&) {
        ++calls;
        EXPECT_EQ(session.destroy(), VELTA_OK);
    };
    ASSERT_EQ(session.arm(), 0U);
    ASSERT_TRUE(site->dying->device.waitForStreams(1, kDeadline));
    site->dying->device.sendAccessEvent({.picture = smallPicture()});
    site->dying->device.sendAccessEvent({.picture = smallPicture()});
    ASSERT_TRUE(session.waitForEvents(1));
    EXPECT_TRUE(site->dying->device.waitForStreams(0, kDeadline));
    EXPECT_EQ(calls, 1);
}

TEST_F(Sessions, areNotDestroyedUnderADelivery) {
    Session& session = site->leaving->session;
    std::atomic<bool> inside{false};
    std::atomic<bool> letGo{false};
    std::atomic<bool> destroyed{false};
    session.onEvent = [&](const Event&) {
        inside = true;
        while (!letGo)
            std::this_thread::sleep_for(1ms);
        EXPECT_FALSE(destroyed);
        // Other instances come and go meanwhile.
        void* other = nullptr;
        EXPECT_EQ(site->library.record->CreateInstance(&other), VELTA_OK);
        EXPECT_EQ(site->library.record->DestroyInstance(other), VELTA_OK);
    };
    ASSERT_EQ(session.arm(), 0U);
    ASSERT_TRUE(site->leaving->device.waitForStreams(1, kDeadline));
    site->leaving->device.sendAlarm();
    while (!inside)
        std::this_thread::sleep_for(1ms);
    std::thread destroyer([&] {
        session.destroy();
        destroyed = true;
    });
    EXPECT_TRUE(site->leaving->device.waitForStreams(0, kDeadline));
    letGo = true;
    destroyer.join();
    EXPECT_TRUE(session.waitForEvents(1));
}

TEST_F(Sessions, surviveADeviceWithoutAFreeStream) {
    Session& session = site->crowded->session;
    EXPECT_EQ(session.arm(), 0U);
    EXPECT_TRUE(site->crowded->device.waitForRequest(
        [](const auto& r) { return r.target == "/VELTA/Event/notification/alertStream" && !r.user.empty(); },
        kDeadline));
    EXPECT_EQ(session.cancel(), 0U);
}

TEST_F(Sessions, mayReconnectWhileRequestsRun) {
    Pair& pair = *site->many[1];
    std::atomic<bool> stop{false};
    std::thread requests([&] {
        while (!stop)
            pair.session.request("GET", "/VELTA/System/deviceInfo?devIndex=1");
    });
    for (int i = 0; i < 20; ++i)
        EXPECT_EQ(pair.session.connectTo(pair.device.port()), 0U);
    stop = true;
    requests.join();
}

TEST_F(Sessions, goOfflineWithTheirDevice) {
    Pair& lost = *site->lost;
    ASSERT_TRUE(lost.session.waitForStatus(VELTA_STATUS_UNKNOWN));
    EXPECT_THAT(lost.session.statusLog(), ElementsAre("0 ", "-1 "));
    EXPECT_EQ(lost.session.cancel(), VELTA_E_OFFLINE);  // which leaves the callback in place
}

TEST_F(Sessions, returnWithTheirDeviceAndAreArmedAgain) {
    Pair& lost = *site->lost;
    lost.device.powerOn();
    ASSERT_TRUE(lost.session.waitForStatus(VELTA_STATUS_ONLINE));
    EXPECT_THAT(lost.session.statusLog(), ElementsAre("0 ", "-1 ", "0 "));
    ASSERT_TRUE(lost.device.waitForStreams(1, kDeadline));
    lost.device.sendAccessEvent({.picture = smallPicture()});
    ASSERT_TRUE(lost.session.waitForEvents(1));
    EXPECT_TRUE(lost.session.events().at(0).jpeg() == smallPicture());
}

}  // namespace
