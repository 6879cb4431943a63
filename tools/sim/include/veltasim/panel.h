// A web page on which somebody watches simulated devices and plays with them: doors, readers, persons, events,
// requests, subscribers and faults.
//
// Whoever reaches the port steers the devices, as there is no log-in. Pages of other sites do not: they are told
// from the panel's own by "Host", "Origin" and a header that only scripts of the own site can send.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <veltasim/device.h>

namespace veltasim {

class PanelServer {
 public:
    // Listens on an IPv4 address and a port (0: the system picks one) until destroyed. The devices must outlive
    // it. Throws std::system_error if the port cannot be had.
    PanelServer(std::vector<Device*> devices, const std::string& bindAddress, uint16_t port);
    ~PanelServer();
    PanelServer(const PanelServer&) = delete;
    PanelServer& operator=(const PanelServer&) = delete;

    uint16_t port() const;
    std::string url() const;  // "http://127.0.0.1:40125/"

 private:
    class Impl;
    std::unique_ptr<Impl> impl_;
};

}  // namespace veltasim
