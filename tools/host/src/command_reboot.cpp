// velta-host reboot: restarts a device and sees it come back.

#include <CLI/CLI.hpp>
#include <array>
#include <cmath>
#include <cstdio>
#include <memory>
#include <string>

#include "commands.h"
#include "exchange.h"
#include "host.h"
#include "input.h"

namespace host {
namespace {

constexpr const char* kFooter = R"(
It asks before it does so; --yes answers, which is needed where there is no terminal. The command ends when the device
answers again after it was away. The exit code is 1 when the device does not go away in time, 4 when it does not come
back.

Examples:
  velta-host reboot --device 192.168.1.20
  velta-host reboot --device 192.168.1.20 --yes --wait 300 --password-file ~/.velta
  velta-host reboot --device 192.168.1.20 --yes --no-wait)";

constexpr int kLongestWait = 86400;
constexpr auto kLookAgain = std::chrono::milliseconds(500);

struct RebootOptions {
    DeviceOptions device;
    bool yes = false;
    bool noWait = false;
    unsigned waitSeconds = 180;
};

std::string secondsText(double seconds) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%g s", seconds);
    return text.data();
}

class RebootRun {
 public:
    RebootRun(const CommonOptions& common, const RebootOptions& options) : options_(options), host_(common) {}

    ExitCode run() {
        if (!options_.yes) confirm("Reboot " + options_.device.device + "?", host_.waiter);
        const Session& session = host_.connect(options_.device);
        exchange(host_, session, "PUT", "/VELTA/System/reboot");
        began_ = Clock::now();
        Json::Value json;
        json["type"] = "reboot";
        json["device"] = options_.device.device;
        if (options_.noWait) {
            host_.console.result(options_.device.device + " restarts", json);
            return ExitCode::Ok;
        }
        const double away = await("away", false, ExitCode::Failed,
                                  "a very short restart can be missed; velta-host status tells more");
        const double back = await("back", true, ExitCode::Unreachable,
                                  "velta-host status tells when it is online; --wait SECONDS waits longer");
        json["awayAfterSeconds"] = away;
        json["backAfterSeconds"] = back;
        host_.console.result(options_.device.device + " was away after " + secondsText(away) +
                                 ", and back after " + secondsText(back),
                             json);
        return ExitCode::Ok;
    }

 private:
    // The seconds since the command until the device is in the state that is waited for.
    double await(const std::string& state, bool answering, ExitCode late, const char* hint) {
        const auto latest = began_ + std::chrono::seconds(options_.waitSeconds);
        const std::string& device = options_.device.device;
        while (answers() != answering) {
            if (Clock::now() >= latest)
                throw Failure(late,
                              device + " took the command, but was not seen " + state + " within " +
                                  secondsText(options_.waitSeconds),
                              hint);
            host_.console.countdown("Waiting until " + device + " is " + state + "; giving up", latest);
            host_.waiter.wait(std::min(latest, Clock::now() + kLookAgain));
            host_.waiter.throwIfInterrupted();
        }
        const std::chrono::duration<double> passed = Clock::now() - began_;
        return std::round(passed.count() * 10) / 10;
    }

    // A device that refuses the log-in answers, too.
    bool answers() {
        const auto obstacle = findObstacle(host_, *host_.sessions.front());
        return !obstacle || obstacle->code == ExitCode::Refused || obstacle->code == ExitCode::Locked;
    }

    const RebootOptions& options_;
    Host host_;
    Clock::time_point began_;
};

}  // namespace

void addRebootCommand(CLI::App& app, CommonOptions& common, Run& run) {
    CLI::App* command = app.add_subcommand("reboot", "Restart a device and wait until it is back");
    auto options = std::make_shared<RebootOptions>();
    command->add_flag("--yes", options->yes, "Do not ask");
    auto* wait = command->add_option("--wait", options->waitSeconds, "How long to wait for its return")
                     ->type_name("SECONDS")
                     ->capture_default_str()
                     ->check(CLI::Range(1, kLongestWait).description(""));
    command->add_flag("--no-wait", options->noWait, "End when the device has taken the command")
        ->excludes(wait);
    addDeviceOptions(*command, options->device);
    addCommonOptions(*command, common);
    command->footer(kFooter);
    command->callback(
        [&common, &run, options] { run = [&common, options] { return RebootRun(common, *options).run(); }; });
}

}  // namespace host
