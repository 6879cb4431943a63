/* What a host hands to the gateway: an object with the text members "method", "uri" and "body". */
#ifndef VELTA_GATEWAY_ENVELOPE_H
#define VELTA_GATEWAY_ENVELOPE_H

#include <string_view>

#include "gateway/HostRequest.h"

namespace velta {

/* False when text is no envelope; blanks around it are allowed, and the method may be any value that reads as a
 * text. The body's JSON is not read. */
bool readEnvelope(std::string_view text, HostRequest& request);

}  // namespace velta

#endif
