// When an alert stream is open, and whose callback hears of it.
#include <atomic>
#include <chrono>
#include <thread>

#include "check.h"
#include "library.h"

namespace check {
namespace {

using namespace std::chrono_literals;

constexpr uint32_t kOffline = 0x20000009;

void mustClose(Trial& trial, const veltasim::Device& device, const std::string& when) {
    trial.must(
        trial.becomes("the alert stream is closed " + when, [&] { return device.streamCount() == 0; }));
}

void mustOpen(Trial& trial, const veltasim::Device& device, const std::string& when) {
    trial.must(trial.becomes("an alert stream is open " + when, [&] { return device.streamCount() == 1; }));
}

void offline(Trial& trial) {
    Scene scene(trial);
    trial.code("SetEventCallBack before the first check", kOffline, scene.session.arm(scene.session.inbox()));
    trial.code("cancelling before the first check", kOffline, scene.session.cancel());
    scene.session.connection().DisConnect(scene.session.instance());
    trial.code("SetEventCallBack after DisConnect", kOffline, scene.session.arm(scene.session.inbox()));
    trial.number("alert streams", 0, scene.device.streamCount());
}

void opensStream(Trial& trial) {
    ArmedScene scene(trial);
    trial.holds("the stream is opened with GET /VELTA/Event/notification/alertStream",
                scene.device
                    .waitForRequest(
                        [](const veltasim::RequestRecord& request) {
                            return request.method == "GET" &&
                                   request.path() == "/VELTA/Event/notification/alertStream";
                        },
                        1s)
                    .has_value());
    scene.device.sendAccessEvent();
    scene.receive(1);
}

void firstCallbackStays(Trial& trial) {
    Inbox second;
    ArmedScene scene(trial);
    trial.code("SetEventCallBack on an armed session", VELTA_OK, scene.session.arm(second));
    scene.device.sendAccessEvent();
    scene.receive(1);
    trial.number("events of the second callback", 0, second.events().size());
    trial.number("alert streams", 1, scene.device.streamCount());
}

void cancel(Trial& trial) {
    ArmedScene scene(trial);
    scene.device.sendAccessEvent();
    scene.receive(1);
    trial.code("cancelling", VELTA_OK, scene.session.cancel());
    mustClose(trial, scene.device, "after it");
    trial.code("cancelling once more", VELTA_REFUSED, scene.session.cancel());
    trial.number("status of the session", VELTA_STATUS_ONLINE, scene.session.status());
}

void cancelWithoutArming(Trial& trial) {
    Scene scene(trial);
    scene.session.mustReach(VELTA_STATUS_ONLINE);
    trial.code("cancelling on an online session that is not armed", VELTA_REFUSED, scene.session.cancel());
}

void armsAnew(Trial& trial) {
    Inbox second;
    ArmedScene scene(trial);
    trial.code("cancelling", VELTA_OK, scene.session.cancel());
    mustClose(trial, scene.device, "after it");
    trial.code("SetEventCallBack with another callback", VELTA_OK, scene.session.arm(second));
    mustOpen(trial, scene.device, "again");
    scene.device.sendAccessEvent();
    trial.becomes("the event reaches the second callback", [&] { return second.events().size() == 1; });
    trial.number("events of the first callback", 0, scene.inbox.events().size());
}

// Sends events as fast as they go, for as long as it lives.
class Flood {
 public:
    explicit Flood(veltasim::Device& device)
        : thread_([&device](const std::stop_token& stop) {
              while (!stop.stop_requested()) {
                  device.sendAccessEvent();
                  std::this_thread::sleep_for(1ms);
              }
          }) {}

 private:
    std::jthread thread_;
};

constexpr auto kSilence = 500ms;  // a callback that comes later than this is not noticed

void silentAfterCancel(Trial& trial) {
    ArmedScene scene(trial);
    const Flood flood(scene.device);
    scene.receive(5);
    trial.code("cancelling while events flow", VELTA_OK, scene.session.cancel());
    const size_t before = scene.inbox.events().size();
    std::this_thread::sleep_for(kSilence);
    trial.number("events after the cancel has returned", before, scene.inbox.events().size());
}

void silentAfterDestroy(Trial& trial) {
    ArmedScene scene(trial);
    const Flood flood(scene.device);
    scene.receive(5);
    trial.code("DestroyInstance while events flow", VELTA_OK, scene.session.destroy());
    const size_t before = scene.inbox.events().size();
    std::this_thread::sleep_for(kSilence);
    trial.number("events after DestroyInstance has returned", before, scene.inbox.events().size());
    mustClose(trial, scene.device, "by DestroyInstance");
}

void destroyInCallback(Trial& trial) {
    std::atomic<int> code{VELTA_REFUSED};
    std::atomic<bool> isFirst{true};
    ArmedScene scene(trial);
    trial.code("cancelling", VELTA_OK, scene.session.cancel());
    mustClose(trial, scene.device, "after it");
    scene.inbox.onEvent = [&](const Event&) {
        if (isFirst.exchange(false)) code = scene.session.destroy();
    };
    trial.must(trial.code("SetEventCallBack", VELTA_OK, scene.session.arm(scene.inbox)));
    mustOpen(trial, scene.device, "again");
    scene.device.sendAccessEvent();
    scene.receive(1);
    trial.code("DestroyInstance from inside the callback", VELTA_OK, code.load());
    mustClose(trial, scene.device, "by it");
    trial.code("Uninit afterwards", VELTA_OK, scene.plugin.stop());
}

void disconnectCloses(Trial& trial) {
    ArmedScene scene(trial);
    trial.code("DisConnect", VELTA_OK, scene.session.connection().DisConnect(scene.session.instance()));
    mustClose(trial, scene.device, "after DisConnect");
    trial.code("SetEventCallBack after it", kOffline, scene.session.arm(scene.inbox));
}

void comesBack(Trial& trial) {
    ArmedScene scene(trial);
    scene.device.powerOff();
    scene.session.mustReach(VELTA_STATUS_UNKNOWN);
    scene.device.powerOn();
    mustOpen(trial, scene.device, "again, without the host");
    scene.device.sendAccessEvent();
    scene.receive(1);
}

constexpr Check kChecks[] = {
    {"arming", "offline", "a session that is not online can't be armed: 0x20000009", offline},
    {"arming", "opens-stream", "an event callback opens the device's alert stream", opensStream, Pace::Waits},
    {"arming", "first-callback-stays", "a second callback on an armed session gives 0 and changes nothing",
     firstCallbackStays, Pace::Waits},
    {"arming", "cancel", "a cancel closes the stream; a second one is refused with -1", cancel, Pace::Waits},
    {"arming", "cancel-without-arming", "a cancel without arming is refused with -1", cancelWithoutArming,
     Pace::Waits},
    {"arming", "arms-anew", "after a cancel another callback can be set", armsAnew, Pace::Waits},
    {"arming", "silent-after-cancel", "no event comes once a cancel has returned", silentAfterCancel,
     Pace::Waits},
    {"arming", "silent-after-destroy", "no event comes once DestroyInstance has returned", silentAfterDestroy,
     Pace::Waits},
    {"arming", "destroy-in-callback", "a session may be destroyed from inside its own event callback",
     destroyInCallback, Pace::Waits},
    {"arming", "disconnect-closes", "DisConnect closes the stream", disconnectCloses, Pace::Waits},
    {"arming", "comes-back", "a session that comes back online is armed again with its callback", comesBack,
     Pace::Waits},
};

}  // namespace

std::span<const Check> armingChecks() {
    return kChecks;
}

}  // namespace check
