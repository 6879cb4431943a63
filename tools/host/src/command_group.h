// Commands whose words go on: "persons list", "persons add".
#pragma once

#include <CLI/App.hpp>
#include <functional>
#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

#include "commands.h"
#include "site.h"

namespace host {

struct Leaf {
    const char* name;
    const char* description;
    const char* footer;
};

// An option (or, without dashes, an argument) that takes a text.
struct TextOption {
    const char* name;
    const char* typeName;
    const char* help;
    std::string* target;
    bool isRequired = false;
};
void addTexts(CLI::App& app, std::initializer_list<TextOption> options);
// One that takes one text or more.
CLI::Option* addList(CLI::App& app, const char* name, const char* typeName, const char* help,
                     std::vector<std::string>& target);
// The name of a file that is there, or "-".
void addInputFile(CLI::App& app, const char* name, const char* help, std::string& target);
CLI::Validator positiveNumber();

// Options of which only one is taken.
enum class Choice { Required, Optional };
CLI::App& addChoice(CLI::App& app, const char* title, Choice choice);

class CommandGroup {
 public:
    using Act = std::function<ExitCode(const Site&)>;

    CommandGroup(CLI::App& app, const char* name, const char* description, CommonOptions& common, Run& run);

    // A command for one device; act runs with the options, which are DeviceOptions and more.
    template <typename Options>
    CLI::App& add(const Leaf& leaf, const std::shared_ptr<Options>& options,
                  ExitCode (*act)(const Site&, const Options&)) {
        return add(leaf, std::shared_ptr<DeviceOptions>(options),
                   [options, act](const Site& site) { return act(site, *options); });
    }
    // The group without a further word is this command.
    template <typename Options>
    void addDefault(const std::shared_ptr<Options>& options, ExitCode (*act)(const Site&, const Options&)) {
        addDefault(std::shared_ptr<DeviceOptions>(options),
                   [options, act](const Site& site) { return act(site, *options); });
    }

 private:
    CLI::App& add(const Leaf& leaf, const std::shared_ptr<DeviceOptions>& device, const Act& act);
    void addDefault(const std::shared_ptr<DeviceOptions>& device, const Act& act);
    std::function<void()> chosen(const std::shared_ptr<DeviceOptions>& device, const Act& act);

    CLI::App& group_;
    CommonOptions& common_;
    Run& run_;
};

}  // namespace host
