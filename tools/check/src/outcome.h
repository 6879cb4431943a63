// How a check ended.
#pragma once

#include <string>
#include <vector>

#include "check.h"
#include "trial.h"

namespace check {

enum class Ending { Passed, Failed, Crashed, Hung };

struct Outcome {
    Check check;
    Ending ending = Ending::Passed;
    double seconds = 0;
    std::vector<Finding> findings = {};
    std::string cause = {};      // of a crash or a hang: "SIGSEGV", "did not end in 60 s"
    std::string lastWords = {};  // of a process that crashed or hung: the last lines it printed
};

}  // namespace check
