// velta-host time: a device's clock, and setting it.

#include <CLI/CLI.hpp>
#include <chrono>
#include <memory>
#include <optional>
#include <string>

#include "commands.h"
#include "device_clock.h"
#include "exchange.h"
#include "host.h"
#include "table.h"
#include "text.h"

namespace host {
namespace {

using std::chrono::seconds;
using std::chrono::system_clock;

constexpr const char* kFooter = R"(
The deviation is that of the device's clock from this machine's, in whole seconds. A device whose clock is set by hand
no longer follows a time server: its mode becomes "manual". --set leaves the device's time zone and what it knows about
daylight saving as they are; --zone replaces both.

Examples:
  velta-host time --device 192.168.1.20
  velta-host time --device 192.168.1.20 --set
  velta-host time --device 192.168.1.20 --set --zone +08:00
  velta-host time --device 192.168.1.20 --zone CST-1:00:00DST01:00:00,M3.5.0/02:00:00,M10.5.0/03:00:00
  velta-host time --device 192.168.1.20 --json | jq .deviationSeconds)";

constexpr const char* kTime = "/VELTA/System/time";
constexpr const char* kTimeZone = "/VELTA/System/time/timeZone";

struct TimeOptions {
    DeviceOptions device;
    bool set = false;
    std::string zone;
};

struct Reading {
    std::string localTime;
    std::string zone;
    std::string mode;
    std::optional<int64_t> deviation;  // seconds; nothing when the device's time can't be told
};

// The device's own document says more than the translated one. Its clock is read to the second, at some moment of
// the exchange: as long as it may be right, it is.
Reading readClock(Host& host, const Session& session) {
    const auto asked = system_clock::now();
    const std::string document = exchangeText(host, session, "GET", kTime);
    const auto answered = system_clock::now();
    Reading clock{element(document, "localTime"), element(document, "timeZone"),
                  element(document, "timeMode"), std::nullopt};
    if (clock.localTime.empty())
        throw Failure(ExitCode::Failed, "the device tells no time: " + document.substr(0, 200));
    if (const auto instant = instantOf(clock.localTime, clock.zone)) {
        const auto least = *instant - answered;
        const auto most = *instant + seconds(1) - asked;
        const bool mayBeRight = least <= least.zero() && most >= most.zero();
        clock.deviation = mayBeRight ? 0 : std::chrono::round<seconds>((least + most) / 2).count();
    }
    return clock;
}

// A time is given in whole seconds: it is right when one begins.
Instant awaitSecond(Waiter& waiter) {
    const auto begin = std::chrono::ceil<seconds>(system_clock::now());
    while (system_clock::now() < begin) {
        waiter.wait(Clock::now() + (begin - system_clock::now()));
        waiter.throwIfInterrupted();
    }
    return begin;
}

void setClock(Host& host, const Session& session, const std::string& zone) {
    const auto offset = zoneOffset(zone);
    if (!offset)
        throw Failure(ExitCode::Failed, "the device's time zone \"" + zone + "\" can't be read",
                      "give one with --zone, as in --zone +08:00");
    Json::Value body;
    Json::Value& time = body["Time"];
    time["timeMode"] = "manual";
    time["localTime"] = localTimeText(awaitSecond(host.waiter), *offset);
    exchange(host, session, "PUT", kTime, body);
}

void setZone(Host& host, const Session& session, const std::string& zone) {
    Json::Value body;
    body["timeZone"] = zone;
    try {
        exchange(host, session, "PUT", kTimeZone, body);
    } catch (DeviceError& error) {
        error.hint = zone + " is not accepted: not every offset is a time zone of devices";
        throw;
    }
}

std::string deviationText(std::optional<int64_t> deviation) {
    if (!deviation) return "unknown: the device's time does not tell its offset from UTC";
    if (*deviation == 0) return "0 s";
    return std::to_string(std::abs(*deviation)) + (*deviation > 0 ? " s ahead" : " s behind");
}

Json::Value deviationJson(std::optional<int64_t> deviation) {
    return deviation ? Json::Value(Json::Int64{*deviation}) : Json::Value();
}

void show(Host& host, const std::string& device, const Reading& now, const Reading* before) {
    std::vector<std::vector<std::string>> rows{
        {"Local time", now.localTime},
        {"Time zone", now.zone},
        {"Mode", now.mode},
    };
    Json::Value json;
    json["type"] = "time";
    json["device"] = device;
    json["localTime"] = now.localTime;
    json["timeZone"] = now.zone;
    json["timeMode"] = now.mode;
    json["deviationSeconds"] = deviationJson(now.deviation);
    if (before != nullptr) {
        rows.push_back({"Deviation before", deviationText(before->deviation)});
        json["deviationSecondsBefore"] = deviationJson(before->deviation);
    }
    rows.push_back({before != nullptr ? "Deviation now" : "Deviation", deviationText(now.deviation)});
    host.console.result(table(rows), json);
}

ExitCode runTime(const CommonOptions& common, const TimeOptions& options) {
    Host host(common);
    const Session& session = host.connect(options.device);
    const Reading before = readClock(host, session);
    if (!options.set && options.zone.empty()) {
        show(host, options.device.device, before, nullptr);
        return ExitCode::Ok;
    }
    // The zone first: a clock that is set keeps what the device knows about daylight saving.
    const std::string zone = options.zone.empty() ? before.zone : deviceZone(options.zone);
    if (!options.zone.empty()) setZone(host, session, zone);
    if (options.set) setClock(host, session, zone);
    show(host, options.device.device, readClock(host, session), &before);
    return ExitCode::Ok;
}

std::string checkZone(const std::string& zone) {
    if (!deviceZone(zone).empty()) return "";
    return "\"" + zone + "\" is no time zone: +08:00 is one, or CST-8:00:00 as devices write it";
}

}  // namespace

void addTimeCommand(CLI::App& app, CommonOptions& common, Run& run) {
    CLI::App* command = app.add_subcommand("time", "Show or set a device's clock");
    auto options = std::make_shared<TimeOptions>();
    command->add_flag("--set", options->set, "Set the clock from this machine's");
    command->add_option("--zone", options->zone, "Set the time zone, given as +08:00 or as devices write it")
        ->type_name("ZONE")
        ->check(checkZone);
    addDeviceOptions(*command, options->device);
    addCommonOptions(*command, common);
    command->footer(kFooter);
    command->callback(
        [&common, &run, options] { run = [&common, options] { return runTime(common, *options); }; });
}

}  // namespace host
