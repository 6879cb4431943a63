#include "control_views.h"

#include "control_events.h"
#include "pictures.h"

namespace veltasim {
namespace {

constexpr size_t kMostShown = 200;

template <typename Items, typename ToJson>
Json::Value listOf(const Items& items, ToJson toJson) {
    Json::Value list = Json::arrayValue;
    for (const auto& item : items)
        list.append(toJson(item));
    return list;
}

Json::Value faultJson(const Fault& fault) {
    Json::Value json;
    json["kind"] = std::string(nameOf(fault.kind));
    json["amount"] = Json::Int64(fault.amount);
    json["path"] = fault.path;
    json["count"] = fault.count;
    return json;
}

Json::Value briefJson(const RequestRecord& record) {
    Json::Value json;
    json["number"] = Json::UInt64(record.number);
    json["method"] = record.method;
    json["target"] = record.target;
    json["status"] = record.status;
    json["user"] = record.user;
    json["microseconds"] = Json::Int64(record.duration.count());
    return json;
}

Json::Value requestJson(const RequestRecord& record) {
    Json::Value json = briefJson(record);
    json["headers"] =
        listOf(record.headers, [](const auto& header) { return header.first + ": " + header.second; });
    json["body"] = record.body;
    json["answer"] = record.answer;
    return json;
}

Json::Value doorJson(const DoorView& door) {
    Json::Value json;
    json["name"] = door.name;
    json["state"] = std::string(door.state);
    json["openFor"] = Json::Int64(door.openFor.count());
    json["readerEnabled"] = door.readerEnabled;
    return json;
}

Json::Value subscriberJson(const SubscriberView& subscriber) {
    Json::Value json;
    json["address"] = subscriber.address;
    json["path"] = subscriber.path;
    json["seconds"] = Json::Int64(subscriber.connected.count());
    return json;
}

Json::Value personJson(const PersonView& person) {
    const auto same = [](const auto& value) { return value; };
    Json::Value json;
    json["employeeNo"] = person.employeeNo;
    json["name"] = person.name;
    json["userType"] = person.userType;
    json["cards"] = listOf(person.cards, same);
    json["faces"] = Json::UInt64(person.faces);
    json["fingerprints"] = Json::UInt64(person.fingerprints);
    json["doors"] = listOf(person.doors, same);
    json["begin"] = person.begin;
    json["end"] = person.end;
    json["isValidNow"] = person.isValidNow;
    return json;
}

void describe(Json::Value& json, const AccessEvent& event) {
    const auto outcome = outcomeOf(event.major, event.minor);
    json["dateTime"] = event.dateTime;
    json["eventType"] = "AccessControllerEvent";
    json["major"] = event.major;
    json["minor"] = event.minor;
    json["outcome"] = outcome ? std::string(nameOf(*outcome)) : "";
    json["granted"] = outcome && isGranted(*outcome);
    json["name"] = event.name;
    json["employeeNo"] = event.employeeNo;
    json["cardNo"] = event.cardNo;
    json["doorNo"] = event.doorNo;
    json["reader"] = event.cardReaderNo;
    json["verifyMode"] = event.verifyMode;
}

void describe(Json::Value& json, const Alarm& alarm) {
    json["dateTime"] = alarm.dateTime;
    json["eventType"] = alarm.eventType;
    json["state"] = alarm.eventState;
    json["description"] = alarm.eventDescription;
}

Json::Value reportJson(const Report& report) {
    Json::Value json;
    json["number"] = Json::UInt64(report.number);
    if (report.serialNo != 0) json["serialNo"] = Json::UInt64(report.serialNo);
    std::visit([&json](const auto& event) { describe(json, event); }, report.event);
    if (!report.picture.empty()) json["picture"] = std::string(nameOfPicture(report.picture));
    return json;
}

}  // namespace

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

Json::Value overviewOf(const Device& device) {
    const Overview view = device.overview();
    Json::Value json;
    json["url"] = device.url();
    json["name"] = view.deviceName;
    json["model"] = view.model;
    json["serialNumber"] = view.serialNumber;
    json["firmware"] = view.firmwareVersion;
    json["localTime"] = view.localTime;
    json["on"] = view.isOn;
    json["locked"] = view.isLocked;
    json["doors"] = listOf(view.doors, doorJson);
    json["subscribers"] = listOf(view.subscribers, subscriberJson);
    json["lostEvents"] = Json::UInt64(view.lostEvents);
    json["persons"] = Json::UInt64(view.persons);
    json["cards"] = Json::UInt64(view.cards);
    json["faces"] = Json::UInt64(view.faces);
    json["fingerprints"] = Json::UInt64(view.fingerprints);
    json["changes"] = Json::UInt64(view.changes);
    json["faults"] = listOf(device.faults(), faultJson);
    return json;
}

Json::Value eventsAfter(const Device& device, uint64_t number) {
    return listOf(device.reportsAfter(number, kMostShown), reportJson);
}

Json::Value requestsAfter(const Device& device, uint64_t number) {
    return listOf(device.requestsAfter(number, kMostShown), briefJson);
}

Json::Value showOverview(const Order& order) {
    return overviewOf(*order.devices.front());
}

Json::Value listPersons(const Order& order) {
    const PersonPage page =
        order.devices.front()->persons(order.text("search"), order.number("first", 0), kMostShown);
    Json::Value json;
    json["matches"] = Json::UInt64(page.matches);
    json["persons"] = listOf(page.persons, personJson);
    return json;
}

Json::Value listEvents(const Order& order) {
    return eventsAfter(*order.devices.front(), order.number("after", 0));
}

Json::Value listRequests(const Order& order) {
    const uint64_t after = order.number("after", 0);
    Json::Value list = Json::arrayValue;
    for (const RequestRecord& record : order.devices.front()->requests()) {
        if (record.number > after) list.append(requestJson(record));
    }
    return list;
}

Json::Value showRequest(const Order& order) {
    const auto record = order.devices.front()->request(order.number("number", 0));
    if (!record) throw ControlRefused(404, "no such request is recorded");
    return requestJson(*record);
}

Json::Value listFaults(const Order& order) {
    return listOf(order.devices.front()->faults(), faultJson);
}

}  // namespace veltasim
