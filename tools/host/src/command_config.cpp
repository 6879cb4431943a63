// velta-host config: a configuration command to the plug-in itself.

#include <CLI/CLI.hpp>
#include <memory>
#include <string>

#include "commands.h"
#include "host.h"
#include "table.h"

namespace host {
namespace {

struct Head {
    const char* name;
    const char* message;
    const char* effect;
};
constexpr Head kHeads[] = {
    {"SetEventSub", "INTEGER", "other than 0: events go to the host"},
    {"SetMarlListen", "INTEGER", "the same switch; the last command wins"},
    {"NetZoneTableNotify", "JSON", "the address that devices send events to, and the zone they belong to"},
    {"SetMARLSDKLog", "TEXT", "accepted and ignored"},
    {"InitListenPort", "TEXT", "accepted and ignored"},
};

constexpr const char* kExamples = R"(
A setting lasts until the plug-in is unloaded, so here as long as the command: it shows what the plug-in accepts.

Examples:
  velta-host config SetEventSub 1
  velta-host config NetZoneTableNotify '{"accessNetInfos":[{"protocolType":"VELTA","accessIp":"10.1.2.3","id":2}]}')";

std::string footer() {
    std::vector<std::vector<std::string>> rows;
    for (const Head& head : kHeads)
        rows.push_back({"  " + std::string(head.name), head.message, head.effect});
    return "\nHeads, which are compared exactly, and their messages:\n" + table(rows) + "\n" + kExamples;
}

struct ConfigOptions {
    std::string head;
    std::string message;
};

std::string meaningOfResult(int code) {
    if (code == VELTA_OK) return "accepted";
    if (code == VELTA_REFUSED) return "refused: an unknown head, or a message that can't be read";
    return resultText(code);
}

ExitCode runConfig(const CommonOptions& common, const ConfigOptions& options) {
    Host host(common);
    host.loadPlugin();
    const int code = host.plugin->setConfig(options.head, options.message);
    const std::string meaning = meaningOfResult(code);
    Json::Value json;
    json["type"] = "config";
    json["head"] = options.head;
    json["message"] = options.message;
    json["code"] = code;
    json["meaning"] = meaning;
    host.console.result(std::to_string(code) + " (" + meaning + ")", json);
    return code == VELTA_OK ? ExitCode::Ok : ExitCode::Failed;
}

}  // namespace

void addConfigCommand(CLI::App& app, CommonOptions& common, Run& run) {
    CLI::App* command = app.add_subcommand("config", "Give the plug-in a configuration command");
    auto options = std::make_shared<ConfigOptions>();
    command->add_option("HEAD", options->head, "Name of the command")->required()->type_name("");
    command->add_option("MESSAGE", options->message, "Its argument, a text")->required()->type_name("");
    addCommonOptions(*command, common);
    command->footer(footer());
    command->callback(
        [&common, &run, options] { run = [&common, options] { return runConfig(common, *options); }; });
}

}  // namespace host
