#include "listener.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <system_error>

namespace veltasim {
namespace {

void require(bool good, const std::string& what) {
    if (!good) throw std::system_error(errno, std::generic_category(), what);
}

Fd boundSocket(sockaddr_in address, const std::string& where) {
    Fd fd(socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    require(fd.get() >= 0, "socket");
    const int on = 1;
    setsockopt(fd.get(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    require(bind(fd.get(), reinterpret_cast<sockaddr*>(&address), sizeof address) == 0, where);
    return fd;
}

sockaddr_in addressOf(const Fd& fd) {
    sockaddr_in address{};
    socklen_t size = sizeof address;
    getsockname(fd.get(), reinterpret_cast<sockaddr*>(&address), &size);
    return address;
}

}  // namespace

Listener::Listener(const std::string& address, uint16_t port) {
    const std::string where = address + ":" + std::to_string(port);
    sockaddr_in local{};
    local.sin_family = AF_INET;
    local.sin_port = htons(port);
    if (inet_pton(AF_INET, address.c_str(), &local.sin_addr) != 1)
        throw std::system_error(EINVAL, std::generic_category(), where + ": not an IPv4 address");

    // A port that the system picks stays bound to a socket that no longer listens only if it is bound by
    // number.
    Fd first;
    if (port == 0) {
        first = boundSocket(local, where);
        local = addressOf(first);
    }
    socket_ = boundSocket(local, where);
    require(listen(socket_.get(), SOMAXCONN) == 0, where);
    port_ = ntohs(addressOf(socket_).sin_port);
}

Fd Listener::accepting() {
    require(listen(socket_.get(), SOMAXCONN) == 0, "listen on port " + std::to_string(port_));
    Fd copy(fcntl(socket_.get(), F_DUPFD_CLOEXEC, 0));
    require(copy.get() >= 0, "dup");
    return copy;
}

void Listener::refuse() {
    shutdown(socket_.get(), SHUT_RDWR);
}

}  // namespace veltasim
