// What DeviceLoop tells of a device.
#include <cstring>

#include "answers.h"
#include "check.h"
#include "library.h"

namespace check {
namespace {

void members(Trial& trial) {
    Scene scene(
        trial,
        {.inventory = {
             .videoInputs = 1, .proxyChannels = 2, .audioChannels = 1, .ioInputs = 2, .ioOutputs = 3}});
    scene.device.setProxyOnline(2, false);
    const Json::Value found = inventory(trial, scene.session);
    trial.number("members", 12, found.size());
    trial.text("devIndex", "", found["devIndex"].asString());
    trial.holds("onlineStatus is true", found["onlineStatus"] == true);
    trial.text("devType", "VA204", found["devType"].asString());
    trial.contains("devVersion", "V1.4.2 ", found["devVersion"].asString());
    trial.text("serialNo", "VA204-000001", found["serialNo"].asString());
    trial.holds("active is true", found["active"] == true);
    trial.number("netZoneId", -1, found["netZoneId"].asInt());
    trial.number("port", scene.device.port(), found["port"].asInt());
    struct List {
        const char* name;
        unsigned size;
        const char* lastType;
        int lastNumber;
        const char* lastName;  // null: it has none
    };
    for (const List& list :
         {List{"videoChannels", 3, "digital", 2, nullptr}, List{"audioChannels", 1, "analog", 1, nullptr},
          List{"alarmInChannels", 2, "analog", 2, "AlarmInChan_1"},
          List{"alarmOutChannels", 3, "analog", 3, "AlarmOutChan_3"}}) {
        const Json::Value& channels = found[list.name];
        trial.must(trial.holds(std::string(list.name) + " is a list", channels.isArray()));
        trial.must(trial.number(list.name, list.size, channels.size()));
        const Json::Value& last = channels[list.size - 1];
        trial.text(std::string(list.name) + ": last type", list.lastType, last["channelType"].asString());
        trial.number(std::string(list.name) + ": last number", list.lastNumber, last["channelNo"].asInt());
        if (list.lastName != nullptr)
            trial.text(std::string(list.name) + ": last name", list.lastName, last["channelName"].asString());
    }
    trial.text("type of the first video channel", "analog",
               found["videoChannels"][0]["channelType"].asString());
    trial.text("status of the first camera", "true", found["videoChannels"][1]["channelStatus"].asString());
    trial.text("status of the second camera", "false", found["videoChannels"][2]["channelStatus"].asString());
}

void missingLists(Trial& trial) {
    Scene scene(trial, {.inventory = {.audioChannels = std::nullopt, .ioOutputs = std::nullopt}});
    const Json::Value found = inventory(trial, scene.session);
    trial.holds("audioChannels is null", found["audioChannels"].isNull());
    trial.holds("alarmOutChannels is null", found["alarmOutChannels"].isNull());
    trial.number("alarmInChannels", 2, found["alarmInChannels"].size());
    trial.number("videoChannels", 1, found["videoChannels"].size());
}

void expectOffline(Trial& trial, const Scene& scene, const std::string& when) {
    const Json::Value found = inventory(trial, scene.session);
    trial.number("members " + when, 2, found.size());
    trial.holds("onlineStatus is false " + when, found["onlineStatus"] == false);
    trial.text("devIndex " + when, "", found["devIndex"].asString());
}

void unreachable(Trial& trial) {
    Scene scene(trial);
    scene.device.setDocument("/VELTA/System/deviceInfo", "<DeviceInfo><model>VA204</model></DeviceInfo>");
    expectOffline(trial, scene, "when the device information lacks elements");
    scene.device.clearAnswers();
    scene.device.powerOff();
    expectOffline(trial, scene, "when the device is gone");
}

void disconnected(Trial& trial) {
    Scene scene(trial);
    scene.session.connection().DisConnect(scene.session.instance());
    const Json::Value found = inventory(trial, scene.session);
    trial.holds("onlineStatus is false", found["onlineStatus"] == false);
    trial.text("devType", "VA204", found["devType"].asString());
}

void malformed(Trial& trial) {
    Scene scene(trial);
    scene.device.setDocument("/VELTA/System/IO/inputs", "no XML");
    char text[1024];
    std::memset(text, '#', sizeof text);
    trial.code("DeviceLoop", kBadParameter,
               scene.session.gateway().DeviceLoop(scene.session.instance(), text, sizeof text));
}

// A text of n bytes gets n at most with its zero, so that its line feed is lost in every buffer.
void room(Trial& trial) {
    Scene scene(trial);
    for (const unsigned size : {1U, 10U, 100U, 4000U}) {
        char text[4096];
        std::memset(text, '#', sizeof text);
        const std::string what = "inventory in a buffer of " + std::to_string(size) + " bytes";
        trial.code(what, VELTA_OK, scene.session.gateway().DeviceLoop(scene.session.instance(), text, size));
        trial.holds(what + ": nothing is written behind it",
                    std::string(text + size, sizeof text - size).find_first_not_of('#') == std::string::npos);
        const std::string written(text, strnlen(text, sizeof text));
        if (size < 1000)
            trial.number(what + ": length", size - 1, written.size());
        else
            trial.holds(what + " ends with its brace", written.ends_with('}'));
    }
}

constexpr Check kChecks[] = {
    {"inventory", "members", "identity, state and the four channel lists, outputs named by their number",
     members},
    {"inventory", "missing-lists", "a resource that the device lacks leaves its list null", missingLists},
    {"inventory", "unreachable", "without device information it says offline and no more", unreachable},
    {"inventory", "disconnected", "after DisConnect it says offline", disconnected},
    {"inventory", "malformed", "a list that is no document gives 0x60000001", malformed},
    {"inventory", "room", "the text is cut to the buffer; one that fits loses its line feed", room},
};

}  // namespace

std::span<const Check> inventoryChecks() {
    return kChecks;
}

}  // namespace check
