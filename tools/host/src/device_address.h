// "HOST[:PORT]" of a device.
#pragma once

#include <cstdint>
#include <string>

namespace host {

struct DeviceAddress {
    std::string name;  // host name or IPv4 address
    uint16_t port = 80;

    std::string text() const { return name + ":" + std::to_string(port); }
};

// Throws std::invalid_argument with a sentence for the user.
DeviceAddress parseDeviceAddress(const std::string& text);

// The same device by its IPv4 address. Events are matched with the address that the device itself reports, so
// a session has to be connected by address. Blocks for the name service; throws Failure (not reachable).
DeviceAddress resolved(const DeviceAddress& device);

// Whether something accepts TCP connections there, found out by trying: it sends nothing and needs no log-in.
struct Reachability {
    bool accepts = false;
    std::string finding;  // a sentence
    std::string hint;     // what to look at next
};
Reachability probe(const DeviceAddress& device);

}  // namespace host
