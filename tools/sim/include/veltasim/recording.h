// What a device has answered once, read from an HTTP archive (HAR), to be answered again.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

namespace veltasim {

struct RecordedAnswer {
    struct Part {
        std::chrono::milliseconds time{0};  // after the answer began
        std::string bytes;                  // boundary line, headers and body
    };

    std::string method;
    std::string target;  // path and query
    std::string requestBody;
    int status = 0;  // 0: the device left the request without an answer
    std::string contentType;
    std::string body;
    bool isStream = false;    // of parts, without an end
    std::vector<Part> parts;  // of a stream
};

struct Recording {
    // Reads the exchanges with one device: "HOST[:PORT]", the first one in the archive if it is empty. Refused
    // log-ins and connections that were never made are left out. Where a trace tells that a picture or a template
    // was left out, something of the same length takes its place. Throws std::runtime_error that says where the
    // archive is wrong.
    static Recording fromHar(const std::string& text, const std::string& device = "");

    std::string address;  // of the recorded device
    uint16_t port = 80;
    std::vector<RecordedAnswer> answers;
    std::vector<std::string> otherDevices;  // "HOST:PORT", each once
};

}  // namespace veltasim
