#include "command_group.h"

#include <CLI/CLI.hpp>
#include <limits>

namespace host {

void addTexts(CLI::App& app, std::initializer_list<TextOption> options) {
    for (const TextOption& option : options)
        app.add_option(option.name, *option.target, option.help)
            ->type_name(option.typeName)
            ->required(option.isRequired);
}

CLI::Option* addList(CLI::App& app, const char* name, const char* typeName, const char* help,
                     std::vector<std::string>& target) {
    return app.add_option(name, target, help)->type_name(typeName);
}

void addInputFile(CLI::App& app, const char* name, const char* help, std::string& target) {
    app.add_option(name, target, std::string(help) + "; -: standard input")
        ->required()
        ->type_name(name[0] == '-' ? "FILE" : "")
        ->check([](const std::string& path) { return path == "-" ? "" : CLI::ExistingFile(path); });
}

CLI::Validator positiveNumber() {
    return CLI::Range(1, std::numeric_limits<int>::max()).description("");
}

CLI::App& addChoice(CLI::App& app, const char* title, Choice choice) {
    CLI::App& group = *app.add_option_group(title);
    group.require_option(choice == Choice::Required ? 1 : 0, 1);
    return group;
}

CommandGroup::CommandGroup(CLI::App& app, const char* name, const char* description, CommonOptions& common,
                           Run& run)
    : group_(*app.add_subcommand(name, description)), common_(common), run_(run) {
    group_.require_subcommand(1);
    group_.footer("\nvelta-host " + std::string(name) + " COMMAND --help tells more, with examples.");
}

std::function<void()> CommandGroup::chosen(const std::shared_ptr<DeviceOptions>& device, const Act& act) {
    return [&common = common_, &run = run_, device, act] {
        run = [&common, device, act] {
            Host host(common);
            const Session& session = host.connect(*device);
            return act({host, session, device->device});
        };
    };
}

CLI::App& CommandGroup::add(const Leaf& leaf, const std::shared_ptr<DeviceOptions>& device, const Act& act) {
    CLI::App& command = *group_.add_subcommand(leaf.name, leaf.description);
    addDeviceOptions(command, *device);
    addCommonOptions(command, common_);
    command.footer(leaf.footer);
    command.callback(chosen(device, act));
    return command;
}

// The device is required only when no further word comes, whose command has a device of its own.
void CommandGroup::addDefault(const std::shared_ptr<DeviceOptions>& device, const Act& act) {
    addDeviceOptions(group_, *device);
    addCommonOptions(group_, common_);
    group_.get_option("--device")->required(false);
    group_.require_subcommand(0, 1);
    group_.callback([&group = group_, device, act = chosen(device, act)] {
        if (!group.get_subcommands().empty()) return;
        if (device->device.empty()) throw CLI::RequiredError("--device");
        act();
    });
}

}  // namespace host
