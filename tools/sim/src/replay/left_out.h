// What a trace has left out, and what it tells of addresses.
#pragma once

#include <cstdint>
#include <string>

namespace veltasim {

// Puts in the place of "[left out: N bytes]" and "[left out: N characters]" so many bytes of a picture, and so many
// characters that are base64 and hexadecimal digits.
std::string filledIn(const std::string& text);
// A text that stands for a secret, of which nothing is known.
bool isLeftOut(const std::string& text);

struct DeviceEnd {
    std::string address;
    uint16_t port = 0;
};
// The part of a stream with the address that the event names, if it is `from`, replaced, and its Content-Length
// changed by as much as its body.
std::string readdressed(const std::string& part, const DeviceEnd& from, const DeviceEnd& to);

}  // namespace veltasim
