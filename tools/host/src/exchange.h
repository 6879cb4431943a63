// Requests of commands, whose answers are judged before anybody reads them.
#pragma once

#include <json/value.h>

#include <optional>
#include <string>

#include "answer.h"
#include "failure.h"
#include "host.h"

namespace host {

// A request that the device or the plug-in has answered with a status of failure.
class DeviceError : public Failure {
 public:
    explicit DeviceError(Status reported);
    Status status;
};

// One translated request: body (null: an empty text) goes out and the answer comes back as JSON. "format=json"
// is added to the uri. An answer that asks for a reboot is noted and counts as success.
// Throws DeviceError when the answer is a status of failure; Failure when nothing answers, when the
// credentials are refused (so that a series of requests ends there), and when the answer is no JSON.
Json::Value exchange(Host& host, const Session& session, const std::string& method, const std::string& uri,
                     const Json::Value& body = {});

// One request that goes to the device as it stands. Throws as above.
std::string exchangeText(Host& host, const Session& session, const std::string& method,
                         const std::string& uri, const std::string& body = "");

// What keeps the device from answering, found out by a connection and a log-in; nothing when it does answer.
std::optional<Failure> findObstacle(Host& host, const Session& session);

// "/path?format=json"
std::string jsonUri(const std::string& uri);

}  // namespace host
