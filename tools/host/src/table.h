// Columns of text.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace host {

// Lines whose cells stand below each other; no line feed at the end, nor blanks at the ends of lines.
std::string table(const std::vector<std::vector<std::string>>& rows);

// The same for a table that comes in pieces: its columns have at least these widths, and hand on what they got.
std::string table(const std::vector<std::vector<std::string>>& rows, std::vector<size_t>& widths);

}  // namespace host
