// What a trace does not keep unless it is asked for: credentials, PINs, pictures, fingerprint templates.
#pragma once

#include <string>
#include <string_view>

namespace host {

struct Keep {
    bool secrets = false;
    bool pictures = false;
};

// Notes stand where something was: "[left out]" (a secret), "[left out: 8766 bytes]" (of a picture),
// "[left out: 512 characters]" (of a template).
std::string headerFor(const std::string& name, const std::string& value, Keep keep);
std::string targetFor(const std::string& target, Keep keep);  // path and query
std::string bodyFor(std::string_view contentType, std::string_view body, Keep keep);
// A part of a multipart body with its boundary line and its headers.
std::string partFor(std::string_view part, Keep keep);

bool isText(std::string_view bytes);  // UTF-8 without control characters

}  // namespace host
