#include "hostile_wire.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cerrno>

namespace veltasim {
namespace {

constexpr size_t kLongestHead = 65536;

bool mustWait() {
    return errno == EAGAIN || errno == EINTR;
}

}  // namespace

HostileWire::HostileWire(Fd socket, int stop, std::atomic<uint64_t>& sent)
    : socket_(std::move(socket)), stop_(stop), sent_(sent) {}

bool HostileWire::waitFor(short events, int milliseconds) const {
    std::array<pollfd, 2> files{{{stop_, POLLIN, 0}, {socket_.get(), events, 0}}};
    poll(files.data(), files.size(), milliseconds);
    return files[0].revents == 0;
}

size_t HostileWire::receive(char* bytes, size_t room) const {
    for (;;) {
        const ssize_t count = recv(socket_.get(), bytes, room, 0);
        if (count >= 0) return static_cast<size_t>(count);
        if (!mustWait() || !waitFor(POLLIN)) return 0;
    }
}

bool HostileWire::readUntil(std::string_view end, std::string& text) {
    while (!text.ends_with(end)) {
        char byte = 0;
        if (text.size() >= kLongestHead || receive(&byte, 1) == 0) return false;
        text += byte;
    }
    return true;
}

bool HostileWire::skip(size_t count) {
    std::array<char, 65536> bytes;
    while (count > 0) {
        const size_t received = receive(bytes.data(), std::min(count, bytes.size()));
        if (received == 0) return false;
        count -= received;
    }
    return true;
}

bool HostileWire::send(std::string_view bytes) {
    while (!bytes.empty()) {
        if (!waitFor(POLLOUT)) return false;
        const ssize_t count = ::send(socket_.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (count < 0 && !mustWait()) return false;
        if (count < 0) continue;
        sent_ += static_cast<uint64_t>(count);
        bytes.remove_prefix(static_cast<size_t>(count));
    }
    return true;
}

bool HostileWire::sendSlowly(std::string_view bytes, std::chrono::milliseconds pause) {
    for (const char& byte : bytes) {
        if (!waitFor(0, static_cast<int>(pause.count())) || !send({&byte, 1})) return false;
    }
    return true;
}

void HostileWire::waitUntilPeerLeaves() const {
    waitFor(POLLRDHUP);
}

void HostileWire::resetAtClose() const {
    const linger now{1, 0};
    setsockopt(socket_.get(), SOL_SOCKET, SO_LINGER, &now, sizeof now);
}

std::string HostileWire::addressWith(uint16_t port) const {
    sockaddr_in address{};
    socklen_t size = sizeof address;
    getsockname(socket_.get(), reinterpret_cast<sockaddr*>(&address), &size);
    std::array<char, INET_ADDRSTRLEN> text{};
    inet_ntop(AF_INET, &address.sin_addr, text.data(), text.size());
    return text.data() + (":" + std::to_string(port));
}

}  // namespace veltasim
