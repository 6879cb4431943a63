// The options that several commands have.
#pragma once

#include <CLI/App.hpp>
#include <string>
#include <vector>

#include "device_address.h"
#include "plugin.h"
#include "trace/left_out.h"

namespace host {

struct CommonOptions {
    std::string library;
    std::string logLevel = "off";
    bool json = false;
    std::string trace;  // file; empty: none
    Keep keepInTrace;
};

struct LoginOptions {
    std::string user = "admin";
    std::string password;
    std::string passwordFile;
    bool passwordStdin = false;
};

// What a command for one device has.
struct DeviceOptions {
    std::string device;
    LoginOptions login;
};

// The path of a file beside this program.
std::string besideProgram(const std::string& name);

void addCommonOptions(CLI::App& app, CommonOptions& options);
void addLoginOptions(CLI::App& app, LoginOptions& options);
void addDevice(CLI::App& app, std::string& device);
void addDeviceOptions(CLI::App& app, DeviceOptions& options);
void addDevices(CLI::App& app, std::vector<std::string>& devices);

// The credentials; asks for the password on the terminal when none is given. Throws Failure.
Credentials askCredentials(const LoginOptions& options, Waiter& waiter);

}  // namespace host
