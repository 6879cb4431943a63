#include "options.h"

#include <unistd.h>

#include <CLI/CLI.hpp>
#include <filesystem>
#include <fstream>
#include <stdexcept>

#include "failure.h"
#include "input.h"

namespace host {
namespace {

constexpr const char* kDeviceGroup = "Device";
constexpr const char* kDeviceHelp = "HOST[:PORT] of the device; the port is 80 otherwise";

std::string checkDevice(const std::string& text) {
    try {
        parseDeviceAddress(text);
        return "";
    } catch (const std::invalid_argument& error) {
        return error.what();
    }
}

std::string readPassword(const LoginOptions& options, Waiter& waiter) {
    if (!options.password.empty()) return options.password;
    if (options.passwordStdin) return readLine(STDIN_FILENO, waiter);
    if (options.passwordFile.empty()) return askWithoutEcho("Password of " + options.user + ": ", waiter);
    std::ifstream file(options.passwordFile);
    std::string line;
    if (!std::getline(file, line))
        throw Failure(ExitCode::WrongUsage, options.passwordFile + ": no password in there");
    if (line.ends_with('\r')) line.pop_back();
    return line;
}

}  // namespace

std::string besideProgram(const std::string& name) {
    std::error_code error;
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", error);
    return error ? name : (program.parent_path() / name).string();
}

void addCommonOptions(CLI::App& app, CommonOptions& options) {
    constexpr const char* kGroup = "Common options";
    app.add_option("--library", options.library, "The plug-in; libveltadev.so beside this program otherwise")
        ->type_name("PATH")
        ->group(kGroup);
    app.add_option("--log-level", options.logLevel,
                   "What the plug-in logs on standard error: debug, info, warning, error, off")
        ->type_name("LEVEL")
        ->check(CLI::IsMember(logLevelNames()).description(""))
        ->capture_default_str()
        ->group(kGroup);
    app.add_flag("--json", options.json, "Print JSON, one object per line")->group(kGroup);
    auto* trace =
        app.add_option("--trace", options.trace,
                       "Keep every exchange with devices in this file, an HTTP archive (HAR) that browsers' "
                       "developer tools open; passwords, PINs, pictures and fingerprints are left out")
            ->type_name("FILE")
            ->group(kGroup);
    app.add_flag("--trace-secrets", options.keepInTrace.secrets,
                 "Log-ins, passwords and PINs stay in the trace")
        ->needs(trace)
        ->group(kGroup);
    app.add_flag("--trace-pictures", options.keepInTrace.pictures,
                 "Pictures and fingerprints stay in the trace")
        ->needs(trace)
        ->group(kGroup);
}

void addLoginOptions(CLI::App& app, LoginOptions& options) {
    app.add_option("--user", options.user, "User name")
        ->type_name("NAME")
        ->capture_default_str()
        ->group(kDeviceGroup);
    auto* password = app.add_option("--password", options.password,
                                    "Password; other users of this machine can see it in the process list")
                         ->type_name("TEXT")
                         ->group(kDeviceGroup);
    auto* file =
        app.add_option("--password-file", options.passwordFile, "File whose first line is the password")
            ->type_name("FILE")
            ->check(CLI::ExistingFile.description(""))
            ->excludes(password)
            ->group(kDeviceGroup);
    app.add_flag("--password-stdin", options.passwordStdin,
                 "The first line of standard input is the password; without any of the three it is asked for")
        ->excludes(password)
        ->excludes(file)
        ->group(kDeviceGroup);
}

void addDevice(CLI::App& app, std::string& device) {
    app.add_option("--device", device, kDeviceHelp)
        ->type_name("ADDRESS")
        ->required()
        ->check(checkDevice)
        ->group(kDeviceGroup);
}

void addDeviceOptions(CLI::App& app, DeviceOptions& options) {
    addDevice(app, options.device);
    addLoginOptions(app, options.login);
}

void addDevices(CLI::App& app, std::vector<std::string>& devices) {
    app.add_option("--device", devices, std::string(kDeviceHelp) + "; may be repeated")
        ->type_name("ADDRESS")
        ->required()
        ->allow_extra_args(false)
        ->check(checkDevice)
        ->group(kDeviceGroup);
}

Credentials askCredentials(const LoginOptions& options, Waiter& waiter) {
    Credentials credentials{options.user, readPassword(options, waiter)};
    if (credentials.password.empty()) throw Failure(ExitCode::WrongUsage, "the password is empty");
    return credentials;
}

}  // namespace host
