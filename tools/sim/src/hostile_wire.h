#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>

#include "fd.h"

namespace veltasim {

// A connection of a hostile device. Whatever it waits for ends when the descriptor `stop` becomes readable; each
// operation is false from then on, and when the peer has gone.
class HostileWire {
 public:
    // Counts what it sends.
    HostileWire(Fd socket, int stop, std::atomic<uint64_t>& sent);

    // Reads up to the end of such a text, and no further.
    bool readUntil(std::string_view end, std::string& text);
    bool skip(size_t count);
    bool send(std::string_view bytes);
    bool sendSlowly(std::string_view bytes, std::chrono::milliseconds pause);
    void waitUntilPeerLeaves() const;
    void resetAtClose() const;

    // "127.0.0.1:40123", as the peer sees this end with that port.
    std::string addressWith(uint16_t port) const;

 private:
    bool waitFor(short events, int milliseconds = -1) const;
    size_t receive(char* bytes, size_t room) const;  // 0: nothing more comes

    const Fd socket_;
    const int stop_;
    std::atomic<uint64_t>& sent_;
};

}  // namespace veltasim
