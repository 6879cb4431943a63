// Reading the library's answers.
#pragma once

#include <json/json.h>

#include <cstdint>
#include <string>

#include "library.h"
#include "trial.h"

namespace check {

// Error numbers and results that hosts meet.
inline constexpr uint32_t kBadParameter = 0x60000001;
inline constexpr uint32_t kNotSupported = 0x40000001;
inline constexpr uint32_t kUnknown = 0x4000111D;
inline constexpr uint32_t kOk = 1;

// A resource that no route takes, and the request for it.
inline constexpr const char* kPath = "/VELTA/Custom/thing";
inline const std::string kUri = std::string(kPath) + "?devIndex=1";

// A text that is no JSON object ends the check.
Json::Value mustBeObject(Trial& trial, const std::string& what, const std::string& text);
Json::Value inventory(Trial& trial, const Session& session);

// The answer is the host's status JSON of this error number.
bool isStatus(Trial& trial, const std::string& what, uint32_t errorCode, const std::string& answer);

}  // namespace check
