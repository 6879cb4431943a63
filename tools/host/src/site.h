// What a command works with that asks one device for this and that.
#pragma once

#include <json/value.h>

#include <cstdint>
#include <string>
#include <vector>

#include "failure.h"
#include "host.h"

namespace host {

struct Site {
    Host& host;
    const Session& session;
    std::string device;  // as the user names it

    // Throws as exchange() does.
    Json::Value ask(const std::string& method, const std::string& uri, const Json::Value& body = {}) const;
    // One result; as JSON {"type", "device"} and the members.
    void report(const char* type, const std::string& text, const Json::Value& members = {}) const;
    // Follows a work that goes on in the device: the document of the URI holds {root: {"status"}}. Throws
    // Failure when the device says that the work has failed.
    void awaitWork(const std::string& what, const std::string& uri, const char* root) const;
};

// "1001,1002" and "3 persons", "1 person"
std::string joined(const std::vector<std::string>& texts, const char* separator);
std::string counted(uint64_t count, const std::string& noun);
std::vector<std::string> split(const std::string& text, char separator);  // an empty text has no pieces

uint64_t numberAt(const Json::Value& json, const std::string& path);  // path as in ".list[0].count"

// [{key: text}, ...], as conditions name persons and cards.
Json::Value objectsOf(const char* key, const std::vector<std::string>& texts);

}  // namespace host
