#pragma once

#include <string>
#include <string_view>

namespace veltasim {

// The content of a part of a multipart form; empty: there is none of that name. Only the boundary counts, as
// some clients announce a wrong length for a part.
std::string_view formPart(std::string_view contentType, std::string_view body, std::string_view name);

}  // namespace veltasim
