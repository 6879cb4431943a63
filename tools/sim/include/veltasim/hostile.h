// A device that abuses HTTP: whatever it is asked, it plays one trick on its client.
//
//     veltasim::HostileDevice device("endless-body");
//     device.start();
//     client.connect(device.port(), ...);
//
// GET /VELTA/Security/userCheck is answered well by every trick that lets a request arrive at all, without asking for
// a log-in, so that a client takes the device for a sound one.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace veltasim {

struct HostileTrick {
    std::string_view name;
    std::string_view meaning;  // one sentence
};

// All there are. The first is "none": everything is answered well.
std::vector<HostileTrick> hostileTricks();

// All member functions may be called from any thread; start() and destruction are the business of one owner.
class HostileDevice {
 public:
    // The port 0: the system picks one. Throws std::invalid_argument if there is no such trick.
    explicit HostileDevice(std::string_view trick, uint16_t port = 0, std::string bindAddress = "127.0.0.1");
    ~HostileDevice();  // cuts all connections
    HostileDevice(const HostileDevice&) = delete;
    HostileDevice& operator=(const HostileDevice&) = delete;

    // Opens the port and, on the same address, the one that stands for another host. Throws std::system_error.
    void start();
    uint16_t port() const;  // 0 before start()

    // For connections from now on. Throws std::invalid_argument.
    void setTrick(std::string_view trick);

    // -- what happened since the start --
    uint64_t connections() const;  // both ports
    uint64_t openConnections() const;
    uint64_t bytesSent() const;
    // Request line and headers of what arrived, as far as the trick read them; the first few thousand.
    std::vector<std::string> requests() const;
    std::vector<std::string> requestsElsewhere() const;  // those at the other host

 private:
    class Impl;
    std::unique_ptr<Impl> impl_;
};

}  // namespace veltasim
