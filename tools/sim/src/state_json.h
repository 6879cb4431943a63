#pragma once

#include <cstdint>
#include <string>

#include <veltasim/options.h>

#include "state.h"

namespace veltasim {

// What lasts of a device as JSON text: its name and zone, and all of the access controller but for open doors.
std::string stateToText(const State& state, uint64_t lastSerialNo);

// Puts it back. Returns the last serial number. Throws std::runtime_error that says where the text is wrong, and
// then nothing has changed.
uint64_t stateFromText(State& state, const Options& options, const std::string& text);

}  // namespace veltasim
