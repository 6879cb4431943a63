// What an answer of the gateway says about the success of a request.
#pragma once

#include <string>

#include "failure.h"

namespace host {

struct Verdict {
    ExitCode code = ExitCode::Ok;
    std::string reason;      // empty: nothing to say
    bool fromDevice = true;  // false: the plug-in has no answer of the device to pass on
};

Verdict judgeAnswer(const std::string& answer);

}  // namespace host
