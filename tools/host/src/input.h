// Reading what the user types or pipes in, so that Ctrl-C works meanwhile.
#pragma once

#include <string>

#include "waiter.h"

namespace host {

// All throw Failure when interrupted.
std::string readLine(int fd, Waiter& waiter);  // without its line end
std::string readAll(int fd, Waiter& waiter);
// Asks on the terminal. Throws Failure when the program has none.
std::string askWithoutEcho(const std::string& question, Waiter& waiter);

}  // namespace host
