/* What was done with which results, and what went wrong. Any thread. */
#pragma once

#include <cstdint>
#include <string>

namespace stress {

/* Notes the result of a call; one that the headers do not name for it is a violation. Returns the result. */
uint32_t note(const char* call, int result);
uint64_t notedCalls();

void violation(const std::string& what);
int violations();

}  // namespace stress
