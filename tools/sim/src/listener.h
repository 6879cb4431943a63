#pragma once

#include <cstdint>
#include <string>

#include "fd.h"

namespace veltasim {

// A TCP port that stays ours while it accepts connections and while it refuses them.
class Listener {
 public:
    // Throws std::system_error.
    Listener(const std::string& address, uint16_t port);

    uint16_t port() const { return port_; }
    // A descriptor of the listening socket, for the caller to close. Throws std::system_error.
    Fd accepting();
    // From now on connections are refused, but no other program gets the port.
    void refuse();

 private:
    Fd socket_;
    uint16_t port_ = 0;
};

}  // namespace veltasim
