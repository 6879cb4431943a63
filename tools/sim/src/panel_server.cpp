#include <veltasim/panel.h>

#include <array>

#include "control_events.h"
#include "control_reply.h"
#include "listener.h"
#include "panel_feed.h"
#include "panel_files.h"
#include "pictures.h"
#include "url.h"

namespace veltasim {
namespace {

// Nothing from elsewhere, nowhere else, and in no frame.
constexpr std::array<std::pair<const char*, const char*>, 7> kHeaders{{
    {"Content-Security-Policy",
     "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self'; connect-src 'self'; base-uri "
     "'none'; "
     "form-action 'none'; frame-ancestors 'none'"},
    {"X-Content-Type-Options", "nosniff"},
    {"X-Frame-Options", "DENY"},
    {"Referrer-Policy", "no-referrer"},
    {"Cross-Origin-Opener-Policy", "same-origin"},
    {"Cross-Origin-Resource-Policy", "same-origin"},
    {"Cache-Control", "no-cache"},
}};
constexpr const char* kOwnHeader = "X-Velta-Panel";

void send(Exchange& exchange, const Reply& reply) {
    exchange.answer(reply, [&reply](MHD_Connection* connection, MHD_Response* response) {
        for (const auto& [name, value] : kHeaders)
            MHD_add_response_header(response, name, value);
        return MHD_queue_response(connection, static_cast<unsigned>(reply.status), response);
    });
}

Reply imageReply(std::string bytes) {
    if (bytes.empty()) return errorReply(404, "no such picture");
    return {200, "image/jpeg", std::move(bytes)};
}

}  // namespace

class PanelServer::Impl {
 public:
    Impl(Devices devices, const std::string& address, uint16_t port)
        : devices_(std::move(devices)), address_(address), listener_(address, port), feed_(devices_, loop_) {
        constexpr size_t kMaxBody = 1U << 20U;
        server_.emplace(loop_, listener_.accepting(), kMaxBody,
                        [this](Exchange& exchange) { answer(exchange); });
        loop_.start();
    }
    ~Impl() {
        loop_.call([this] {
            feed_.close();
            server_.reset();
        });
        loop_.stop();
    }

    uint16_t port() const { return listener_.port(); }
    std::string url() const { return "http://" + address_ + ":" + std::to_string(port()) + "/"; }

 private:
    void answer(Exchange& exchange) {
        const RequestRecord& request = exchange.record;
        const std::string_view path = request.path();
        const bool isOrder = request.method != MHD_HTTP_METHOD_GET;
        if (const auto refusal = refusalOfStrangers(request)) return send(exchange, *refusal);
        if (isOrder && request.header(kOwnHeader).empty())
            return send(exchange, errorReply(403, std::string("the header ") + kOwnHeader + " is missing"));
        if (path.starts_with("/control/")) {
            send(exchange, controlReply(devices_, exchange));
            if (isOrder) feed_.update();
        } else if (isOrder) {
            send(exchange, errorReply(405, "only GET"));
        } else if (path == "/live") {
            watch(exchange);
        } else {
            send(exchange, documentFor(request));
        }
    }

    void watch(Exchange& exchange) {
        try {
            if (!feed_.open(exchange, deviceNamedBy(devices_, exchange.record)))
                send(exchange, errorReply(503, "too many watch already"));
        } catch (const std::out_of_range&) {
            send(exchange, errorReply(404, "no such device"));
        } catch (const ControlRefused& refused) {
            send(exchange, errorReply(refused.status, refused.what()));
        }
    }

    Reply documentFor(const RequestRecord& request) const {
        const std::string_view path = request.path();
        if (const PanelFile* file = findPanelFile(path))
            return {200, file->contentType, std::string(file->content)};
        if (path == "/picture")
            return imageReply(std::string(pictureNamed(queryValue(request.target, "name"))));
        if (path == "/face") return face(request);
        return errorReply(404, "there is nothing here");
    }

    Reply face(const RequestRecord& request) const {
        try {
            return imageReply(
                deviceNamedBy(devices_, request).facePicture(queryValue(request.target, "employeeNo")));
        } catch (const std::exception& error) {
            return errorReply(404, error.what());
        }
    }

    const Devices devices_;
    const std::string address_;
    Listener listener_;
    Loop loop_;
    PanelFeed feed_;
    std::optional<HttpServer> server_;
};

PanelServer::PanelServer(Devices devices, const std::string& bindAddress, uint16_t port)
    : impl_(std::make_unique<Impl>(std::move(devices), bindAddress, port)) {}
PanelServer::~PanelServer() = default;
uint16_t PanelServer::port() const {
    return impl_->port();
}
std::string PanelServer::url() const {
    return impl_->url();
}

}  // namespace veltasim
