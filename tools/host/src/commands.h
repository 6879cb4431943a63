// The commands: each adds itself to the command line, and sets what is to be run when it is chosen.
#pragma once

#include <CLI/App.hpp>
#include <functional>

#include "failure.h"
#include "options.h"

namespace host {

using Run = std::function<ExitCode()>;

void addEventsCommand(CLI::App& app, CommonOptions& common, Run& run);
void addRequestCommand(CLI::App& app, CommonOptions& common, Run& run);
void addStatusCommand(CLI::App& app, CommonOptions& common, Run& run);
void addInventoryCommand(CLI::App& app, CommonOptions& common, Run& run);
void addDemoCommand(CLI::App& app, CommonOptions& common, Run& run);

}  // namespace host
