// How far something has come.
#pragma once

#include <cstdint>
#include <string>

namespace host {

// "[##########..........]  50 %"; empty when the total is unknown (0).
std::string progressBar(uint64_t done, uint64_t total);

}  // namespace host
