// velta-host log: what a device remembers of its events.

#include <CLI/CLI.hpp>

#include "access_searches.h"
#include "command_group.h"
#include "listing.h"

namespace host {
namespace {

constexpr const char* kFooter = R"(
Events come as the device keeps them, the oldest first; --limit takes the newest. Times are the device's own; a date alone
means its beginning with --from, its end with --to. --major and --minor are the numbers that the device gives to kinds of
events, 0 any.

Examples:
  velta-host log search --device 192.168.1.20 --limit 20
  velta-host log search --device 192.168.1.20 --from 2026-11-20 --to 2026-11-20T12:00:00 --person 1001
  velta-host log search --device 192.168.1.20 --major 1 --minor 9 --json | jq -r .record.time)";

constexpr size_t kDateLength = sizeof "2026-11-20" - 1;

constexpr Column kColumns[] = {
    {"TIME", "time"}, {"DOOR", "doorNo"}, {"READER", "cardReaderNo"}, {"EMPLOYEE", "employeeNoString"},
    {"NAME", "name"}, {"CARD", "cardNo"}, {"MAJOR", "major"},         {"MINOR", "minor"},
};

struct SearchOptions : DeviceOptions {
    std::string from;
    std::string to;
    std::string person;
    std::string card;
    unsigned major = 0;
    unsigned minor = 0;
    uint64_t limit = 0;  // 0: none
};

std::string timeText(const std::string& given, const char* ofDay) {
    return given.size() == kDateLength ? given + ofDay : given;
}

Json::Value conditionOf(const SearchOptions& options) {
    Json::Value condition;
    Json::Value& filter = condition["AcsEventFilter"];
    filter["major"] = options.major;
    filter["minor"] = options.minor;
    if (!options.from.empty()) filter["startTime"] = timeText(options.from, "T00:00:00");
    if (!options.to.empty()) filter["endTime"] = timeText(options.to, "T23:59:59");
    if (!options.person.empty()) filter["employeeNo"] = options.person;
    if (!options.card.empty()) filter["cardNo"] = options.card;
    return condition;
}

// The newest stand at the end: how far that is, only a search tells.
ExitCode searchLog(const Site& site, const SearchOptions& options) {
    const Json::Value condition = conditionOf(options);
    if (options.limit == 0) return listAll(site, "record", kColumns, kEventSearch, condition);
    Search first(site, kEventSearch, condition, Pager(0, 1));
    first.next();
    const uint64_t from = first.total() - std::min(first.total(), options.limit);
    return listAll(site, "record", kColumns, kEventSearch, condition, Pager(from, options.limit));
}

}  // namespace

void addLogCommand(CLI::App& app, CommonOptions& common, Run& run) {
    CommandGroup group(app, "log", "Search the events that a device remembers", common, run);
    const auto options = std::make_shared<SearchOptions>();
    CLI::App& command = group.add({"search", "Search the stored events", kFooter}, options, searchLog);
    addTexts(command, {{"--from", "TIME", "Not before this time, as in 2026-11-20T08:00:00", &options->from},
                       {"--to", "TIME", "Not after this time", &options->to},
                       {"--person", "NO", "Of this employee number", &options->person},
                       {"--card", "NO", "Of this card", &options->card}});
    command.add_option("--major", options->major, "Of this major kind")->type_name("N");
    command.add_option("--minor", options->minor, "Of this minor kind")->type_name("N");
    command.add_option("--limit", options->limit, "The newest N only")
        ->type_name("N")
        ->check(positiveNumber());
}

}  // namespace host
