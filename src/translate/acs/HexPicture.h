/* Pictures as hosts write them in JSON: two hexadecimal digits a byte. */
#ifndef VELTA_TRANSLATE_ACS_HEXPICTURE_H
#define VELTA_TRANSLATE_ACS_HEXPICTURE_H

#include <string>
#include <string_view>

namespace velta {

/* Reads each pair of characters as strtol does in base 16: "FF" is 0xFF, "1x" is 1, "x1" is 0, " 1" is 1, "-1"
 * is 0xFF. An odd last character is read alone. */
std::string hexToStr(std::string_view text);

/* Upper-case digits, with the separator behind every byte, the last one included. */
std::string stringToHex(std::string_view bytes, std::string_view separator);

}  // namespace velta

#endif
