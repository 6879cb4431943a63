// Which messages of the alert stream become events, in which order, and on which thread.
#include <unistd.h>

#include <chrono>
#include <set>
#include <thread>

#include "check.h"
#include "library.h"

namespace check {
namespace {

using namespace std::chrono_literals;

constexpr auto kApart = 300ms;  // so that two messages hardly ever come in one chunk

void arguments(Trial& trial) {
    ArmedScene scene(trial);
    scene.device.sendAccessEvent();
    scene.receive(1);
    const Event event = scene.inbox.events()[0];
    trial.holds("the callback gets the handle of the instance", event.instance == scene.session.instance());
    trial.text("source", "D_1", event.sourceId);
    trial.holds("the callback does not run on a thread of the host", event.thread != gettid());
}

void inOrder(Trial& trial) {
    constexpr size_t kEvents = 30;
    ArmedScene scene(trial);
    for (size_t i = 0; i < kEvents; ++i) {
        scene.device.sendAccessEvent({.name = std::to_string(i)});
        // Of two events in one chunk the second is lost.
        scene.receive(i + 1);
    }
    const auto events = scene.inbox.events();
    trial.must(trial.number("events", kEvents, events.size()));
    for (size_t i = 0; i < kEvents; ++i)
        trial.holds("event " + std::to_string(i + 1) + " comes in its turn",
                    events[i].names(std::to_string(i)));
}

// Each of these is followed by a good event, so that there is something to wait for.
void dropped(Trial& trial) {
    struct Row {
        const char* what;
        veltasim::MoreMembers members;
    };
    const Row rows[] = {
        {"an alarm without a time", {{"dateTime", "null"}}},
        {"an alarm whose time is a number", {{"dateTime", "5"}}},
        {"an alarm of another address", {{"ipAddress", "\"192.0.2.1\""}}},
        {"an alarm of another port", {{"portNo", "1"}}},
        {"an alarm without an address", {{"ipAddress", "\"\""}}},
        {"an alarm whose address is a number", {{"ipAddress", "1"}}},
    };
    ArmedScene scene(trial);
    for (const Row& row : rows) {
        scene.device.sendAlarm({.moreMembers = row.members});
        std::this_thread::sleep_for(kApart);
        scene.deliver(row.what);
        for (const Event& event : scene.inbox.events())
            trial.must(trial.holds(std::string(row.what) + " brings no event",
                                   event.textAt(12, 10240).starts_with(",\"AccessControllerEvent\":")));
    }
}

void heartbeats(Trial& trial) {
    ArmedScene scene(trial);
    for (int i = 0; i < 3; ++i) {
        scene.device.sendHeartbeat();
        std::this_thread::sleep_for(kApart);
    }
    scene.deliver("Ada Example");
    for (const Event& event : scene.inbox.events())
        trial.holds("a heartbeat brings no event", event.names("Ada Example"));
}

void inPieces(Trial& trial) {
    ArmedScene scene(trial);
    scene.device.setFault({.kind = veltasim::FaultKind::SlowBytes,
                           .amount = 4000,
                           .path = "/VELTA/Event/notification/alertStream"});
    const std::string jpeg(veltasim::picture(veltasim::PictureSize::Small));
    scene.device.sendAccessEvent({.picture = jpeg});
    scene.receive(1);
    const Event event = scene.inbox.events()[0];
    trial.holds("the event is whole", event.names("Ada Example"));
    trial.holds("its picture is whole", event.data.find(jpeg) != std::string::npos);
}

void eachToItsSession(Trial& trial) {
    constexpr auto kNone = std::chrono::milliseconds::zero();
    veltasim::Device other({.heartbeat = kNone});
    other.start();
    Inbox otherInbox;
    Scene scene(trial, {.heartbeat = kNone});
    Session otherSession(trial, scene.plugin);
    otherSession.mustConnect({other.port()});
    scene.plugin.passEvents();
    scene.session.mustReach(VELTA_STATUS_ONLINE);
    otherSession.mustReach(VELTA_STATUS_ONLINE);
    Inbox& inbox = scene.session.inbox();
    trial.code("SetEventCallBack", VELTA_OK, scene.session.arm(inbox));
    trial.code("SetEventCallBack of the other", VELTA_OK, otherSession.arm(otherInbox));
    trial.must(trial.becomes("both alert streams are open",
                             [&] { return scene.device.streamCount() == 1 && other.streamCount() == 1; }));
    constexpr size_t kEvents = 10;
    for (size_t i = 1; i <= kEvents; ++i) {
        scene.device.sendAccessEvent({.name = "Here"});
        other.sendAccessEvent({.name = "There"});
        trial.must(trial.becomes("both events come", [&] {
            return inbox.events().size() == i && otherInbox.events().size() == i;
        }));
    }
    std::set<pid_t> threads;
    for (const Event& event : inbox.events()) {
        trial.holds("an event comes to its own session", event.names("Here"));
        threads.insert(event.thread);
    }
    for (const Event& event : otherInbox.events()) {
        trial.holds("an event of the other device comes to its own session", event.names("There"));
        threads.insert(event.thread);
    }
    trial.number("threads on which the callbacks ran", 1, threads.size());
    trial.code("DestroyInstance of the other", VELTA_OK, otherSession.destroy());
}

constexpr Check kChecks[] = {
    {"events", "arguments", "the callback gets the handle, and \"D_\" with the channel", arguments,
     Pace::Waits},
    {"events", "in-order", "events come once each, in the order of their arrival", inOrder, Pace::Waits},
    {"events", "dropped", "alarms without a time, or of an unknown device, are dropped", dropped,
     Pace::Waits},
    {"events", "heartbeats", "heartbeats bring no event", heartbeats, Pace::Waits},
    {"events", "in-pieces", "an event is put together from however small pieces", inPieces, Pace::Waits},
    {"events", "each-to-its-session", "events come to their device's session, all on one thread",
     eachToItsSession, Pace::Waits},
};

}  // namespace

std::span<const Check> eventChecks() {
    return kChecks;
}

}  // namespace check
