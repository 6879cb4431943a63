#include <veltasim/control.h>

#include "control_reply.h"
#include "http_server.h"
#include "listener.h"
#include "loop.h"

namespace veltasim {
namespace {

Reply replyTo(const Devices& devices, const Exchange& exchange) {
    const auto refusal = refusalOfStrangers(exchange.record);
    return refusal ? *refusal : controlReply(devices, exchange);
}

}  // namespace

class ControlServer::Impl {
 public:
    Impl(Devices devices, uint16_t port) : devices_(std::move(devices)), listener_("127.0.0.1", port) {
        constexpr size_t kMaxBody = 1U << 20U;
        server_.emplace(loop_, listener_.accepting(), kMaxBody,
                        [this](Exchange& exchange) { exchange.answer(replyTo(devices_, exchange)); });
        loop_.start();
    }
    ~Impl() {
        loop_.stop();
        server_.reset();
    }

    uint16_t port() const { return listener_.port(); }

 private:
    const Devices devices_;
    Listener listener_;
    Loop loop_;
    std::optional<HttpServer> server_;
};

ControlServer::ControlServer(Devices devices, uint16_t port)
    : impl_(std::make_unique<Impl>(std::move(devices), port)) {}
ControlServer::~ControlServer() = default;
uint16_t ControlServer::port() const {
    return impl_->port();
}
std::string ControlServer::url() const {
    return "http://127.0.0.1:" + std::to_string(port());
}

}  // namespace veltasim
