#include "trace/wire.h"

#include <dlfcn.h>
#include <sys/socket.h>
#include <sys/types.h>

#include <atomic>
#include <cerrno>
#include <cstring>
#include <map>
#include <mutex>

namespace host {
namespace {

struct Wire {
    std::mutex mutex;  // guards the rest
    Follow follow;
    std::map<int, std::shared_ptr<ConnectionTrace>> connections;
};

std::atomic<bool> isWatching = false;

Wire& wire() {
    static auto& wire = *new Wire;  // libraries may close sockets when the process has all but ended
    return wire;
}

using Trace = std::shared_ptr<ConnectionTrace>;

Trace find(int fd) {
    if (!isWatching.load(std::memory_order_relaxed)) return nullptr;
    const std::lock_guard lock(wire().mutex);
    const auto found = wire().connections.find(fd);
    return found == wire().connections.end() ? nullptr : found->second;
}

Trace extract(int fd) {
    if (!isWatching.load(std::memory_order_relaxed)) return nullptr;
    const std::lock_guard lock(wire().mutex);
    auto node = wire().connections.extract(fd);
    return node.empty() ? nullptr : node.mapped();
}

Trace open(int fd, const sockaddr* address, socklen_t size) {
    if (!isWatching.load(std::memory_order_relaxed) || address == nullptr || size < sizeof(sockaddr_in) ||
        address->sa_family != AF_INET)
        return nullptr;
    sockaddr_in to{};
    std::memcpy(&to, address, sizeof to);
    const std::lock_guard lock(wire().mutex);
    Trace& trace = wire().connections[fd];
    if (!trace && wire().follow) trace = wire().follow(to);  // a second call asks how the first one went
    Trace found = trace;
    if (!found) wire().connections.erase(fd);
    return found;
}

// Whoever calls the C library learns nothing of a recorder that has no memory left.
template <typename Call>
void quietly(const Call& call) noexcept {
    const int before = errno;
    try {
        call();
    } catch (const std::exception&) {
    }
    errno = before;
}

void note(ConnectionTrace& trace, int error) {
    if (error != EAGAIN && error != EINTR && error != EINPROGRESS && error != EALREADY && error != EISCONN)
        trace.failed(error);
}

template <typename Function>
Function next(const char* name) {
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

}  // namespace

void watchWire(Follow follow) {
    const std::lock_guard lock(wire().mutex);
    wire().follow = std::move(follow);
    isWatching = true;
}

void leaveWire() {
    std::map<int, Trace> left;
    {
        const std::lock_guard lock(wire().mutex);
        isWatching = false;
        wire().follow = nullptr;
        left.swap(wire().connections);
    }
    for (const auto& [fd, trace] : left)
        trace->closed();
}

// Names of their own, so that the C library's declarations and its checked variants don't get in the way.
#define VELTA_CALL(name) __asm__(name) __attribute__((visibility("default"), used))
extern "C" {
int wireConnect(int fd, const sockaddr* address, socklen_t size) VELTA_CALL("connect");
int wireGetsockopt(int fd, int level, int option, void* value, socklen_t* size) VELTA_CALL("getsockopt");
ssize_t wireSend(int fd, const void* bytes, size_t size, int flags) VELTA_CALL("send");
ssize_t wireRecv(int fd, void* bytes, size_t size, int flags) VELTA_CALL("recv");
int wireClose(int fd) VELTA_CALL("close");
}

int wireConnect(int fd, const sockaddr* address, socklen_t size) {
    static const auto real = next<decltype(&wireConnect)>("connect");
    Trace trace;
    quietly([&] { trace = open(fd, address, size); });
    const int result = real(fd, address, size);
    if (!trace) return result;
    const int error = errno;
    quietly([&] {
        if (result == 0)
            trace->connected();
        else
            note(*trace, error);
    });
    return result;
}

int wireGetsockopt(int fd, int level, int option, void* value, socklen_t* size) {
    static const auto real = next<decltype(&wireGetsockopt)>("getsockopt");
    const int result = real(fd, level, option, value, size);
    if (result != 0 || level != SOL_SOCKET || option != SO_ERROR) return result;
    quietly([&] {
        const Trace trace = find(fd);
        if (!trace) return;
        int error = 0;
        std::memcpy(&error, value, sizeof error);
        if (error == 0)
            trace->connected();
        else
            note(*trace, error);
    });
    return result;
}

ssize_t wireSend(int fd, const void* bytes, size_t size, int flags) {
    static const auto real = next<decltype(&wireSend)>("send");
    Trace trace;
    quietly([&] { trace = find(fd); });
    const ssize_t count = real(fd, bytes, size, flags);
    if (!trace) return count;
    const int error = errno;
    quietly([&] {
        if (count >= 0)
            trace->sent({static_cast<const char*>(bytes), static_cast<size_t>(count)});
        else
            note(*trace, error);
    });
    return count;
}

ssize_t wireRecv(int fd, void* bytes, size_t size, int flags) {
    static const auto real = next<decltype(&wireRecv)>("recv");
    const ssize_t count = real(fd, bytes, size, flags);
    const int error = errno;
    if ((flags & MSG_PEEK) != 0) return count;
    quietly([&] {
        const Trace trace = find(fd);
        if (!trace) return;
        if (count > 0)
            trace->received({static_cast<const char*>(bytes), static_cast<size_t>(count)});
        else if (count == 0 && size > 0)
            trace->peerClosed();
        else if (count < 0)
            note(*trace, error);
    });
    return count;
}

int wireClose(int fd) {
    static const auto real = next<decltype(&wireClose)>("close");
    // Before the call: afterwards the number may belong to another connection.
    quietly([&] {
        if (const Trace trace = extract(fd)) trace->closed();
    });
    return real(fd);
}

}  // namespace host
