#include "control_orders.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "control_events.h"
#include "control_views.h"
#include "url.h"

namespace veltasim {
namespace {

Fault faultFrom(const Json::Value& json) {
    auto fault = parseFault(json["kind"].asString());
    if (!fault) throw ControlRefused(400, "unknown kind of fault: " + json["kind"].asString());
    fault->amount = json.get("amount", Json::Int64(fault->amount)).asInt64();
    fault->path = json["path"].asString();
    fault->count = json.get("count", Fault::kForEver).asUInt();
    return *fault;
}

Json::Value forgetRequests(const Order& order) {
    for (Device* device : order.devices)
        device->forgetRequests();
    return Json::objectValue;
}

Json::Value setFault(const Order& order) {
    const Fault fault = faultFrom(order.body);
    for (Device* device : order.devices)
        device->setFault(fault);
    return Json::objectValue;
}

Json::Value clearFaults(const Order& order) {
    for (Device* device : order.devices)
        device->clearFaults();
    return Json::objectValue;
}

Json::Value endFault(const Order& order) {
    const FaultKind kind = faultFrom(order.body).kind;
    for (Device* device : order.devices)
        device->clearFaults(kind);
    return Json::objectValue;
}

Json::Value sendEvents(const Order& order) {
    const bool isAlarm = order.body.isMember("eventType");
    const Alarm alarm = isAlarm ? alarmFrom(order.body) : Alarm();
    const AccessEvent event = isAlarm ? AccessEvent() : accessEventFrom(order.body);
    const unsigned count = order.body.get("count", 1).asUInt();
    for (unsigned i = 0; i < count; ++i) {
        for (Device* device : order.devices) {
            if (isAlarm)
                device->sendAlarm(alarm);
            else
                device->sendAccessEvent(event);
        }
    }
    return Json::objectValue;
}

Json::Value switchPower(const Order& order) {
    std::optional<std::chrono::milliseconds> back;
    if (order.body.isMember("seconds"))
        back = std::chrono::milliseconds(static_cast<int64_t>(order.body["seconds"].asDouble() * 1000));
    const bool on = order.body["on"].asBool();
    for (Device* device : order.devices) {
        if (on)
            device->powerOn();
        else
            device->powerOff(back);
    }
    return Json::objectValue;
}

Json::Value endStreams(const Order& order) {
    const std::string how = order.body["end"].asString();
    if (how != "at-once" && how != "after-queue")
        throw ControlRefused(400, "\"end\" is \"at-once\" or \"after-queue\"");
    for (Device* device : order.devices)
        device->endStreams(how == "at-once" ? Device::StreamEnd::AtOnce : Device::StreamEnd::AfterQueue);
    return Json::objectValue;
}

Json::Value lockUser(const Order& order) {
    const std::chrono::seconds duration(order.body["seconds"].asUInt());
    for (Device* device : order.devices)
        device->lockUser(duration);
    return Json::objectValue;
}

Json::Value setClock(const Order& order) {
    for (Device* device : order.devices) {
        if (order.body.isMember("time"))
            device->setDeviceTime(
                std::chrono::sys_seconds(std::chrono::seconds(order.body["time"].asUInt())));
        if (order.body.isMember("timeZone")) device->setTimeZone(order.body["timeZone"].asString());
    }
    return Json::objectValue;
}

Json::Value setAnswer(const Order& order) {
    const std::string path = order.body["path"].asString();
    if (!path.starts_with('/')) throw ControlRefused(400, "\"path\" is missing");
    const std::string method = order.body.get("method", "GET").asString();
    const int status = order.body.get("status", 200).asInt();
    if (status < 200 || status > 599) throw ControlRefused(400, "no HTTP status: " + std::to_string(status));
    for (Device* device : order.devices)
        device->setAnswer(method, path, status, order.body["body"].asString());
    return Json::objectValue;
}

Json::Value clearAnswers(const Order& order) {
    for (Device* device : order.devices)
        device->clearAnswers();
    return Json::objectValue;
}

Json::Value toJson(const Passage& passage) {
    Json::Value json;
    json["granted"] = passage.isGranted();
    json["outcome"] = std::string(nameOf(passage.outcome));
    json["minor"] = static_cast<int>(passage.outcome);
    json["doorNo"] = passage.doorNo;
    json["employeeNo"] = passage.employeeNo;
    json["serialNo"] = Json::UInt64(passage.serialNo);
    return json;
}

Json::Value presentCard(const Order& order) {
    return toJson(order.devices.front()->presentCard(order.body["cardNo"].asString(),
                                                     order.body.get("reader", 1U).asUInt()));
}

Json::Value presentFace(const Order& order) {
    return toJson(order.devices.front()->presentFace(order.body["employeeNo"].asString(),
                                                     order.body.get("reader", 1U).asUInt()));
}

Json::Value commandDoor(const Order& order) {
    order.devices.front()->commandDoor(order.body["doorNo"].asUInt(), order.body["command"].asString());
    return Json::objectValue;
}

constexpr std::array kCommands{
    Command{"GET", "/control/devices", listDevices, true},
    Command{"GET", "/control/overview", showOverview, false},
    Command{"GET", "/control/persons", listPersons, false},
    Command{"GET", "/control/events", listEvents, false},
    Command{"GET", "/control/requests", listRequests, false},
    Command{"GET", "/control/request", showRequest, false},
    Command{"DELETE", "/control/requests", forgetRequests, true},
    Command{"GET", "/control/faults", listFaults, false},
    Command{"POST", "/control/fault", setFault, true},
    Command{"DELETE", "/control/fault", endFault, true},
    Command{"DELETE", "/control/faults", clearFaults, true},
    Command{"POST", "/control/event", sendEvents, true},
    Command{"POST", "/control/card", presentCard, false},
    Command{"POST", "/control/face", presentFace, false},
    Command{"POST", "/control/door", commandDoor, false},
    Command{"POST", "/control/power", switchPower, true},
    Command{"POST", "/control/streams", endStreams, true},
    Command{"POST", "/control/lock", lockUser, true},
    Command{"POST", "/control/clock", setClock, true},
    Command{"POST", "/control/answer", setAnswer, true},
    Command{"DELETE", "/control/answers", clearAnswers, true},
};

}  // namespace

std::string Order::text(const char* name) const {
    return queryValue(target, name);
}

uint64_t Order::number(const char* name, uint64_t otherwise) const {
    const std::string digits = text(name);
    if (digits.empty()) return otherwise;
    uint64_t number = 0;
    const char* end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, number);
    if (error != std::errc() || stop != end) throw ControlRefused(400, "not a number: " + digits);
    return number;
}

const Command* findCommand(std::string_view method, std::string_view path) {
    const auto* command = std::find_if(kCommands.begin(), kCommands.end(), [&](const Command& row) {
        return row.method == method && row.path == path;
    });
    return command == kCommands.end() ? nullptr : command;
}

}  // namespace veltasim
