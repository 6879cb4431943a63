#include "control_orders.h"

#include <algorithm>
#include <array>

#include "control_events.h"

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

Json::Value toJson(const Fault& fault) {
    Json::Value json;
    json["kind"] = std::string(nameOf(fault.kind));
    json["amount"] = Json::Int64(fault.amount);
    json["path"] = fault.path;
    json["count"] = fault.count;
    return json;
}

Json::Value toJson(const RequestRecord& record) {
    Json::Value json;
    json["number"] = Json::UInt64(record.number);
    json["method"] = record.method;
    json["target"] = record.target;
    json["headers"] = Json::arrayValue;
    for (const auto& [name, value] : record.headers)
        json["headers"].append(std::string(name).append(": ").append(value));
    json["body"] = record.body;
    json["status"] = record.status;
    json["user"] = record.user;
    json["microseconds"] = Json::Int64(record.duration.count());
    return json;
}

Json::Value listDevices(const Order& order) {
    Json::Value list = Json::arrayValue;
    for (const Device* device : order.devices) {
        Json::Value json;
        json["url"] = device->url();
        json["name"] = device->deviceName();
        json["on"] = device->isOn();
        json["locked"] = device->isLocked();
        json["streams"] = Json::UInt64(device->streamCount());
        json["time"] = Json::Int64(device->deviceTime().time_since_epoch().count());
        json["timeZone"] = device->timeZone();
        json["outputsHigh"] = Json::arrayValue;
        for (int i = 1; i <= static_cast<int>(device->options().inventory.ioOutputs.value_or(0)); ++i) {
            if (device->outputIsHigh(i)) json["outputsHigh"].append(i);
        }
        json["doorsOpen"] = Json::arrayValue;
        for (unsigned i = 1; i <= device->options().doors; ++i) {
            if (device->doorIsOpen(i)) json["doorsOpen"].append(i);
        }
        json["lostEvents"] = Json::UInt64(device->lostEvents());
        list.append(json);
    }
    return list;
}

Json::Value listRequests(const Order& order) {
    Json::Value list = Json::arrayValue;
    for (const RequestRecord& record : order.devices.front()->requests()) {
        if (record.number > order.after) list.append(toJson(record));
    }
    return list;
}

Json::Value listFaults(const Order& order) {
    Json::Value list = Json::arrayValue;
    for (const Fault& fault : order.devices.front()->faults())
        list.append(toJson(fault));
    return list;
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

constexpr std::array kCommands{
    Command{"GET", "/control/devices", listDevices, true},
    Command{"GET", "/control/requests", listRequests, false},
    Command{"DELETE", "/control/requests", forgetRequests, true},
    Command{"GET", "/control/faults", listFaults, false},
    Command{"POST", "/control/fault", setFault, true},
    Command{"DELETE", "/control/faults", clearFaults, true},
    Command{"POST", "/control/event", sendEvents, true},
    Command{"POST", "/control/card", presentCard, false},
    Command{"POST", "/control/face", presentFace, false},
    Command{"POST", "/control/power", switchPower, true},
    Command{"POST", "/control/streams", endStreams, true},
    Command{"POST", "/control/lock", lockUser, true},
    Command{"POST", "/control/clock", setClock, true},
    Command{"POST", "/control/answer", setAnswer, true},
    Command{"DELETE", "/control/answers", clearAnswers, true},
};

}  // namespace

const Command* findCommand(std::string_view method, std::string_view path) {
    const auto* command = std::find_if(kCommands.begin(), kCommands.end(), [&](const Command& row) {
        return row.method == method && row.path == path;
    });
    return command == kCommands.end() ? nullptr : command;
}

}  // namespace veltasim
