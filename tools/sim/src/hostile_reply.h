#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace veltasim {

// What the answers of a hostile device are made of.
struct HostileReply {
    std::string head;       // of the request, as far as it was read
    std::string here;       // address and port
    std::string elsewhere;  // those of the other host

    std::string_view target() const;  // of the request; "/" if there is none
    bool asksForUser() const;         // the check that is always answered well
    bool carriesCredentials() const;
    size_t bodyLength() const;

    // The text with its "{...}" filled in.
    std::string fill(std::string_view text) const;

 private:
    std::string good() const;
};

}  // namespace veltasim
