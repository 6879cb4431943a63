#include "json_values.h"
#include "resources/access.h"
#include "xml.h"

namespace veltasim {
namespace {

constexpr const char* kAllDoors = "65535";
constexpr size_t kLongestName = 32;
constexpr unsigned kLongestOpenTime = 255;

}  // namespace

Reply putRemoteDoor(const Call& call) {
    Access& access = call.state.access;
    const auto index = indexIn(call, access.doors.size());
    if (!index && call.variables.front() != kAllDoors) return refused(call, badParameter("doorNo"));
    pugi::xml_document document;
    if (auto refusal = readDocument(call, "RemoteControlDoor", document)) return *refusal;
    const auto command = doorCommand(document.document_element().child("cmd").text().get());
    if (!command) return refused(call, badParameter("cmd"));
    for (size_t i = 0; i < access.doors.size(); ++i) {
        if (!index || i == *index) obey(access.doors[i], *command, call.state.clock.now());
    }
    return done(call);
}

Reply getRemoteDoorCapabilities(const Call& call) {
    pugi::xml_document document;
    pugi::xml_node root = addRoot(document, "RemoteControlDoor");
    pugi::xml_node number = root.append_child("doorNo");
    number.append_attribute("min") = 1;
    number.append_attribute("max") = static_cast<unsigned>(call.state.access.doors.size());
    root.append_child("cmd").append_attribute("opt") = doorCommands().c_str();
    return {200, kXmlType, toText(document)};
}

Reply getDoorParam(const Call& call) {
    const auto index = indexIn(call, call.state.access.doors.size());
    if (!index) return refused(call, badParameter("doorNo"));
    const Door& door = call.state.access.doors[*index];
    pugi::xml_document document;
    pugi::xml_node root = addRoot(document, "DoorParam");
    addText(root, "doorName", door.name);
    addText(root, "openDuration", std::to_string(door.openTime.count()));
    return {200, kXmlType, toText(document)};
}

Reply putDoorParam(const Call& call) {
    const auto index = indexIn(call, call.state.access.doors.size());
    if (!index) return refused(call, badParameter("doorNo"));
    pugi::xml_document document;
    if (auto refusal = readDocument(call, "DoorParam", document)) return *refusal;
    Door& door = call.state.access.doors[*index];
    const pugi::xml_node name = document.document_element().child("doorName");
    const pugi::xml_node duration = document.document_element().child("openDuration");
    const std::string newName = name ? name.text().get() : door.name;
    const auto seconds = numbersOf(duration ? duration.text().get() : std::to_string(door.openTime.count()));
    if (newName.size() > kLongestName) return refused(call, badParameter("doorName"));
    if (seconds.size() != 1 || seconds[0] < 1 || seconds[0] > kLongestOpenTime)
        return refused(call, badParameter("openDuration"));
    door.name = newName;
    door.openTime = std::chrono::seconds(seconds[0]);
    return done(call);
}

Reply getWorkStatus(const Call& call) {
    const Access& access = call.state.access;
    Json::Value answer;
    Json::Value& status = answer["AcsWorkStatus"];
    for (const char* name : {"lockStatus", "doorStatus", "readerStatus"})
        status[name] = Json::arrayValue;
    for (size_t i = 0; i < access.doors.size(); ++i) {
        const Door& door = access.doors[i];
        status["lockStatus"].append(door.isOpen(call.state.clock.now()) ? 1 : 0);
        status["doorStatus"].append(static_cast<int>(door.mode));
        status["readerStatus"].append(isTrue(access.readers[i], "enable") ? 1 : 0);
    }
    return jsonReply(answer);
}

Reply getCardReader(const Call& call) {
    const auto index = indexIn(call, call.state.access.readers.size());
    if (!index) return refused(call, kIllegalCardReaderNo);
    Json::Value answer;
    answer["CardReaderCfg"] = call.state.access.readers[*index];
    return jsonReply(answer);
}

Reply putCardReader(const Call& call) {
    const auto index = indexIn(call, call.state.access.readers.size());
    if (!index) return refused(call, kIllegalCardReaderNo);
    const Json::Value body = readObject(call.request.body);
    const Json::Value& config = objectIn(body, "CardReaderCfg");
    if (config.isMember("enable") && !config["enable"].isBool()) return refused(call, badParameter("enable"));
    mergeInto(call.state.access.readers[*index], config);
    return done(call);
}

}  // namespace veltasim
