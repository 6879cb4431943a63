// velta-host output: one alarm output of a device.

#include <CLI/CLI.hpp>
#include <limits>
#include <memory>
#include <string>

#include "commands.h"
#include "exchange.h"
#include "host.h"

namespace host {
namespace {

constexpr const char* kFooter = R"(
velta-host inventory lists the alarm outputs of a device by their numbers.

Examples:
  velta-host output --device 192.168.1.20 1 high
  velta-host output --device 192.168.1.20 1 low --json)";

struct OutputOptions {
    DeviceOptions device;
    int number = 0;
    std::string state;
};

ExitCode runOutput(const CommonOptions& common, const OutputOptions& options) {
    Host host(common);
    const Session& session = host.connect(options.device);
    const std::string number = std::to_string(options.number);
    Json::Value body;
    body["IOPortData"]["outputState"] = options.state;
    try {
        exchange(host, session, "PUT", "/VELTA/System/IO/outputs/" + number + "/trigger", body);
    } catch (DeviceError& error) {
        error.hint = "does the device have an output " + number + "? velta-host inventory lists them";
        throw;
    }
    Json::Value json;
    json["type"] = "output";
    json["device"] = options.device.device;
    json["output"] = options.number;
    json["state"] = options.state;
    host.console.result("output " + number + " is " + options.state, json);
    return ExitCode::Ok;
}

}  // namespace

void addOutputCommand(CLI::App& app, CommonOptions& common, Run& run) {
    CLI::App* command = app.add_subcommand("output", "Switch an alarm output of a device");
    auto options = std::make_shared<OutputOptions>();
    command->add_option("N", options->number, "Number of the output, from 1 on")
        ->required()
        ->type_name("")
        ->check(CLI::Range(1, std::numeric_limits<int>::max()).description(""));
    command->add_option("STATE", options->state, "high or low")
        ->required()
        ->type_name("")
        ->check(CLI::IsMember({"high", "low"}).description(""));
    addDeviceOptions(*command, options->device);
    addCommonOptions(*command, common);
    command->footer(kFooter);
    command->callback(
        [&common, &run, options] { run = [&common, options] { return runOutput(common, *options); }; });
}

}  // namespace host
