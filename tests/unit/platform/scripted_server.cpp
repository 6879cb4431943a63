#include "scripted_server.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <stdexcept>

namespace {

size_t announcedLength(const std::string& head) {
    static const std::string kHeader = "\r\nContent-Length: ";
    const size_t at = head.find(kHeader);
    return at == std::string::npos ? 0 : std::stoul(head.substr(at + kHeader.size()));
}

}  // namespace

ScriptedServer::ScriptedServer(std::vector<Answer> script)
    : script_(std::move(script)), listener_(socket(AF_INET, SOCK_STREAM, 0)), stop_(eventfd(0, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    auto* generic = reinterpret_cast<sockaddr*>(&address);
    socklen_t size = sizeof address;
    const int smallWindow = 4096;  // so that a device that stops reading is soon noticed
    setsockopt(listener_, SOL_SOCKET, SO_RCVBUF, &smallWindow, sizeof smallWindow);
    if (bind(listener_, generic, size) != 0 || listen(listener_, 16) != 0 ||
        getsockname(listener_, generic, &size) != 0) {
        throw std::runtime_error("no listening socket");
    }
    port_ = ntohs(address.sin_port);
    thread_ = std::thread([this] { run(); });
}

ScriptedServer::~ScriptedServer() {
    eventfd_write(stop_, 1);
    thread_.join();
    close(listener_);
    close(stop_);
}

std::string ScriptedServer::url(const std::string& path) const {
    return "http://127.0.0.1:" + std::to_string(port_) + path;
}

std::vector<std::string> ScriptedServer::requests() const {
    const std::lock_guard lock(mutex_);
    return requests_;
}

bool ScriptedServer::waitFor(int fd, short events) const {
    pollfd waiting[] = {{stop_, POLLIN, 0}, {fd, events, 0}};
    poll(waiting, 2, -1);
    return waiting[0].revents == 0;
}

void ScriptedServer::run() {
    while (waitFor(listener_, POLLIN)) {
        const int connection = accept(listener_, nullptr, nullptr);
        serve(connection);
        close(connection);
    }
}

void ScriptedServer::serve(int connection) {
    static const Answer kNone{"", Answer::Then::kClose};
    std::string unread;
    for (;;) {
        const size_t served = requests().size();
        const Answer& answer = served < script_.size() ? script_[served] : kNone;
        if (!readRequest(connection, answer, &unread)) return;
        send(connection, answer.bytes.data(), answer.bytes.size(), MSG_NOSIGNAL);
        if (answer.then == Answer::Then::kHang) waitFor(connection, POLLRDHUP);
        if (answer.then != Answer::Then::kGoOn) return;
    }
}

bool ScriptedServer::readRequest(int connection, const Answer& answer, std::string* unread) {
    size_t head = std::string::npos;
    while ((head = unread->find("\r\n\r\n")) == std::string::npos) {
        if (!readMore(connection, unread)) return false;
    }
    const size_t length = head + 4 + (answer.readsBody ? announcedLength(*unread) : 0);
    while (unread->size() < length) {
        if (!readMore(connection, unread)) return false;
    }
    const std::lock_guard lock(mutex_);
    requests_.push_back(unread->substr(0, length));
    unread->erase(0, length);
    return true;
}

bool ScriptedServer::readMore(int connection, std::string* unread) const {
    char bytes[65536];
    if (!waitFor(connection, POLLIN)) return false;
    const ssize_t count = recv(connection, bytes, sizeof bytes, 0);
    if (count > 0) unread->append(bytes, static_cast<size_t>(count));
    return count > 0;
}
