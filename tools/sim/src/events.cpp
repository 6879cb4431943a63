#include "events.h"

#include <stdexcept>

#include "json_text.h"
#include "status.h"
#include "xml.h"

namespace veltasim {
namespace {

constexpr const char* kPartEnd = "\r\n";

const std::string& orNow(const std::string& dateTime, const Sender& sender) {
    return dateTime.empty() ? sender.dateTime : dateTime;
}

std::string partHead(const char* contentType) {
    return "--" + kBoundary + "\r\nContent-Type: " + contentType + "\r\n";
}

Message jsonPart(const JsonText& json, const std::string& picture) {
    Message part{partHead(kJsonType), json.text(), kPartEnd};
    if (picture.empty()) return part;
    part.tail += "--" + kBoundary +
                 "\r\nContent-Disposition: form-data; name=\"Picture\"; filename=\"Picture.jpg\"\r\n"
                 "Content-Type: image/jpeg\r\nContent-Length: " +
                 std::to_string(picture.size()) + "\r\nContent-ID: pictureImage\r\n\r\n" + picture + "\r\n";
    return part;
}

void addMore(JsonText& json, const MoreMembers& members) {
    for (const auto& [name, value] : members)
        json.set(name, value);
}

}  // namespace

void requireJson(const MoreMembers& members) {
    for (const auto& [name, value] : members) {
        Json::Value ignored;
        if (!parseJson(value, ignored))
            throw std::invalid_argument(std::string("not JSON: ").append(name).append(": ").append(value));
    }
}

Message accessEventPart(const AccessEvent& event, uint64_t serialNo, const Sender& sender) {
    JsonText inner;
    inner.add("deviceName", sender.deviceName)
        .add("major", event.major)
        .add("minor", event.minor)
        .add("name", event.name)
        .add("cardNo", event.cardNo)
        .add("cardReaderNo", event.cardReaderNo)
        .add("doorNo", event.doorNo)
        .add("employeeNoString", event.employeeNo)
        .add("serialNo", static_cast<int64_t>(serialNo))
        .add("verifyMode", event.verifyMode)
        .add("attendance", event.attendance);
    if (!event.picture.empty()) inner.add("picturesNumber", 1);
    addMore(inner, event.moreMembers);

    JsonText json;
    json.add("ipAddress", sender.ipAddress)
        .add("portNo", sender.port)
        .add("protocol", "HTTP")
        .add("macAddress", sender.macAddress)
        .add("channelID", 1)
        .add("dateTime", orNow(event.dateTime, sender))
        .add("activePostCount", 1)
        .add("eventType", "AccessControllerEvent")
        .add("eventState", "active")
        .add("eventDescription", "Access Controller Event")
        .add("deviceID", sender.deviceId)
        .add("AccessControllerEvent", inner);
    return jsonPart(json, event.picture);
}

Message alarmPart(const Alarm& alarm, const Sender& sender) {
    JsonText json;
    json.add("ipAddress", sender.ipAddress)
        .add("portNo", sender.port)
        .add("protocol", "HTTP")
        .add("macAddress", sender.macAddress)
        .add("channelID", alarm.channelId)
        .add("dateTime", orNow(alarm.dateTime, sender))
        .add("activePostCount", 1)
        .add("eventType", alarm.eventType)
        .add("eventState", alarm.eventState)
        .add("eventDescription", alarm.eventDescription)
        .add("deviceID", sender.deviceId);
    addMore(json, alarm.moreMembers);
    return jsonPart(json, alarm.picture);
}

bool hasPicture(const Message& event) {
    return event.tail != kPartEnd;
}

Message heartbeatPart(const Sender& sender) {
    pugi::xml_document document;
    pugi::xml_node root = addRoot(document, "EventAlert");
    addText(root, "ipAddress", sender.ipAddress);
    addText(root, "portNo", std::to_string(sender.port));
    addText(root, "protocol", "HTTP");
    addText(root, "macAddress", sender.macAddress);
    addText(root, "channelID", "1");
    addText(root, "dateTime", sender.dateTime);
    addText(root, "activePostCount", "0");
    addText(root, "eventType", "videoloss");
    addText(root, "eventState", "inactive");
    addText(root, "eventDescription", "videoloss alarm");
    return {partHead(kXmlType), toText(document), kPartEnd};
}

Message tooManyStreamsPart() {
    return {partHead(kJsonType), statusJson(kTooManyStreams), kPartEnd};
}

}  // namespace veltasim
