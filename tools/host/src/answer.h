// What an answer of the gateway says about the success of a request.
#pragma once

#include <cstdint>
#include <string>

#include "failure.h"

namespace host {

// A status as the answer gives it.
struct Status {
    uint32_t errorCode = 0;  // 0: the answer has none
    std::string name;
    std::string description;
};
std::string statusText(const Status& status);  // "0x60000001 badParameters: Incorrect parameter."

struct Verdict {
    ExitCode code = ExitCode::Ok;
    std::string reason;  // empty: nothing to say
    std::string hint;
    Status status{};
    // False: the plug-in answers the same when it gets nothing from the device, or no log-in.
    bool isConclusive = true;
};

Verdict judgeAnswer(const std::string& answer);

}  // namespace host
