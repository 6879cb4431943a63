#pragma once

#include <CLI/CLI.hpp>
#include <string>

#include <veltasim/options.h>

#include "fd.h"

namespace veltasim {

// Adds --hostile to a command line that is otherwise complete.
void addHostileOption(CLI::App& app, std::string& trick);
// Prints the table of tricks, or runs a hostile device until a signal arrives. Throws BadUsage if the command line
// asks for what a hostile device has not, std::system_error if its port cannot be had.
int runHostile(const CLI::App& app, const std::string& trick, const Options& options, const Fd& signals);

}  // namespace veltasim
