// velta-host network: the network interfaces of a device.

#include <json/json.h>

#include <CLI/CLI.hpp>
#include <memory>
#include <string>
#include <vector>

#include "commands.h"
#include "exchange.h"
#include "host.h"
#include "table.h"

namespace host {
namespace {

constexpr const char* kFooter = R"(
The table shows the usual members; --json shows all of them, as the plug-in gives them. velta-host request writes them.

Examples:
  velta-host network --device 192.168.1.20
  velta-host network --device 192.168.1.20 --json | jq .answer.NetworkInterfaceList)";

struct Column {
    const char* title;
    const char* path;  // below an interface
};
constexpr Column kColumns[] = {
    {"ID", ".id"},
    {"ADDRESSING", ".IPAddress.addressingType"},
    {"ADDRESS", ".IPAddress.ipAddress"},
    {"MASK", ".IPAddress.subnetMask"},
    {"GATEWAY", ".IPAddress.DefaultGateway.ipAddress"},
    {"NAME SERVER", ".IPAddress.PrimaryDNS.ipAddress"},
    {"MAC", ".Link.MACAddress"},
    {"MBIT/S", ".Link.speed"},
    {"MTU", ".Link.MTU"},
};

std::string cell(const Json::Value& networkInterface, const char* path) {
    const Json::Value& found = Json::Path(path).resolve(networkInterface);
    const std::string text = found.isConvertibleTo(Json::stringValue) ? found.asString() : "";
    return text.empty() ? "-" : text;
}

std::string interfaceTable(const Json::Value& interfaces) {
    std::vector<std::vector<std::string>> rows(1);
    for (const Column& column : kColumns)
        rows.front().emplace_back(column.title);
    for (const Json::Value& one : interfaces) {
        std::vector<std::string>& row = rows.emplace_back();
        for (const Column& column : kColumns)
            row.push_back(cell(one, column.path));
    }
    return table(rows);
}

ExitCode runNetwork(const CommonOptions& common, const DeviceOptions& options) {
    Host host(common);
    const Session& session = host.connect(options);
    const Json::Value answer = exchange(host, session, "GET", "/VELTA/System/Network/interfaces");
    const Json::Value& interfaces = Json::Path(".NetworkInterfaceList.NetworkInterface").resolve(answer);
    if (!interfaces.isArray())
        throw Failure(ExitCode::Failed, "the answer lists no network interfaces",
                      "velta-host request GET \"/VELTA/System/Network/interfaces?format=json\" shows it");
    Json::Value json;
    json["type"] = "network";
    json["device"] = options.device;
    json["answer"] = answer;
    host.console.result(interfaceTable(interfaces), json);
    return ExitCode::Ok;
}

}  // namespace

void addNetworkCommand(CLI::App& app, CommonOptions& common, Run& run) {
    CLI::App* command = app.add_subcommand("network", "Show the network interfaces of a device");
    auto options = std::make_shared<DeviceOptions>();
    addDeviceOptions(*command, *options);
    addCommonOptions(*command, common);
    command->footer(kFooter);
    command->callback(
        [&common, &run, options] { run = [&common, options] { return runNetwork(common, *options); }; });
}

}  // namespace host
