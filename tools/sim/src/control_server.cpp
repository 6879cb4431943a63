#include <veltasim/control.h>

#include <charconv>
#include <stdexcept>

#include "control_events.h"
#include "control_orders.h"
#include "http_server.h"
#include "json_text.h"
#include "listener.h"
#include "loop.h"

namespace veltasim {
namespace {

uint64_t numberFrom(const std::string& text) {
    uint64_t number = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || stop != end) throw ControlRefused(400, "not a number: " + text);
    return number;
}

Json::Value obey(const Devices& devices, const Exchange& exchange) {
    const RequestRecord& request = exchange.record;
    const Command* command = findCommand(request.method, request.path());
    if (!command) throw ControlRefused(404, "unknown: " + request.method + " " + request.target);

    Json::Value body = Json::objectValue;
    if (!request.body.empty() && (!parseJson(request.body, body) || !body.isObject()))
        throw ControlRefused(400, "the body is not a JSON object");
    Devices chosen = devices;
    if (const std::string index = exchange.query("device"); !index.empty())
        chosen = {devices.at(numberFrom(index))};
    else if (!command->forAll)
        chosen.resize(1);
    const std::string after = exchange.query("after");
    return command->run({chosen, body, after.empty() ? 0 : numberFrom(after)});
}

Reply replyTo(const Devices& devices, const Exchange& exchange) {
    int status = 400;
    Json::Value answer;
    try {
        return {200, kJsonType, obey(devices, exchange).toStyledString()};
    } catch (const ControlRefused& refused) {
        status = refused.status;
        answer["error"] = refused.what();
    } catch (const std::out_of_range&) {
        answer["error"] = "no such device";
    } catch (const std::exception& error) {  // a member of the wrong type
        answer["error"] = error.what();
    }
    return {status, kJsonType, answer.toStyledString()};
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
