// velta-host: a host platform in one program, to see a device through the eyes of the plug-in.

#include <CLI/CLI.hpp>
#include <exception>
#include <iostream>

#include "commands.h"
#include "text.h"

namespace {

constexpr const char* kFooter = R"(
Examples:
  velta-host demo                                       the whole plug-in against a simulated device, in a minute
  velta-host status --device 192.168.1.20               is it there, does it take the password?
  velta-host events --device 192.168.1.20 --device 192.168.1.21:8080 --pictures /tmp/faces
  velta-host request --device 192.168.1.20 GET /VELTA/System/deviceInfo
  velta-host time --device 192.168.1.20 --set
  velta-host persons import --device 192.168.1.20 staff.csv
  velta-host doors open 2 --device 192.168.1.20
  velta-host status --device 192.168.1.20 --trace door.har   what was said, to look at or to take home
  velta-host COMMAND --help                             options and examples of a command

Exit codes:
  0  ok
  1  the operation failed, or was interrupted
  2  wrong usage
  3  the plug-in can't be loaded
  4  the device is not reachable
  5  the device refuses the credentials
  6  the device has locked the user)";

int report(const host::Failure& failure) {
    if (*failure.what() != '\0') std::cerr << "velta-host: " << host::printable(failure.what()) << '\n';
    if (!failure.hint.empty()) std::cerr << "            " << host::printable(failure.hint) << '\n';
    return static_cast<int>(failure.code);
}

}  // namespace

int main(int argc, char** argv) {
    try {
        CLI::App app("A host for the VELTA device plug-in: shows devices as a platform sees them.",
                     "velta-host");
        app.footer(kFooter);
        app.require_subcommand(1);
        host::CommonOptions common;
        host::addCommonOptions(app, common);
        host::Run run;
        host::addStatusCommand(app, common, run);
        host::addEventsCommand(app, common, run);
        host::addRequestCommand(app, common, run);
        host::addInventoryCommand(app, common, run);
        host::addTimeCommand(app, common, run);
        host::addNetworkCommand(app, common, run);
        host::addOutputCommand(app, common, run);
        host::addRebootCommand(app, common, run);
        host::addConfigCommand(app, common, run);
        host::addPersonsCommand(app, common, run);
        host::addCardsCommand(app, common, run);
        host::addFacesCommand(app, common, run);
        host::addFingerprintsCommand(app, common, run);
        host::addDoorsCommand(app, common, run);
        host::addLogCommand(app, common, run);
        host::addSchedulesCommand(app, common, run);
        host::addHostsCommand(app, common, run);
        host::addDemoCommand(app, common, run);
        try {
            app.parse(argc, argv);
        } catch (const CLI::ParseError& error) {
            return app.exit(error) == 0 ? 0 : static_cast<int>(host::ExitCode::WrongUsage);
        }
        return static_cast<int>(run());
    } catch (const host::Failure& failure) {
        return report(failure);
    } catch (const std::exception& error) {
        std::cerr << "velta-host: " << error.what() << '\n';
        return static_cast<int>(host::ExitCode::Failed);
    }
}
