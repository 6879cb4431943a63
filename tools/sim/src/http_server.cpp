#include "http_server.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/epoll.h>
#include <sys/random.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <stdexcept>

namespace veltasim {
namespace {

constexpr unsigned kIdleSeconds = 60;  // of a connection without a request
constexpr unsigned kConnections = 1000;

struct FreeResponse {
    void operator()(MHD_Response* response) const { MHD_destroy_response(response); }
};
using Response = std::unique_ptr<MHD_Response, FreeResponse>;

MHD_Result addHeader(void* record, MHD_ValueKind, const char* name, const char* value) noexcept {
    try {
        static_cast<RequestRecord*>(record)->headers.emplace_back(name, value ? value : "");
        return MHD_YES;
    } catch (const std::exception&) {
        return MHD_NO;  // ends the walk through the headers
    }
}

sockaddr_in addressBy(int (*which)(int, sockaddr*, socklen_t*), int socket) {
    sockaddr_in address{};
    socklen_t size = sizeof address;
    which(socket, reinterpret_cast<sockaddr*>(&address), &size);
    return address;
}

std::string textOf(const sockaddr_in& address) {
    std::array<char, INET_ADDRSTRLEN> text{};
    inet_ntop(AF_INET, &address.sin_addr, text.data(), text.size());
    return text.data();
}

Exchange& from(void* context) {
    return *static_cast<Exchange*>(context);
}

}  // namespace

Exchange::Exchange(std::string target) {
    record.target = std::move(target);
}

std::string Exchange::query(const char* name) const {
    const char* value = MHD_lookup_connection_value(connection_, MHD_GET_ARGUMENT_KIND, name);
    return value ? value : "";
}

int Exchange::socket() const {
    return MHD_get_connection_info(connection_, MHD_CONNECTION_INFO_CONNECTION_FD)->connect_fd;
}

std::string Exchange::localAddress() const {
    return textOf(addressBy(getsockname, socket()));
}

std::string Exchange::clientAddress() const {
    const sockaddr_in client = addressBy(getpeername, socket());
    return textOf(client) + ":" + std::to_string(ntohs(client.sin_port));
}

void Exchange::answer(const Reply& reply) {
    answer(reply, [&reply](MHD_Connection* connection, MHD_Response* response) {
        return MHD_queue_response(connection, static_cast<unsigned>(reply.status), response);
    });
}

void Exchange::answer(const Reply& reply, const Queue& queue) {
    const Response response(MHD_create_response_from_buffer(
        reply.body.size(), const_cast<char*>(reply.body.data()), MHD_RESPMEM_MUST_COPY));
    if (!response) throw std::bad_alloc();
    MHD_add_response_header(response.get(), "Content-Type", reply.contentType.c_str());
    result_ = queue(connection_, response.get());
}

void Exchange::takeOver() {
    MHD_suspend_connection(connection_);
    result_ = MHD_YES;
    over_ = true;
}

void Exchange::giveBack() {
    MHD_resume_connection(connection_);
}

HttpServer::HttpServer(Loop& loop, Fd listening, size_t maxBody, Handler handler)
    : loop_(loop), maxBody_(maxBody), handler_(std::move(handler)), random_(32, '\0') {
    if (getrandom(random_.data(), random_.size(), 0) != static_cast<ssize_t>(random_.size()))
        throw std::runtime_error("no random numbers");
    const std::array options{
        MHD_OptionItem{MHD_OPTION_LISTEN_SOCKET, listening.get(), nullptr},
        MHD_OptionItem{MHD_OPTION_CONNECTION_LIMIT, kConnections, nullptr},
        MHD_OptionItem{MHD_OPTION_CONNECTION_TIMEOUT, kIdleSeconds, nullptr},
        MHD_OptionItem{MHD_OPTION_DIGEST_AUTH_RANDOM, static_cast<intptr_t>(random_.size()), random_.data()},
        MHD_OptionItem{MHD_OPTION_URI_LOG_CALLBACK, reinterpret_cast<intptr_t>(&onTarget), this},
        MHD_OptionItem{MHD_OPTION_NOTIFY_COMPLETED, reinterpret_cast<intptr_t>(&onDone), this},
        MHD_OptionItem{MHD_OPTION_END, 0, nullptr},
    };
    daemon_ = MHD_start_daemon(MHD_USE_EPOLL | MHD_ALLOW_SUSPEND_RESUME, 0, nullptr, nullptr, &onData, this,
                               MHD_OPTION_ARRAY, options.data(), MHD_OPTION_END);
    if (!daemon_) throw std::runtime_error("cannot start the HTTP server");
    listening.release();  // the daemon closes it
    epoll_ = MHD_get_daemon_info(daemon_, MHD_DAEMON_INFO_EPOLL_FD)->epoll_fd;
    loop_.watch(epoll_, EPOLLIN, [](uint32_t) {});  // the pump of this turn does the work
    loop_.setPump([this] { return pump(); });
}

HttpServer::~HttpServer() {
    loop_.setPump(nullptr);
    loop_.unwatch(epoll_);
    MHD_stop_daemon(daemon_);
}

std::optional<std::chrono::milliseconds> HttpServer::pump() {
    MHD_run(daemon_);
    MHD_UNSIGNED_LONG_LONG timeout = 0;
    if (MHD_get_timeout(daemon_, &timeout) != MHD_YES) return std::nullopt;
    constexpr MHD_UNSIGNED_LONG_LONG kLongest = 1000ULL * kIdleSeconds;
    return std::chrono::milliseconds(std::min(timeout, kLongest));
}

void* HttpServer::onTarget(void*, const char* target, MHD_Connection*) noexcept {
    try {
        return new Exchange(target);  // deleted by onDone
    } catch (...) {
        return nullptr;
    }
}

void HttpServer::onDone(void*, MHD_Connection*, void** context, MHD_RequestTerminationCode) noexcept {
    delete static_cast<Exchange*>(*context);
    *context = nullptr;
}

MHD_Result HttpServer::onData(void* self, MHD_Connection* connection, const char*, const char* method,
                              const char*, const char* data, size_t* size, void** context) noexcept {
    try {
        if (!*context) return MHD_NO;
        return static_cast<HttpServer*>(self)->receive(from(*context), connection, method, data, size);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "velta-sim: %s\n", error.what());
        return MHD_NO;
    }
}

MHD_Result HttpServer::receive(Exchange& exchange, MHD_Connection* connection, const char* method,
                               const char* data, size_t* size) {
    if (!exchange.started_) {
        exchange.started_ = true;
        exchange.connection_ = connection;
        exchange.record.method = method;
        MHD_get_connection_values(connection, MHD_HEADER_KIND, &addHeader, &exchange.record);
        return MHD_YES;
    }
    if (exchange.over_) return MHD_NO;  // closes the connection
    if (*size != 0) {
        std::string& body = exchange.record.body;
        exchange.bodyTooLarge = exchange.bodyTooLarge || body.size() + *size > maxBody_;
        if (!exchange.bodyTooLarge) body.append(data, *size);
        *size = 0;
        return MHD_YES;
    }
    handler_(exchange);
    return exchange.result_;
}

}  // namespace veltasim
