/* The texts between the tags of a device name, found without reading the document: what surrounds them stays
 * byte for byte as the device wrote it. */
#ifndef VELTA_GATEWAY_TAGTEXT_H
#define VELTA_GATEWAY_TAGTEXT_H

#include <optional>
#include <string>
#include <string_view>

namespace velta {

/* What stands between the first occurrence of opening and the first one of closing behind it. */
std::optional<std::string_view> textBetween(std::string_view text, std::string_view opening,
                                            std::string_view closing);

/* Puts name, as it stands, in the place of the device name of a device-information document. False, with the
 * document unchanged, when it has none. */
bool replaceDeviceName(std::string& document, std::string_view name);

}  // namespace velta

#endif
