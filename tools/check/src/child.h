// The process of one check: what it does, and how it tells its parent.
#pragma once

#include <chrono>
#include <string>
#include <string_view>
#include <vector>

#include "check.h"
#include "trial.h"

namespace check {

constexpr int kReportFd = 3;  // where a child writes its report

// In the child: runs the check; the exit code of the process.
int runHere(const Check& check, const std::string& libraryPath, std::chrono::seconds timeLimit);
// In the child: loads the library and nothing else.
int loadHere(const std::string& libraryPath);

// What a child reported. It has ended in its own time only when isComplete.
struct ChildReport {
    std::vector<Finding> findings;
    bool isComplete = false;
};
ChildReport parseReport(const std::string& text);

}  // namespace check
