// velta-host schedules: when persons may pass.

#include <CLI/CLI.hpp>
#include <algorithm>

#include "command_group.h"
#include "input.h"
#include "text.h"

namespace host {
namespace {

constexpr const char* kShowFooter = R"(
What it prints can be changed and set again.

Examples:
  velta-host schedules show week 1 --device 192.168.1.20
  velta-host schedules show template 2 --device 192.168.1.20 > template-2.json)";
constexpr const char* kSetFooter = R"(
The whole schedule is replaced. The file holds it as show prints it. Blanks within the texts of a week plan get lost on
the way to the device.

Examples:
  velta-host schedules set week 2 office-hours.json --device 192.168.1.20
  velta-host schedules show week 1 --device 192.168.1.20 --password-file ~/.velta |
    velta-host schedules set week 2 - --device 192.168.1.21 --password-file ~/.velta)";

struct Kind {
    const char* name;
    const char* root;  // of its document, and the end of its path
};
constexpr Kind kKinds[] = {
    {"week", "UserRightWeekPlanCfg"},
    {"holiday", "UserRightHolidayPlanCfg"},
    {"group", "UserRightHolidayGroupCfg"},
    {"template", "UserRightPlanTemplate"},
};

struct ScheduleOptions : DeviceOptions {
    std::string kind;
    unsigned number = 0;
    std::string file;

    const char* root() const {
        return std::find_if(std::begin(kKinds), std::end(kKinds),
                            [&](const Kind& one) { return one.name == kind; })
            ->root;
    }
    std::string uri() const {
        return std::string("/VELTA/AccessControl/") + root() + "/" + std::to_string(number);
    }
    Json::Value json() const {
        Json::Value json;
        json["kind"] = kind;
        json["number"] = number;
        return json;
    }
};

ExitCode showSchedule(const Site& site, const ScheduleOptions& options) {
    const Json::Value answer = site.ask("GET", options.uri());
    Json::Value json = options.json();
    json["schedule"] = answer;
    site.report("schedule", prettyJson(answer), json);
    return ExitCode::Ok;
}

// Texts are taken with and without the member that names the kind.
Json::Value scheduleFrom(const ScheduleOptions& options, Waiter& waiter) {
    Json::Value given;
    if (!parseJson(readInput(options.file, waiter), given) || !given.isObject())
        throw Failure(ExitCode::WrongUsage, options.file + " holds no JSON object");
    if (given.isMember(options.root())) return given;
    for (const Kind& other : kKinds) {
        if (given.isMember(other.root))
            throw Failure(ExitCode::WrongUsage, options.file + " holds a schedule of the kind " + other.name +
                                                    ", not " + options.kind);
    }
    Json::Value body;
    body[options.root()] = given;
    return body;
}

ExitCode setSchedule(const Site& site, const ScheduleOptions& options) {
    const Json::Value body = scheduleFrom(options, site.host.waiter);
    try {
        site.ask("PUT", options.uri(), body);
    } catch (Failure& failure) {
        if (failure.hint.empty())
            failure.hint = "velta-host schedules show prints a schedule with all it needs";
        throw;
    }
    site.report("schedule", options.kind + " " + std::to_string(options.number) + " set", options.json());
    return ExitCode::Ok;
}

void addWhich(CLI::App& command, ScheduleOptions& options) {
    command.add_option("KIND", options.kind, "week, holiday (plan), group (of holiday plans) or template")
        ->required()
        ->type_name("")
        ->check(CLI::IsMember({"week", "holiday", "group", "template"}).description(""));
    command.add_option("N", options.number, "Number of the schedule, from 1 on")
        ->required()
        ->type_name("")
        ->check(positiveNumber());
}

}  // namespace

void addSchedulesCommand(CLI::App& app, CommonOptions& common, Run& run) {
    CommandGroup group(app, "schedules", "Show and set week plans, holidays and plan templates", common, run);
    const auto show = std::make_shared<ScheduleOptions>();
    addWhich(group.add({"show", "Print a schedule", kShowFooter}, show, showSchedule), *show);
    const auto set = std::make_shared<ScheduleOptions>();
    CLI::App& setCommand = group.add({"set", "Replace a schedule", kSetFooter}, set, setSchedule);
    addWhich(setCommand, *set);
    addInputFile(setCommand, "FILE", "The schedule, JSON", set->file);
}

}  // namespace host
