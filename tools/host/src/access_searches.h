// What can be searched in a device.
#pragma once

#include "search.h"

namespace host {

inline constexpr SearchKind kPersonSearch{"/VELTA/AccessControl/UserInfo/Search", "UserInfoSearchCond",
                                          "UserInfoSearch", "UserInfo"};
inline constexpr SearchKind kCardSearch{"/VELTA/AccessControl/CardInfo/Search", "CardInfoSearchCond",
                                        "CardInfoSearch", "CardInfo"};
inline constexpr SearchKind kFaceSearch{"/VELTA/Intelligent/FDLib/FDSearch", "FaceInfoSearchCond",
                                        "FaceInfoSearch", "FaceInfo"};
inline constexpr SearchKind kEventSearch{"/VELTA/AccessControl/AcsEvent", "AcsEventSearchDescription",
                                         "AcsEventSearchResult", "MatchList"};

}  // namespace host
