// Reading what the user types or pipes in, so that Ctrl-C works meanwhile.
#pragma once

#include <string>

#include "waiter.h"

namespace host {

// All throw Failure when interrupted.
std::string readLine(int fd, Waiter& waiter);  // without its line end
std::string readAll(int fd, Waiter& waiter);
// The next bytes; empty at the end of the input.
std::string readSome(int fd, Waiter& waiter, size_t most = std::string::npos);
// What is in a file; "-": on standard input. Throws Failure when it can't be read, or when there is nothing.
std::string readInput(const std::string& path, Waiter& waiter);
// Goes on when the user agrees to what is asked. Throws Failure otherwise, and when the program has no terminal.
void confirm(const std::string& question, Waiter& waiter);
// Throws Failure when the program has no terminal.
std::string askWithoutEcho(const std::string& question, Waiter& waiter);

}  // namespace host
