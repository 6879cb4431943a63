#ifndef VELTA_GATEWAY_HOSTREQUEST_H
#define VELTA_GATEWAY_HOSTREQUEST_H

#include <json/value.h>

#include <string>

namespace velta {

/* A host's request out of its envelope. */
struct HostRequest {
    std::string method;
    std::string uri;      /* with its query */
    std::string bodyText; /* byte for byte as the host sent it */
    Json::Value body;     /* the text as JSON; null when it is none */
};

}  // namespace velta

#endif
