// velta-sim: simulated VELTA devices to develop against.

#include <poll.h>
#include <pthread.h>
#include <signal.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <array>
#include <cmath>
#include <iostream>
#include <list>
#include <optional>

#include <veltasim/control.h>
#include <veltasim/device.h>
#include <veltasim/panel.h>

#include "fd.h"
#include "hostile_program.h"
#include "program/console.h"
#include "program/printer.h"
#include "program/replay_program.h"
#include "program/settings.h"
#include "program/state_file.h"

namespace veltasim {
namespace {

constexpr int kExitBadUsage = 2;
constexpr int kExitFailed = 3;

std::list<Device> startDevices(const Settings& settings, const StateFile& stateFile, Printer& printer) {
    std::list<Device> devices;
    uint16_t next = settings.device.port;
    for (unsigned i = 0; i < settings.count; ++i) {
        Options options = settings.device;
        if (settings.count > 1) options.identity = Identity::numbered(i);
        options.port = next;
        options.onRequest = [&printer](const RequestRecord& record) { printer.request(record); };
        Device& device = devices.emplace_back(options);
        for (const std::string& spec : settings.faults)
            device.setFault(*parseFault(spec));
        stateFile.load(device);
        device.start();
        printer.device(device);
        if (next != 0) ++next;
    }
    return devices;
}

// Blocks the signals that end the program, in every thread, and gives a descriptor on which they arrive.
Fd catchSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    signal(SIGPIPE, SIG_IGN);
    signal(SIGTTIN, SIG_IGN);  // in the background the console ends instead of stopping the program
    return Fd(signalfd(-1, &signals, SFD_CLOEXEC));
}

bool printsToTerminal() {
    return isatty(STDOUT_FILENO) == 1;
}

// Sends the events of the timetable and listens to the console until a signal asks the program to end.
void runUntilSignal(const Fd& signals, const Settings& settings, std::list<Device>& devices,
                    Console& console) {
    using Clock = std::chrono::steady_clock;
    const AccessEvent event = doorEvent(settings);
    const auto period = std::chrono::nanoseconds(std::llround(settings.eventEvery * 1e9));
    auto next = Clock::now() + period;
    // Whoever takes the output of the program keeps the terminal's input for himself.
    const bool listens = settings.console || (isatty(STDIN_FILENO) == 1 && printsToTerminal());
    std::array<pollfd, 2> files{{{signals.get(), POLLIN, 0}, {listens ? STDIN_FILENO : -1, POLLIN, 0}}};
    for (;;) {
        int wait = -1;
        if (period.count() > 0)
            wait = static_cast<int>(std::max<int64_t>(
                std::chrono::ceil<std::chrono::milliseconds>(next - Clock::now()).count(), 0));
        poll(files.data(), files.size(), wait);
        if (files[0].revents != 0) return;
        if (files[1].revents != 0 && !console.read()) files[1].fd = -1;
        if (period.count() == 0 || Clock::now() < next) continue;
        next += period;
        for (Device& device : devices)
            device.sendAccessEvent(event);
    }
}

int run(Settings& settings, const ReplaySettings& replay) {
    const Fd signals = catchSignals();
    raiseOpenFileLimit();
    complete(settings, printsToTerminal());
    Printer printer(settings);
    prepareReplay(replay, settings.device, printer);
    const StateFile stateFile(settings.stateFile);
    std::list<Device> devices = startDevices(settings, stateFile, printer);
    std::vector<Device*> all;
    for (Device& device : devices)
        all.push_back(&device);
    std::optional<ControlServer> control;
    if (settings.controlPort >= 0) {
        control.emplace(all, static_cast<uint16_t>(settings.controlPort));
        printer.control(control->url());
    }
    std::optional<PanelServer> panel;
    if (settings.panelPort >= 0) {
        panel.emplace(all, settings.panelAddress, static_cast<uint16_t>(settings.panelPort));
        printer.panel(panel->url());
    }
    Console console(devices.front(), stateFile,
                    [&printer](const std::string& text) { printer.message(text); });
    runUntilSignal(signals, settings, devices, console);
    stateFile.save(devices.front());
    return 0;
}

int runCommandLine(int argc, char** argv) {
    Settings settings;
    CLI::App app("Simulated VELTA devices: access controllers to develop against.", "velta-sim");
    addOptions(app, settings);
    ReplaySettings replay;
    addReplayOptions(app, replay);
    std::string trick;
    addHostileOption(app, trick);
    try {
        app.parse(argc, argv);
        if (!trick.empty()) return runHostile(app, trick, settings.device, catchSignals());
        return run(settings, replay);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? 0 : kExitBadUsage;
    } catch (const BadUsage& error) {
        std::cerr << "velta-sim: " << error.what() << '\n';
        return kExitBadUsage;
    } catch (const std::exception& error) {
        std::cerr << "velta-sim: " << error.what() << '\n';
        return kExitFailed;
    }
}

}  // namespace
}  // namespace veltasim

int main(int argc, char** argv) {
    return veltasim::runCommandLine(argc, argv);
}
