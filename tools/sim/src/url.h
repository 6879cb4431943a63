#pragma once

#include <string>
#include <string_view>

namespace veltasim {

std::string percentEncoded(const std::string& text);
std::string percentDecoded(std::string_view text);
// The decoded value of a query parameter; empty: it is not there.
std::string queryValue(std::string_view target, std::string_view name);

}  // namespace veltasim
