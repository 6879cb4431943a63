// What is printed.
#pragma once

#include <string>
#include <vector>

#include "check.h"
#include "outcome.h"

namespace check {

std::string listing(const std::vector<Check>& checks);
// A table, the findings, and the count.
std::string textReport(const std::string& libraryPath, const std::vector<Outcome>& outcomes);
// The same as one JSON document.
std::string jsonReport(const std::string& libraryPath, const std::vector<Outcome>& outcomes);

bool allPassed(const std::vector<Outcome>& outcomes);

}  // namespace check
