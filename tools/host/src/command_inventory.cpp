// velta-host inventory: what a device consists of.

#include <CLI/CLI.hpp>
#include <memory>
#include <string>

#include "commands.h"
#include "host.h"
#include "text.h"

namespace host {
namespace {

constexpr const char* kFooter = R"(
Examples:
  velta-host inventory --device 192.168.1.20
  velta-host inventory --device 192.168.1.20 --json | jq .inventory.videoChannels)";

struct InventoryOptions {
    std::string device;
    LoginOptions login;
};

struct Row {
    const char* member;
    const char* label;
};
constexpr Row kIdentity[] = {
    {"devType", "Type"},           {"serialNo", "Serial number"}, {"devVersion", "Version"},
    {"onlineStatus", "Online"},    {"active", "Activated"},       {"port", "Port"},
    {"netZoneId", "Network zone"},
};
constexpr Row kChannelLists[] = {
    {"videoChannels", "Video channels"},
    {"alarmInChannels", "Alarm inputs"},
    {"alarmOutChannels", "Alarm outputs"},
    {"audioChannels", "Audio channels"},
};
constexpr size_t kLabelWidth = 16;

std::string padded(std::string text, size_t width) {
    if (text.size() < width) text.resize(width, ' ');
    return text;
}

std::string table(const Json::Value& inventory) {
    std::string text;
    for (const Row& row : kIdentity) {
        const std::string value = member(inventory, row.member);
        if (!value.empty()) text += padded(row.label, kLabelWidth) + value + "\n";
    }
    for (const Row& row : kChannelLists) {
        const Json::Value& channels = inventory[row.member];
        text += padded(row.label, kLabelWidth) +
                (channels.isArray() ? std::to_string(channels.size()) : "none") + "\n";
        if (!channels.isArray()) continue;
        for (const Json::Value& channel : channels) {
            text += "  " + padded(member(channel, "channelNo"), 6) +
                    padded(member(channel, "channelName"), 32) + "  type " +
                    padded(member(channel, "channelType"), 10) + "  status " +
                    member(channel, "channelStatus") + "\n";
        }
    }
    if (!text.empty()) text.pop_back();
    return text;
}

ExitCode runInventory(const CommonOptions& common, const InventoryOptions& options) {
    Host host(common);
    host.connect({options.device}, options.login);
    std::string answer;
    host.waiter.runAside([&] { answer = host.sessions.front()->inventory(); },
                         [&] {
                             host.console.note(
                                 "Waiting for the exchange with the device to end; "
                                 "Ctrl-C again leaves at once.");
                         });
    host.waiter.throwIfInterrupted();
    Json::Value inventory;
    if (!parseJson(answer, inventory) || !inventory.isObject())
        throw Failure(ExitCode::Failed, "the inventory can't be read: " + answer.substr(0, 200));
    Json::Value object;
    object["type"] = "inventory";
    object["device"] = options.device;
    object["inventory"] = inventory;
    host.console.result(table(inventory), object);
    return ExitCode::Ok;
}

}  // namespace

void addInventoryCommand(CLI::App& app, CommonOptions& common, Run& run) {
    CLI::App* command = app.add_subcommand("inventory", "Print a device's identity, state and channels");
    auto options = std::make_shared<InventoryOptions>();
    addDevice(*command, options->device);
    addLoginOptions(*command, options->login);
    addCommonOptions(*command, common);
    command->footer(kFooter);
    command->callback(
        [&common, &run, options] { run = [&common, options] { return runInventory(common, *options); }; });
}

}  // namespace host
