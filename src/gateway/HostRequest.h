#ifndef VELTA_GATEWAY_HOSTREQUEST_H
#define VELTA_GATEWAY_HOSTREQUEST_H

#include <string>

#include "gateway/JsonText.h"

namespace velta {

/* The body of a host's request. Documents that go to the device unchanged are the text. */
struct HostBody {
    std::string text; /* byte for byte as the host sent it */
    Json::Value
        json; /* null when the text is no JSON, and before it is read: most bodies only pass through */

    void readJson() {
        if (!parseJson(text, json)) json = Json::Value();
    }
};

/* A host's request out of its envelope. */
struct HostRequest {
    std::string method;
    std::string uri; /* with its query */
    HostBody body;
};

}  // namespace velta

#endif
