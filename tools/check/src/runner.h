// Runs checks, each in a process of its own, several at a time.
#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <vector>

#include "check.h"
#include "outcome.h"

namespace check {

struct RunOptions {
    std::string libraryPath;
    unsigned jobs = 1;
    std::chrono::seconds timeLimit{60};  // for each check
};

// Options of this program that make it the process of a check.
constexpr const char* kRunOneOption = "--run-one";
constexpr const char* kTimeLimitOption = "--time-limit";
constexpr const char* kJustLoad = "load";  // in place of a check: load the library, and end

// The outcomes in the order of the checks. onEnd is called after each with the number of those that have ended.
// Throws std::system_error when no process can be started.
std::vector<Outcome> runChecks(const std::vector<Check>& checks, const RunOptions& options,
                               const std::function<void(size_t ended)>& onEnd);

// Why the library can't be loaded; empty: it can.
std::string loadError(const std::string& libraryPath);

}  // namespace check
