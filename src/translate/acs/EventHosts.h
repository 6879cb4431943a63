#ifndef VELTA_TRANSLATE_ACS_EVENTHOSTS_H
#define VELTA_TRANSLATE_ACS_EVENTHOSTS_H

#include <string>

/* Whether text is four numbers from 0 to 255 with dots between them and nothing behind. As ever, blanks and a
 * sign may stand before a number. */
bool IsIp(const std::string& text);

#endif
