#ifndef VELTA_TRANSLATE_ACS_SCHEDULES_H
#define VELTA_TRANSLATE_ACS_SCHEDULES_H

#include <string>
#include <string_view>

namespace velta {

/* The text without any of the characters, wherever they stand. */
std::string trim(std::string text, std::string_view characters);

}  // namespace velta

#endif
