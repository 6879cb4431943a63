#include "device_address.h"

#include <arpa/inet.h>
#include <netdb.h>
#include <poll.h>
#include <sys/socket.h>

#include <array>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <string_view>

#include "failure.h"
#include "waiter.h"

namespace host {
namespace {

constexpr int kProbeTimeoutMs = 3000;

struct FreeAddresses {
    void operator()(addrinfo* list) const { freeaddrinfo(list); }
};

uint16_t parsePort(const std::string& text) {
    uint16_t port = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, port);
    if (error != std::errc() || stop != end || port == 0)
        throw std::invalid_argument("\"" + text + "\" is no port: a number from 1 to 65535 is expected");
    return port;
}

int connectError(const sockaddr_in& address) {
    const Fd probing(socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    if (probing.get() < 0) return errno;
    if (connect(probing.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0) return 0;
    if (errno != EINPROGRESS) return errno;
    pollfd watched{probing.get(), POLLOUT, 0};
    if (poll(&watched, 1, kProbeTimeoutMs) <= 0) return ETIMEDOUT;
    int error = 0;
    socklen_t size = sizeof error;
    getsockopt(probing.get(), SOL_SOCKET, SO_ERROR, &error, &size);
    return error;
}

struct Diagnosis {
    int error;
    const char* finding;
    const char* hint;
};

constexpr Diagnosis kDiagnoses[] = {
    {0, "accepts connections, but has not answered as a VELTA device",
     "is it the HTTP port of the device? a device that is starting or very busy answers later; see "
     "--log-level debug"},
    {ECONNREFUSED, "refuses connections: nothing listens on that port",
     "check the port, and that the device's HTTP service is switched on"},
    {ETIMEDOUT, "does not answer at all", "check power, cable, address, and firewalls on the way"},
    {EHOSTUNREACH, "is not found in the network", "check power, cable and address"},
    {ENETUNREACH, "is in a network that this machine has no route to",
     "check the address and this machine's network"},
};

}  // namespace

DeviceAddress parseDeviceAddress(const std::string& text) {
    if (text.find("://") != std::string::npos)
        throw std::invalid_argument("\"" + text + "\": give HOST or HOST:PORT, without \"http://\"");
    DeviceAddress device;
    const size_t colon = text.find(':');
    device.name = text.substr(0, colon);
    if (device.name.empty())
        throw std::invalid_argument("\"" + text + "\" names no host: HOST or HOST:PORT is expected");
    constexpr std::string_view kHostCharacters =
        "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789.-_";
    if (device.name.find_first_not_of(kHostCharacters) != std::string::npos)
        throw std::invalid_argument("\"" + device.name + "\" is neither a host name nor an IPv4 address");
    if (colon != std::string::npos) device.port = parsePort(text.substr(colon + 1));
    return device;
}

DeviceAddress resolved(const DeviceAddress& device) {
    addrinfo wanted{};
    wanted.ai_family = AF_INET;
    wanted.ai_socktype = SOCK_STREAM;
    addrinfo* raw = nullptr;
    const int error = getaddrinfo(device.name.c_str(), nullptr, &wanted, &raw);
    const std::unique_ptr<addrinfo, FreeAddresses> list(raw);
    std::array<char, INET_ADDRSTRLEN> text{};
    if (error != 0 || getnameinfo(list->ai_addr, list->ai_addrlen, text.data(), text.size(), nullptr, 0,
                                  NI_NUMERICHOST) != 0) {
        throw Failure(
            ExitCode::Unreachable,
            "no address is known for the host \"" + device.name + "\" (" + gai_strerror(error) + ")",
            "check the spelling, or give the device's IPv4 address");
    }
    return {text.data(), device.port};
}

Reachability probe(const DeviceAddress& device) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(device.port);
    const int error =
        inet_pton(AF_INET, device.name.c_str(), &address.sin_addr) == 1 ? connectError(address) : EINVAL;
    for (const Diagnosis& row : kDiagnoses) {
        if (row.error == error) return {error == 0, device.text() + " " + row.finding, row.hint};
    }
    return {false, device.text() + ": " + std::strerror(error),
            "check the address and this machine's network"};
}

}  // namespace host
