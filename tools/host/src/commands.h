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
void addTimeCommand(CLI::App& app, CommonOptions& common, Run& run);
void addNetworkCommand(CLI::App& app, CommonOptions& common, Run& run);
void addOutputCommand(CLI::App& app, CommonOptions& common, Run& run);
void addRebootCommand(CLI::App& app, CommonOptions& common, Run& run);
void addConfigCommand(CLI::App& app, CommonOptions& common, Run& run);
void addPersonsCommand(CLI::App& app, CommonOptions& common, Run& run);
void addCardsCommand(CLI::App& app, CommonOptions& common, Run& run);
void addFacesCommand(CLI::App& app, CommonOptions& common, Run& run);
void addFingerprintsCommand(CLI::App& app, CommonOptions& common, Run& run);
void addDoorsCommand(CLI::App& app, CommonOptions& common, Run& run);
void addLogCommand(CLI::App& app, CommonOptions& common, Run& run);
void addSchedulesCommand(CLI::App& app, CommonOptions& common, Run& run);
void addHostsCommand(CLI::App& app, CommonOptions& common, Run& run);
void addDemoCommand(CLI::App& app, CommonOptions& common, Run& run);

}  // namespace host
