// velta-host doors: how they stand, and moving them.

#include <CLI/CLI.hpp>
#include <array>
#include <charconv>

#include "command_group.h"
#include "exchange.h"
#include "listing.h"
#include "text.h"

namespace host {
namespace {

constexpr const char* kListFooter = R"(
Examples:
  velta-host doors list --device 192.168.1.20
  velta-host doors --device 192.168.1.20 --json | jq 'select(.door.status != 4)')";
constexpr const char* kControlFooter = R"(
open lets somebody through once; hold-open and hold-closed last until close, which makes the door normal again.

Examples:
  velta-host doors open 2 --device 192.168.1.20
  velta-host doors hold-closed all --device 192.168.1.20)";
constexpr const char* kRenameFooter = R"(
Examples:
  velta-host doors rename 2 "East gate" --device 192.168.1.20)";
constexpr const char* kReaderFooter = R"(
Examples:
  velta-host doors reader 1 --device 192.168.1.20
  velta-host doors reader 1 off --device 192.168.1.20)";

constexpr const char* kWorkStatus = "/VELTA/AccessControl/AcsWorkStatus";
constexpr const char* kControl = "/VELTA/AccessControl/RemoteControl/door/";
constexpr const char* kParam = "/VELTA/AccessControl/Door/param/";
constexpr const char* kReader = "/VELTA/AccessControl/CardReaderCfg/";
constexpr unsigned kAllDoors = 65535;

// As devices number them, from 0 on.
constexpr std::array<const char*, 5> kStatuses{"", "dormant", "held open", "held closed", "normal"};

struct Command {
    const char* name;
    const char* word;  // of devices
    const char* description;
    const char* done;
};
constexpr Command kCommands[] = {
    {"open", "open", "Open a door for its usual time", "opened"},
    {"close", "close", "Close a door, and hold it no longer", "closed"},
    {"hold-open", "alwaysOpen", "Open a door until close", "held open"},
    {"hold-closed", "alwaysClose", "Keep a door closed, for everybody, until close", "held closed"},
};

constexpr Column kColumns[] = {
    {"DOOR", "doorNo"}, {"NAME", "name"}, {"STATUS", "status"}, {"MEANING", "meaning"}};

struct DoorOptions : DeviceOptions {
    std::string door;
    std::string value;  // name, or state of a reader
    const Command* command = nullptr;
};

// 0: no door.
unsigned doorNumber(const std::string& text) {
    if (text == "all") return kAllDoors;
    unsigned number = 0;
    const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    const bool isNumber = error == std::errc() && stop == text.data() + text.size();
    return isNumber && number <= kAllDoors ? number : 0;
}

std::string checkNumber(const std::string& text) {
    const unsigned number = doorNumber(text);
    return number > 0 && number < kAllDoors ? "" : "\"" + text + "\" is no number: they count from 1 on";
}
std::string checkDoor(const std::string& text) {
    return doorNumber(text) > 0 ? "" : "\"" + text + "\" is no door: a number from 1 on, or all, is expected";
}

// A door may have no parameters to read.
std::string nameOf(const Site& site, unsigned door) {
    try {
        const Json::Value answer = site.ask("GET", kParam + std::to_string(door));
        return answer.isObject() ? member(answer["DoorParam"], "doorName") : "";
    } catch (const DeviceError&) {
        return "";
    }
}

ExitCode listDoors(const Site& site, const DeviceOptions&) {
    const Json::Value answer = site.ask("GET", kWorkStatus);
    const Json::Value status = answer.isObject() ? answer["AcsWorkStatus"] : Json::Value();
    const Json::Value list = status.isObject() ? status["doorStatus"] : Json::Value();
    Json::Value doors = Json::arrayValue;
    for (const Json::Value& one : list.isArray() ? list : Json::Value(Json::arrayValue)) {
        Json::Value& door = doors.append(Json::objectValue);
        door["doorNo"] = doors.size();
        door["name"] = nameOf(site, doors.size());
        door["status"] = one;
        const size_t number = one.isUInt() ? one.asUInt() : 0;
        door["meaning"] = number < kStatuses.size() ? kStatuses[number] : "";
    }
    Listing listing(site, "door", kColumns);
    listing.page(doors);
    listing.end();
    return ExitCode::Ok;
}

