#include "answer_player.h"

#include <netinet/in.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <stdexcept>

namespace {

// A client that has got half an answer waits for the rest; that comes soon or never.
constexpr int kNextRequestMs = 20;

size_t announcedLength(const std::string& request) {
    static const std::string kHeader = "\r\nContent-Length: ";
    const size_t at = request.find(kHeader);
    return at == std::string::npos ? 0 : std::stoul(request.substr(at + kHeader.size()));
}

}  // namespace

namespace fuzz {

Listener::Listener() : socket_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    auto* generic = reinterpret_cast<sockaddr*>(&address);
    socklen_t size = sizeof address;
    if (bind(socket_, generic, size) != 0 || listen(socket_, 16) != 0 ||
        getsockname(socket_, generic, &size) != 0) {
        throw std::runtime_error("no listening socket");
    }
    port_ = ntohs(address.sin_port);
}

Listener::~Listener() {
    close(socket_);
}

AnswerPlayer::AnswerPlayer(const Listener& listener, std::vector<std::string> answers)
    : listener_(listener), answers_(std::move(answers)), stop_(eventfd(0, EFD_CLOEXEC)) {
    thread_ = std::thread([this] { run(); });
}

AnswerPlayer::~AnswerPlayer() {
    eventfd_write(stop_, 1);
    thread_.join();
    close(stop_);
}

bool AnswerPlayer::waitFor(int fd, int timeoutMs) const {
    pollfd waiting[] = {{stop_, POLLIN, 0}, {fd, POLLIN, 0}};
    return poll(waiting, 2, timeoutMs) > 0 && waiting[0].revents == 0;
}

void AnswerPlayer::run() {
    while (waitFor(listener_.socket(), -1)) {
        const int connection = accept4(listener_.socket(), nullptr, nullptr, SOCK_CLOEXEC);
        if (connection < 0) continue;
        serve(connection);
        close(connection);
    }
}

void AnswerPlayer::serve(int connection) {
    for (int timeoutMs = -1; played_ < answers_.size(); timeoutMs = kNextRequestMs) {
        if (!readRequest(connection, timeoutMs)) return;
        const std::string& answer = answers_[played_++];
        send(connection, answer.data(), answer.size(), MSG_NOSIGNAL);
    }
}

// Whole, so that closing the connection does not take the answer back.
bool AnswerPlayer::readRequest(int connection, int timeoutMs) const {
    std::string request;
    for (size_t wanted = std::string::npos; request.size() < wanted;) {
        char bytes[4096];
        if (!waitFor(connection, timeoutMs)) return false;
        const ssize_t count = recv(connection, bytes, sizeof bytes, 0);
        if (count <= 0) return false;
        request.append(bytes, static_cast<size_t>(count));
        const size_t head = request.find("\r\n\r\n");
        if (head != std::string::npos) wanted = head + 4 + announcedLength(request);
    }
    return true;
}

}  // namespace fuzz
