// velta-host events: what devices report, as it comes.

#include <CLI/CLI.hpp>
#include <memory>
#include <optional>
#include <vector>

#include "commands.h"
#include "event_text.h"
#include "host.h"
#include "statuses.h"

namespace host {
namespace {

constexpr const char* kFooter = R"(
Events come once the online check, every 15 s, has logged in to the device. It ends with Ctrl-C.

A device that refuses the credentials is given up, since every further try would bring its user closer to being locked.
When a device closes the stream of its events but stays online, no events come until it has been away once: start
again. Events are matched to devices by the address that the device reports: behind address translation none arrive.
The exit code is 0 when every device was online once; with --count, when so many events came.

Examples:
  velta-host events --device 192.168.1.20 --pictures /tmp/faces
  velta-host events --device 192.168.1.20 --device 192.168.1.21:8080 --json | jq 'select(.type == "event")'
  velta-host events --device 192.168.1.20 --count 1 --for 60     is an event seen within a minute?)";

constexpr auto kAnswerOfFirstCheck = std::chrono::seconds(2);
constexpr auto kTick = std::chrono::milliseconds(500);

struct EventsOptions {
    std::vector<std::string> devices;
    LoginOptions login;
    std::string pictures;
    unsigned count = 0;    // 0: no end
    unsigned seconds = 0;  // 0: no end
};

class EventsRun {
 public:
    EventsRun(const CommonOptions& common, const EventsOptions& options) : options_(options), host_(common) {
        host_.connect(options.devices, options.login);
        firstCheck_ = host_.plugin->nextCheck();
        states_.resize(host_.sessions.size());
    }

    ExitCode run() {
        while (!isOver()) {
            tellTheWait();
            if (auto report = host_.inbox.take(Clock::now() + kTick))
                std::visit([this](const auto& one) { this->on(one); }, *report);
        }
        if (host_.inbox.lost() > 0)
            host_.console.note(std::to_string(host_.inbox.lost()) +
                               " events were lost: the output is too slow");
        return outcome();
    }

 private:
    struct State {
        int last = VELTA_STATUS_UNKNOWN;
        bool wasOnline = false;
        bool isGivenUp = false;
    };

    bool isOver() const {
        if (host_.waiter.interrupted()) return true;
        if (options_.count > 0 && events_ >= options_.count) return true;
        if (options_.seconds > 0 && Clock::now() > firstCheck_ + std::chrono::seconds(options_.seconds))
            return true;
        for (const State& state : states_) {
            if (!state.isGivenUp) return false;
        }
        return true;
    }

    ExitCode outcome() const {
        for (const State& state : states_) {
            if (!state.wasOnline && !host_.waiter.interrupted()) return meaningOf(state.last).exitCode;
        }
        return options_.count > events_ && !host_.waiter.interrupted() ? ExitCode::Failed : ExitCode::Ok;
    }

    void tellTheWait() {
        if (Clock::now() < firstCheck_) return host_.console.countdown("Online check", firstCheck_);
        // No change is reported for a device that is not reached from the beginning.
        if (toldSilence_ || Clock::now() < firstCheck_ + kAnswerOfFirstCheck) return;
        toldSilence_ = true;
        for (size_t i = 0; i < states_.size() && !host_.waiter.interrupted(); ++i) {
            if (host_.sessions[i]->status() != VELTA_STATUS_UNKNOWN || states_[i].wasOnline) continue;
            tell(i, VELTA_STATUS_UNKNOWN, probe(host_.sessions[i]->device()));
        }
    }

    void tell(size_t i, int status, const std::optional<Reachability>& found = {}) {
        const DeviceAddress& device = host_.sessions[i]->device();
        if (host_.console.isJson())
            host_.console.result("", statusJson(device, status, found));
        else
            host_.console.note(statusLine(device, status, found));
    }

    void on(const StatusReport& report) {
        Session& session = *host_.sessions[report.session];
        State& state = states_[report.session];
        state.last = report.status;
        tell(report.session, report.status);
        if (report.status == VELTA_STATUS_REFUSED) {
            session.disconnect();
            state.isGivenUp = true;
        }
        if (report.status != VELTA_STATUS_ONLINE) return;
        state.wasOnline = true;
        host_.awaitStored(session, VELTA_STATUS_ONLINE);
        // A device that went away meanwhile arms when it is back.
        if (const int code = session.arm(); code != VELTA_OK && session.status() == VELTA_STATUS_ONLINE)
            host_.console.note(session.device().text() + ": no events, arming failed: " + resultText(code));
    }

    void on(const EventReport& report) {
        const EventView event(host_.sessions[report.session]->device(), report, options_.pictures);
        host_.console.result(event.line(), event.json());
        ++events_;
    }

    const EventsOptions& options_;
    Host host_;
    Clock::time_point firstCheck_;
    std::vector<State> states_;
    size_t events_ = 0;
    bool toldSilence_ = false;
};

}  // namespace

void addEventsCommand(CLI::App& app, CommonOptions& common, Run& run) {
    CLI::App* command = app.add_subcommand("events", "Print the events of devices as they come");
    auto options = std::make_shared<EventsOptions>();
    command->add_option("--pictures", options->pictures, "Folder to save the pictures of events in")
        ->type_name("DIR");
    command->add_option("--count", options->count, "End after so many events")
        ->type_name("N")
        ->check(CLI::PositiveNumber.description(""));
    command->add_option("--for", options->seconds, "End after this time, counted from the first online check")
        ->type_name("SECONDS")
        ->check(CLI::PositiveNumber.description(""));
    addDevices(*command, options->devices);
    addLoginOptions(*command, options->login);
    addCommonOptions(*command, common);
    command->footer(kFooter);
    command->callback(
        [&common, &run, options] { run = [&common, options] { return EventsRun(common, *options).run(); }; });
}

}  // namespace host
