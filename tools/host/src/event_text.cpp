#include "event_text.h"

#include <cstring>
#include <string_view>

#include "picture.h"
#include "text.h"

namespace host {
namespace {

template <size_t N>
std::string fieldText(const char (&field)[N]) {
    return {field, strnlen(field, N)};
}

// The payload of an access-control event continues an object; an alarm is one.
Json::Value detailsOf(const tagEVENT_BASE_INFO& base) {
    const std::string payload = fieldText(base.payload);
    Json::Value value;
    if (base.genericAlarm != 0) {
        parseJson(payload, value);
        return value;
    }
    if (!payload.starts_with(',') || !parseJson("{" + payload.substr(1) + "}", value)) return {};
    return value["AccessControllerEvent"];
}

void append(std::string& line, const char* label, const std::string& value) {
    if (value.empty()) return;
    line += "  ";
    line += label;
    line += value;
}

// Older devices number their employees, newer ones name them.
std::string employeeOf(const Json::Value& details) {
    const std::string text = member(details, "employeeNoString");
    return text.empty() ? member(details, "employeeNo") : text;
}

}  // namespace

EventView::EventView(const DeviceAddress& from, const EventReport& report, const std::string& pictureFolder)
    : device(from),
      sourceId(report.sourceId),
      time(fieldText(report.base.dateTime)),
      isAlarm(report.base.genericAlarm != 0),
      isActive(report.base.activeState != 0),
      channel(report.base.channel),
      description(fieldText(report.base.description)),
      details(detailsOf(report.base)) {
    if (report.picturePart.empty()) return;
    const Picture picture = cutPicture(report.picturePart);
    pictureBytes = picture.jpeg.size();
    pictureProblem = picture.problem;
    if (pictureFolder.empty() || picture.jpeg.empty()) return;
    pictureFile = savePicture(pictureFolder, pictureName(time, device.text(), member(details, "serialNo")),
                              picture.jpeg);
}

std::string EventView::line() const {
    std::string line = time + "  " + device.text();
    if (isAlarm) {
        append(line, "channel ", std::to_string(channel));
        append(line, "", member(details, "eventType"));
        append(line, "", description);
    } else {
        append(line, "door ", member(details, "doorNo"));
        append(line, "reader ", member(details, "cardReaderNo"));
        append(line, "", member(details, "name"));
        append(line, "card ", member(details, "cardNo"));
        append(line, "employee ", employeeOf(details));
        append(line, "event ", member(details, "major") + "/" + member(details, "minor"));
    }
    line += isActive ? "  active" : "  inactive";
    if (pictureBytes > 0) append(line, "picture ", sizeText(pictureBytes));
    append(line, "no picture: ", pictureProblem);
    append(line, "-> ", pictureFile);
    if (details.isNull()) line += "  (too long for the event record: details are missing)";
    return line;
}

Json::Value EventView::json() const {
    Json::Value json;
    json["type"] = isAlarm ? "alarm" : "event";
    json["device"] = device.text();
    json["source"] = sourceId;
    json["time"] = time;
    json["active"] = isActive;
    json["channel"] = channel;
    if (!description.empty()) json["description"] = description;
    json["details"] = details;
    if (pictureBytes > 0) json["pictureBytes"] = Json::UInt64(pictureBytes);
    if (!pictureProblem.empty()) json["pictureProblem"] = pictureProblem;
    if (!pictureFile.empty()) json["pictureFile"] = pictureFile;
    return json;
}

}  // namespace host
