#pragma once

#include <CLI/CLI.hpp>
#include <string>

#include "program/printer.h"

namespace veltasim {

struct ReplaySettings {
    std::string file;  // empty: the device answers for itself
    std::string device;
    double speed = 1;
};

// After all other options.
void addReplayOptions(CLI::App& app, ReplaySettings& settings);
// Reads the recording, if there is one. Throws BadUsage if it is wrong. The printer must outlive the devices.
void prepareReplay(const ReplaySettings& settings, Options& device, Printer& printer);

}  // namespace veltasim