DeviceError withDoorHint(DeviceError error) {
    error.hint = "velta-host doors list tells which doors there are";
    return error;
}

ExitCode controlDoor(const Site& site, const DoorOptions& options) {
    const unsigned door = doorNumber(options.door);
    Json::Value body;
    body["RemoteControlDoor"]["cmd"] = options.command->word;
    try {
        site.ask("PUT", kControl + std::to_string(door), body);
    } catch (const DeviceError& error) {
        throw withDoorHint(error);
    }
    Json::Value json;
    json["doorNo"] = door;
    json["command"] = options.command->word;
    const std::string which = door == kAllDoors ? "all doors" : "door " + std::to_string(door);
    site.report("door", which + " " + options.command->done, json);
    return ExitCode::Ok;
}

ExitCode renameDoor(const Site& site, const DoorOptions& options) {
    Json::Value body;
    body["DoorParam"]["doorName"] = options.value;
    try {
        site.ask("PUT", kParam + options.door, body);
    } catch (const DeviceError& error) {
        throw withDoorHint(error);
    }
    Json::Value json;
    json["doorNo"] = doorNumber(options.door);
    json["name"] = options.value;
    site.report("door", "door " + options.door + " is \"" + options.value + "\"", json);
    return ExitCode::Ok;
}

ExitCode switchReader(const Site& site, const DoorOptions& options) {
    const std::string uri = kReader + options.door;
    if (!options.value.empty()) {
        Json::Value body;
        body["CardReaderCfg"]["enable"] = options.value == "on";
        site.ask("PUT", uri, body);
    }
    const Json::Value answer = site.ask("GET", uri);
    Json::Value json;
    json["readerNo"] = doorNumber(options.door);
    json["reader"] = answer.isObject() ? answer["CardReaderCfg"] : Json::Value();
    const bool isOn = member(json["reader"], "enable") == "true";
    site.report("reader", "reader " + options.door + " is " + (isOn ? "on" : "off"), json);
    return ExitCode::Ok;
}

}  // namespace

void addDoorsCommand(CLI::App& app, CommonOptions& common, Run& run) {
    CommandGroup group(app, "doors", "Show the doors of a device, open, close, hold and rename them", common,
                       run);
    group.addDefault(std::make_shared<DeviceOptions>(), listDoors);
    group.add({"list", "List the doors", kListFooter}, std::make_shared<DeviceOptions>(), listDoors);
    for (const Command& command : kCommands) {
        const auto options = std::make_shared<DoorOptions>();
        options->command = &command;
        group.add({command.name, command.description, kControlFooter}, options, controlDoor)
            .add_option("DOOR", options->door, "Number of the door, or all")
            ->required()
            ->type_name("")
            ->check(checkDoor);
    }
    const auto rename = std::make_shared<DoorOptions>();
    CLI::App& renameCommand =
        group.add({"rename", "Give a door another name", kRenameFooter}, rename, renameDoor);
    renameCommand.add_option("DOOR", rename->door, "Number of the door")
        ->required()
        ->type_name("")
        ->check(checkNumber);
    addTexts(renameCommand, {{"NAME", "", "The new name", &rename->value, true}});
    const auto reader = std::make_shared<DoorOptions>();
    CLI::App& readerCommand =
        group.add({"reader", "Show or switch a card reader", kReaderFooter}, reader, switchReader);
    readerCommand.add_option("READER", reader->door, "Number of the reader")
        ->required()
        ->type_name("")
        ->check(checkNumber);
    readerCommand.add_option("STATE", reader->value, "on or off; shown only without it")
        ->type_name("")
        ->check(CLI::IsMember({"on", "off"}).description(""));
}

}  // namespace host
