#include "control_events.h"

#include <algorithm>
#include <array>

#include "pictures.h"

namespace veltasim {
namespace {

void set(std::string& to, const Json::Value& value) {
    if (!value.isString()) throw ControlRefused(400, "text expected: " + value.toStyledString());
    to = value.asString();
}
void set(int& to, const Json::Value& value) {
    to = value.asInt();
}
void set(MoreMembers& to, const Json::Value& value) {
    for (const std::string& name : value.getMemberNames())
        to.emplace_back(name, value[name].toStyledString());
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
    if (event.picture.empty()) throw ControlRefused(400, "no picture of that size: " + value.asString());
}

constexpr std::array kAccessFields{
    Field<AccessEvent>{"major", assign<AccessEvent, &AccessEvent::major>},
    Field<AccessEvent>{"minor", assign<AccessEvent, &AccessEvent::minor>},
    Field<AccessEvent>{"name", assign<AccessEvent, &AccessEvent::name>},
    Field<AccessEvent>{"employeeNo", assign<AccessEvent, &AccessEvent::employeeNo>},
    Field<AccessEvent>{"cardNo", assign<AccessEvent, &AccessEvent::cardNo>},
    Field<AccessEvent>{"cardReaderNo", assign<AccessEvent, &AccessEvent::cardReaderNo>},
    Field<AccessEvent>{"doorNo", assign<AccessEvent, &AccessEvent::doorNo>},
    Field<AccessEvent>{"verifyMode", assign<AccessEvent, &AccessEvent::verifyMode>},
    Field<AccessEvent>{"attendance", assign<AccessEvent, &AccessEvent::attendance>},
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
        if (field == fields.end()) throw ControlRefused(400, "unknown member: " + name);
        field->assign(event, json[name]);
    }
    return event;
}

}  // namespace

AccessEvent accessEventFrom(const Json::Value& json) {
    return eventFrom(json, kAccessFields);
}

Alarm alarmFrom(const Json::Value& json) {
    return eventFrom(json, kAlarmFields);
}

}  // namespace veltasim
