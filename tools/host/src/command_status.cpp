// velta-host status: what the online check makes of each device.

#include <CLI/CLI.hpp>
#include <memory>
#include <optional>
#include <vector>

#include "commands.h"
#include "host.h"
#include "statuses.h"

namespace host {
namespace {

constexpr const char* kFooter = R"(
The plug-in logs in to its devices every 15 s, for the first time 15 s after its start: that is how long this takes.
A device that is not reached is looked at more closely.
The exit code is that of the first device that is not online.

Examples:
  velta-host status --device 192.168.1.20
  velta-host status --device 192.168.1.20 --device 192.168.1.21:8080 --password-file ~/.velta --json)";

constexpr auto kFastAnswer = std::chrono::seconds(1);
constexpr auto kSlowestAnswer =
    std::chrono::seconds(15);  // of one device; they are checked one after the other
constexpr auto kLookAgain = std::chrono::milliseconds(100);

struct StatusOptions {
    std::vector<std::string> devices;
    LoginOptions login;
};

// "Not reachable" is also what every session begins with, and is not reported: a device counts as not reached
// when nothing accepts its connections, or when the check has had the time for every device.
class StatusRun {
 public:
    StatusRun(const CommonOptions& common, const StatusOptions& options) : host_(common) {
        host_.connect(options.devices, options.login);
        open_ = host_.sessions.size();
        devices_.resize(open_);
        firstCheck_ = host_.plugin->nextCheck();
        latest_ = firstCheck_ + kFastAnswer + kSlowestAnswer * open_;
    }

    ExitCode run() {
        while (open_ > 0) {
            for (size_t i = 0; i < devices_.size(); ++i)
                look(i);
            host_.waiter.throwIfInterrupted();
            if (open_ > 0) wait();
        }
        for (const Device& device : devices_) {
            if (device.status != VELTA_STATUS_ONLINE) return meaningOf(device.status).exitCode;
        }
        return ExitCode::Ok;
    }

 private:
    void wait() {
        if (Clock::now() < firstCheck_)
            host_.console.countdown("Online check", firstCheck_);
        else if (Clock::now() > firstCheck_ + kFastAnswer)
            host_.console.countdown("A device accepts connections but is slow; given up", latest_);
        host_.waiter.wait(Clock::now() + kLookAgain);
    }

    void look(size_t i) {
        Device& device = devices_[i];
        if (device.settled) return;
        const int status = host_.sessions[i]->status();
        if (status != VELTA_STATUS_UNKNOWN) return settle(i, status);
        if (Clock::now() < firstCheck_ + kFastAnswer) return;
        if (!device.found) device.found = probe(host_.sessions[i]->device());
        if (!device.found->accepts || Clock::now() > latest_) settle(i, VELTA_STATUS_UNKNOWN);
    }

    // Leaves the check, so that a wrong password is tried once only.
    void settle(size_t i, int status) {
        Session& session = *host_.sessions[i];
        session.disconnect();
        devices_[i].status = status;
        devices_[i].settled = true;
        --open_;
        host_.console.result(statusLine(session.device(), status, devices_[i].found),
                             statusJson(session.device(), status, devices_[i].found));
    }

    struct Device {
        int status = VELTA_STATUS_UNKNOWN;
        bool settled = false;
        std::optional<Reachability> found;  // after the check has brought no status; tried once
    };

    Host host_;
    Clock::time_point firstCheck_;
    Clock::time_point latest_;
    std::vector<Device> devices_;
    size_t open_ = 0;
};

}  // namespace

void addStatusCommand(CLI::App& app, CommonOptions& common, Run& run) {
    CLI::App* command = app.add_subcommand("status", "Tell whether devices are online, and if not, why");
    auto options = std::make_shared<StatusOptions>();
    addDevices(*command, options->devices);
    addLoginOptions(*command, options->login);
    addCommonOptions(*command, common);
    command->footer(kFooter);
    command->callback(
        [&common, &run, options] { run = [&common, options] { return StatusRun(common, *options).run(); }; });
}

}  // namespace host
