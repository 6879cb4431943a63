#pragma once

#include <CLI/CLI.hpp>
#include <stdexcept>
#include <string>
#include <vector>

#include <veltasim/device.h>

namespace veltasim {

// What the user asked for makes no sense.
struct BadUsage : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// The command line.
struct Settings {
    Options device;
    unsigned count = 1;
    double eventEvery = 0;
    double heartbeat = 10;
    double rebootSeconds = 10;
    unsigned lockSeconds = 300;
    bool picture = false;
    bool eventAtConnect = false;
    bool quiet = false;
    bool json = false;
    bool console = false;
    int controlPort = -1;
    int panelPort = -1;  // less than 0: no panel
    bool noPanel = false;
    std::string panelAddress = "127.0.0.1";
    unsigned doorSeconds = 5;
    double backgroundSeconds = 0.2;
    std::string passwordFile;
    std::string stateFile;
    std::vector<std::string> faults;
};

void addOptions(CLI::App& app, Settings& settings);
// Works out what the options mean; on a terminal there is a panel unasked. Throws BadUsage.
void complete(Settings& settings, bool onTerminal);
// What happens at the door every so often.
AccessEvent doorEvent(const Settings& settings);

}  // namespace veltasim
