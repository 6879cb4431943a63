#pragma once

#include <string_view>

#include <veltasim/event.h>

namespace veltasim {

// "small", "medium" or "large"; empty: no picture has that name.
std::string_view pictureNamed(std::string_view name);
std::string_view nameOfPicture(std::string_view picture);  // the reverse
// The built-in picture that these bytes are; empty: none.
std::string_view builtInPicture(std::string_view bytes);

}  // namespace veltasim
