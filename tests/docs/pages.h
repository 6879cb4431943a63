/* Examples of requests in the pages: a block marked "request", then what the device gets ("to-device") and what the
 * host gets ("answer"). docs/contributing.md says how they are written. */
#pragma once

#include <string>
#include <vector>

namespace docs {

/* What stands between two fences. */
struct Block {
    std::string mark;  // the second word behind the opening fence; empty: no example
    std::string flag;  // the third
    size_t first = 0;  // line below the opening fence, from 0
    size_t end = 0;    // line of the closing fence; 0: there is no such block
    std::string text = {};
};

struct DeviceRequest {
    std::string line; /* "PUT /VELTA/..." */
    std::string body;
};

struct Example {
    std::string place; /* "/.../docs/requests/doors.md:12" */
    Block request;
    Block toDevice;
    Block answer;
    std::string method;
    std::string uri;
    std::string body;
};

using Lines = std::vector<std::string>;

/* Throws std::runtime_error for a marked block that belongs to no example. */
std::vector<Example> examplesIn(const std::string& path, const Lines& page);

/* Whether a page shows this text: white space counts as one blank and not at all beside tags, the order of JSON
 * members not at all; "*" stands for any characters, and "*" alone for any JSON value. */
bool shows(const std::string& page, const std::string& actual);
bool showsRequests(const Example& example, const std::vector<DeviceRequest>& actual);

/* The texts as a page should show them. */
std::string pretty(const std::string& text);
std::string prettyRequests(const Example& example, const std::vector<DeviceRequest>& actual);

}  // namespace docs
