// Reading the library's answers.
#pragma once

#include <json/json.h>

#include <cstdint>
#include <string>

#include "library.h"
#include "trial.h"

namespace check {

// A text that is no JSON object ends the check.
Json::Value mustBeObject(Trial& trial, const std::string& what, const std::string& text);
Json::Value inventory(Trial& trial, const Session& session);

// The answer is the host's status JSON of this error number.
bool isStatus(Trial& trial, const std::string& what, uint32_t errorCode, const std::string& answer);

}  // namespace check
