#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace veltasim {

std::string base64(std::string_view bytes);
std::optional<std::string> fromBase64(std::string_view text);  // nothing: it is none

}  // namespace veltasim
