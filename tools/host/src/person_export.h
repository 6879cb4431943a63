// Persons and their cards from a device to a file of comma-separated values.
#pragma once

#include <string>

#include "site.h"

namespace host {

// file: empty or "-" for standard output. A file appears when it is complete. Throws Failure.
ExitCode exportPersons(const Site& site, const std::string& file);

}  // namespace host
