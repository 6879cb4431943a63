#include <veltasim/control.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <stdexcept>

#include "http_server.h"
#include "json_text.h"
#include "listener.h"
#include "loop.h"

namespace veltasim {
namespace {

using Devices = std::vector<Device*>;

// Asks for something that is not there, or in a way that makes no sense.
struct Refused : std::runtime_error {
    Refused(int httpStatus, const std::string& what) : std::runtime_error(what), status(httpStatus) {}
    int status;
};

void set(std::string& to, const Json::Value& value) {
    if (!value.isString()) throw Refused(400, "text expected: " + value.toStyledString());
    to = value.asString();
}
void set(int& to, const Json::Value& value) {
    to = value.asInt();
}
void set(MoreMembers& to, const Json::Value& value) {
    for (const std::string& name : value.getMemberNames())
        to.emplace_back(name, value[name].toStyledString());
}

std::string pictureNamed(const std::string& name) {
    constexpr std::array<std::pair<std::string_view, PictureSize>, 3> kNames{
        {{"small", PictureSize::Small}, {"medium", PictureSize::Medium}, {"large", PictureSize::Large}}};
    const auto* found =
        std::find_if(kNames.begin(), kNames.end(), [&](const auto& row) { return row.first == name; });
    if (found == kNames.end()) throw Refused(400, "no picture of that size: " + name);
    return std::string(picture(found->second));
}

template <typename Event>
struct Field {
    const char* name;
    void (*assign)(Event&, const Json::Value&);
};

template <typename Event, auto member>
void assign(Event& event, const Json::Value& value) {
    set(event.*member, value);
}

template <typename Event>
void assignPicture(Event& event, const Json::Value& value) {
    event.picture = pictureNamed(value.asString());
}

constexpr std::array kAccessFields{
    Field<AccessEvent>{"majorEventType", assign<AccessEvent, &AccessEvent::majorEventType>},
    Field<AccessEvent>{"subEventType", assign<AccessEvent, &AccessEvent::subEventType>},
    Field<AccessEvent>{"name", assign<AccessEvent, &AccessEvent::name>},
    Field<AccessEvent>{"employeeNo", assign<AccessEvent, &AccessEvent::employeeNo>},
    Field<AccessEvent>{"cardNo", assign<AccessEvent, &AccessEvent::cardNo>},
    Field<AccessEvent>{"cardReaderNo", assign<AccessEvent, &AccessEvent::cardReaderNo>},
    Field<AccessEvent>{"doorNo", assign<AccessEvent, &AccessEvent::doorNo>},
    Field<AccessEvent>{"currentVerifyMode", assign<AccessEvent, &AccessEvent::currentVerifyMode>},
    Field<AccessEvent>{"attendanceStatus", assign<AccessEvent, &AccessEvent::attendanceStatus>},
    Field<AccessEvent>{"dateTime", assign<AccessEvent, &AccessEvent::dateTime>},
    Field<AccessEvent>{"moreMembers", assign<AccessEvent, &AccessEvent::moreMembers>},
    Field<AccessEvent>{"picture", assignPicture<AccessEvent>},
};

constexpr std::array kAlarmFields{
    Field<Alarm>{"eventType", assign<Alarm, &Alarm::eventType>},
    Field<Alarm>{"eventState", assign<Alarm, &Alarm::eventState>},
    Field<Alarm>{"eventDescription", assign<Alarm, &Alarm::eventDescription>},
    Field<Alarm>{"channelId", assign<Alarm, &Alarm::channelId>},
    Field<Alarm>{"dateTime", assign<Alarm, &Alarm::dateTime>},
    Field<Alarm>{"moreMembers", assign<Alarm, &Alarm::moreMembers>},
    Field<Alarm>{"picture", assignPicture<Alarm>},
};

template <typename Event, size_t count>
Event eventFrom(const Json::Value& json, const std::array<Field<Event>, count>& fields) {
    Event event;
    for (const std::string& name : json.getMemberNames()) {
        if (name == "count") continue;
        const auto* field =
            std::find_if(fields.begin(), fields.end(), [&](const auto& row) { return row.name == name; });
        if (field == fields.end()) throw Refused(400, "unknown member: " + name);
        field->assign(event, json[name]);
    }
    return event;
}

Fault faultFrom(const Json::Value& json) {
    auto fault = parseFault(json["kind"].asString());
    if (!fault) throw Refused(400, "unknown kind of fault: " + json["kind"].asString());
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

struct Order {
    const Devices& devices;  // those that it is for
    const Json::Value& body;
    uint64_t after;
};

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
    const Alarm alarm = isAlarm ? eventFrom(order.body, kAlarmFields) : Alarm();
    const AccessEvent event = isAlarm ? AccessEvent() : eventFrom(order.body, kAccessFields);
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
        throw Refused(400, "\"end\" is \"at-once\" or \"after-queue\"");
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
    if (!path.starts_with('/')) throw Refused(400, "\"path\" is missing");
    const std::string method = order.body.get("method", "GET").asString();
    const int status = order.body.get("status", 200).asInt();
    if (status < 200 || status > 599) throw Refused(400, "no HTTP status: " + std::to_string(status));
    for (Device* device : order.devices)
        device->setAnswer(method, path, status, order.body["body"].asString());
    return Json::objectValue;
}

Json::Value clearAnswers(const Order& order) {
    for (Device* device : order.devices)
        device->clearAnswers();
    return Json::objectValue;
}

struct Command {
    std::string_view method;
    std::string_view path;
    Json::Value (*run)(const Order&);
    bool forAll;  // unless one device is named; otherwise for the first
};

constexpr std::array kCommands{
    Command{"GET", "/control/devices", listDevices, true},
    Command{"GET", "/control/requests", listRequests, false},
    Command{"DELETE", "/control/requests", forgetRequests, true},
    Command{"GET", "/control/faults", listFaults, false},
    Command{"POST", "/control/fault", setFault, true},
    Command{"DELETE", "/control/faults", clearFaults, true},
    Command{"POST", "/control/event", sendEvents, true},
    Command{"POST", "/control/power", switchPower, true},
    Command{"POST", "/control/streams", endStreams, true},
    Command{"POST", "/control/lock", lockUser, true},
    Command{"POST", "/control/clock", setClock, true},
    Command{"POST", "/control/answer", setAnswer, true},
    Command{"DELETE", "/control/answers", clearAnswers, true},
};

uint64_t numberFrom(const std::string& text) {
    uint64_t number = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || stop != end) throw Refused(400, "not a number: " + text);
    return number;
}

Json::Value obey(const Devices& devices, const Exchange& exchange) {
    const RequestRecord& request = exchange.record;
    const auto* command = std::find_if(kCommands.begin(), kCommands.end(), [&](const Command& row) {
        return row.method == request.method && row.path == request.path();
    });
    if (command == kCommands.end()) throw Refused(404, "unknown: " + request.method + " " + request.target);

    Json::Value body = Json::objectValue;
    if (!request.body.empty() && (!parseJson(request.body, body) || !body.isObject()))
        throw Refused(400, "the body is not a JSON object");
    Devices chosen = devices;
    if (const std::string index = exchange.query("device"); !index.empty())
        chosen = {devices.at(numberFrom(index))};
    else if (!command->forAll)
        chosen.resize(1);
    const std::string after = exchange.query("after");
    return command->run({chosen, body, after.empty() ? 0 : numberFrom(after)});
}

Reply replyTo(const Devices& devices, const Exchange& exchange) {
    int status = 400;
    Json::Value answer;
    try {
        return {200, kJsonType, obey(devices, exchange).toStyledString()};
    } catch (const Refused& refused) {
        status = refused.status;
        answer["error"] = refused.what();
    } catch (const std::out_of_range&) {
        answer["error"] = "no such device";
    } catch (const std::exception& error) {  // a member of the wrong type
        answer["error"] = error.what();
    }
    return {status, kJsonType, answer.toStyledString()};
}

}  // namespace

class ControlServer::Impl {
 public:
    Impl(Devices devices, uint16_t port) : devices_(std::move(devices)), listener_("127.0.0.1", port) {
        constexpr size_t kMaxBody = 1U << 20U;
        server_.emplace(loop_, listener_.accepting(), kMaxBody,
                        [this](Exchange& exchange) { exchange.answer(replyTo(devices_, exchange)); });
        loop_.start();
    }
    ~Impl() {
        loop_.stop();
        server_.reset();
    }

    uint16_t port() const { return listener_.port(); }

 private:
    const Devices devices_;
    Listener listener_;
    Loop loop_;
    std::optional<HttpServer> server_;
};

ControlServer::ControlServer(Devices devices, uint16_t port)
    : impl_(std::make_unique<Impl>(std::move(devices), port)) {}
ControlServer::~ControlServer() = default;
uint16_t ControlServer::port() const {
    return impl_->port();
}
std::string ControlServer::url() const {
    return "http://127.0.0.1:" + std::to_string(port());
}

}  // namespace veltasim
