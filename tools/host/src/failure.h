// How commands fail: with an exit code, a sentence and, where there is one, the next thing to try.
#pragma once

#include <stdexcept>
#include <string>
#include <utility>

namespace host {

enum class ExitCode {
    Ok = 0,
    Failed = 1,
    WrongUsage = 2,
    NoLibrary = 3,
    Unreachable = 4,
    Refused = 5,
    Locked = 6,
};

struct Failure : std::runtime_error {
    Failure(ExitCode exitCode, const std::string& what, std::string whatNext = "")
        : std::runtime_error(what), code(exitCode), hint(std::move(whatNext)) {}

    ExitCode code;
    std::string hint;
};

}  // namespace host
