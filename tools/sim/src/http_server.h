#pragma once

#include <microhttpd.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include <veltasim/request.h>

#include "fd.h"
#include "loop.h"
#include "reply.h"

namespace veltasim {

// A complete request on its way to an answer. Lives until its connection has done with it.
class Exchange {
 public:
    explicit Exchange(std::string target);

    RequestRecord record;
    bool bodyTooLarge = false;

    // Value of a query parameter; empty: it is not there.
    std::string query(const char* name) const;
    // The server's end of the connection, as the client reached it.
    std::string localAddress() const;
    std::string clientAddress() const;  // with its port
    int socket() const;
    MHD_Connection* connection() const { return connection_; }
    std::chrono::steady_clock::time_point began() const { return began_; }

    // A request is answered by exactly one of these, before the server's handler returns.
    void answer(const Reply& reply);
    using Queue = std::function<MHD_Result(MHD_Connection*, MHD_Response*)>;
    void answer(const Reply& reply, const Queue& queue);  // with a way of its own to queue the answer
    // Gives the connection to the caller, who writes to socket() what he likes. He must give it back, upon
    // which it is closed and this object soon deleted, and before the server stops.
    void takeOver();
    void giveBack();

 private:
    friend class HttpServer;

    MHD_Connection* connection_ = nullptr;
    std::chrono::steady_clock::time_point began_ = std::chrono::steady_clock::now();
    MHD_Result result_ = MHD_NO;
    bool started_ = false;
    bool over_ = false;  // was taken over and given back
};

// Reads requests and sends answers, all on the thread of a loop.
class HttpServer {
 public:
    using Handler = std::function<void(Exchange&)>;

    // Works as long as it lives, on connections to the listening socket. Throws std::runtime_error.
    HttpServer(Loop& loop, Fd listening, size_t maxBody, Handler handler);
    ~HttpServer();
    HttpServer(const HttpServer&) = delete;
    HttpServer& operator=(const HttpServer&) = delete;

 private:
    static void* onTarget(void* self, const char* target, MHD_Connection* connection) noexcept;
    static MHD_Result onData(void* self, MHD_Connection* connection, const char* url, const char* method,
                             const char* version, const char* data, size_t* size, void** context) noexcept;
    static void onDone(void* self, MHD_Connection* connection, void** context,
                       MHD_RequestTerminationCode code) noexcept;
    MHD_Result receive(Exchange& exchange, MHD_Connection* connection, const char* method, const char* data,
                       size_t* size);
    std::optional<std::chrono::milliseconds> pump();

    Loop& loop_;
    size_t maxBody_;
    Handler handler_;
    std::string random_;  // seeds the nonces
    MHD_Daemon* daemon_ = nullptr;
    int epoll_ = -1;  // the daemon's
};

}  // namespace veltasim
