// The configuration commands of the host.
#include <json/json.h>

#include <algorithm>
#include <chrono>
#include <thread>
#include <vector>

#include "answers.h"
#include "check.h"
#include "library.h"

namespace check {
namespace {

using namespace std::chrono_literals;

void commands(Trial& trial) {
    const Plugin plugin(trial);
    for (const char* head : {"SetMARLSDKLog", "InitListenPort", "SetEventSub", "SetMarlListen"}) {
        for (const char* message : {"1", "0", "-1", "", "no number"})
            trial.code(std::string(head) + " " + shown(message), VELTA_OK, plugin.setConfig(head, message));
    }
    trial.code("NetZoneTableNotify", VELTA_OK,
               plugin.setConfig("NetZoneTableNotify", R"({"accessNetInfos":[]})"));
}

void unknownHeads(Trial& trial) {
    const Plugin plugin(trial);
    for (const char* head : {"setEventSub", "SETEVENTSUB", "SetEventSub ", "SetEvent", "", "SetEventSub\n"})
        trial.code("Plugin_SetConfig of " + shown(head), VELTA_REFUSED, plugin.setConfig(head, "1"));
}

void nulls(Trial& trial) {
    const Plugin plugin(trial);
    trial.code("Plugin_SetConfig of a null head", VELTA_REFUSED, plugin.setConfig(nullptr, "1"));
    trial.code("Plugin_SetConfig of a null message", VELTA_REFUSED, plugin.setConfig("SetEventSub", nullptr));
}

struct ZoneStep {
    const char* message;
    int code;
    int zone;  // what the inventory says afterwards
};
constexpr ZoneStep kZoneSteps[] = {
    {R"({"accessNetInfos":[{"protocolType":"VELTA","accessIp":"10.1.2.3","id":2}]})", VELTA_OK, 2},
    {R"({"accessNetInfos":[{"protocolType":"VELTA","accessIp":"10.1.2.3","id":3},)"
     R"({"protocolType":"OTHER","accessIp":"10.1.2.4","id":4},)"
     R"({"protocolType":"VELTA","accessIp":"10.1.2.5","id":5}]})",
     VELTA_OK, 5},
    {"no JSON", VELTA_REFUSED, 5},
    {R"({"accessNetInfos":[{"protocolType":"VELTA","accessIp":"10.1.2.3","id":"six"}]})", VELTA_REFUSED, 5},
    {R"({"accessNetInfos":[{"protocolType":"VELTA","accessIp":{},"id":7}]})", VELTA_REFUSED, 5},
    {R"({"accessNetInfos":[{"protocolType":"OTHER","accessIp":"10.1.2.3","id":8}]})", VELTA_OK, -1},
    {R"({"accessNetInfos":[{"protocolType":"VELTA","accessIp":"10.1.2.3","id":9}]})", VELTA_OK, 9},
    {"{}", VELTA_OK, -1},
};

void netZone(Trial& trial) {
    Scene scene(trial);
    trial.number("zone of the inventory at first", -1, inventory(trial, scene.session)["netZoneId"].asInt());
    for (const ZoneStep& step : kZoneSteps) {
        const std::string what = std::string("NetZoneTableNotify ") + step.message;
        trial.code(what, static_cast<uint32_t>(step.code),
                   scene.plugin.setConfig("NetZoneTableNotify", step.message));
        trial.number("zone of the inventory after " + what, step.zone,
                     inventory(trial, scene.session)["netZoneId"].asInt());
    }
}

// Something that passes after this time is not noticed.
constexpr auto kOnItsWay = 1s;

bool hasEventOf(const Inbox& inbox, const std::string& person) {
    const auto events = inbox.events();
    return std::any_of(events.begin(), events.end(), [&](const Event& event) { return event.names(person); });
}

void eventSwitch(Trial& trial) {
    struct Step {
        const char* head;
        const char* message;
        bool isOn;
    };
    constexpr Step kSteps[] = {
        {"SetEventSub", "0", false}, {"SetMarlListen", "-1", true}, {"SetEventSub", "none", false},
        {"SetEventSub", "2", true},  {"SetMarlListen", "0", false}, {"SetMarlListen", "1", true},
    };
    ArmedScene scene(trial);
    scene.deliver("Before");
    for (const Step& step : kSteps) {
        const std::string what = std::string(step.head) + " " + step.message;
        trial.code(what, VELTA_OK, scene.plugin.setConfig(step.head, step.message));
        if (step.isOn) {
            scene.deliver("After " + what);
            continue;
        }
        scene.device.sendAccessEvent({.name = what});
        std::this_thread::sleep_for(kOnItsWay);
        trial.holds("no event passes after " + what, !hasEventOf(scene.inbox, what));
    }
}

void eventSwitchAtFirst(Trial& trial) {
    Scene scene(trial);
    const Inbox& inbox = scene.session.inbox();
    scene.session.mustReach(VELTA_STATUS_ONLINE);
    trial.must(trial.code("SetEventCallBack", VELTA_OK, scene.session.arm(scene.session.inbox())));
    trial.must(trial.becomes("an alert stream is open", [&] { return scene.device.streamCount() == 1; }));
    scene.device.sendAccessEvent();
    std::this_thread::sleep_for(kOnItsWay);
    trial.number("events", 0, inbox.events().size());
}

constexpr Check kChecks[] = {
    {"config", "commands", "the five commands are taken", commands},
    {"config", "unknown-heads", "any other command is refused with -1; names are compared exactly",
     unknownHeads},
    {"config", "nulls", "a null command or message is refused with -1", nulls},
    {"config", "net-zone", "the last VELTA entry sets the zone, none clears it, a bad message keeps it",
     netZone},
    {"config", "event-switch", "SetEventSub and SetMarlListen drive one switch; the last one wins",
     eventSwitch, Pace::Waits},
    {"config", "event-switch-at-first", "no event passes before the switch was set", eventSwitchAtFirst,
     Pace::Waits},
};

}  // namespace

std::span<const Check> configChecks() {
    return kChecks;
}

}  // namespace check
