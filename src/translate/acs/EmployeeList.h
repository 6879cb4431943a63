/* Persons and cards as hosts list them: {"employeeNo":"1001"}, {"cardNo":"0123456789"}. */
#ifndef VELTA_TRANSLATE_ACS_EMPLOYEELIST_H
#define VELTA_TRANSLATE_ACS_EMPLOYEELIST_H

#include "translate/HostRules.h"

namespace velta {

inline constexpr HostRule kEmployee[] = {{"employeeNo", Presence::Required, JsonType::String}};
inline constexpr HostRule kCard[] = {{"cardNo", Presence::Required, JsonType::String}};

}  // namespace velta

#endif
