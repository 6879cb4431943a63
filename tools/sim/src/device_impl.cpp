#include "device_impl.h"

#include <array>

#include "json_values.h"
#include "message.h"
#include "state_json.h"

namespace veltasim {
namespace {

constexpr std::string_view kRoot = "/VELTA/";

std::optional<Reply> scriptedAnswer(const State& state, const RequestRecord& request) {
    const auto found = state.scripted.find({request.method, std::string(request.path())});
    if (found == state.scripted.end()) return std::nullopt;
    return found->second;
}

// The answer as the HTTP server would write it, but for the fault, and the last one on its connection.
Chunk lastChunk(const Reply& reply, const std::optional<Fault>& fault) {
    std::string head = "HTTP/1.1 ";
    head.append(std::to_string(reply.status)).append(" ");
    head.append(MHD_get_reason_phrase_for(static_cast<unsigned>(reply.status)));
    head.append("\r\nContent-Type: ").append(reply.contentType).append("\r\nConnection: close\r\n");
    Chunk chunk = toChunk({std::move(head), reply.body, ""}, fault);
    if (chunk.ending == Chunk::Ending::Continue) chunk.ending = Chunk::Ending::Cut;
    return chunk;
}

}  // namespace

void Device::Impl::start() {
    listener_.emplace(options.bindAddress, options.port);
    if (options.recording) replay_.emplace(options, loop_, outlets);
    switchOn();
    loop_.start();
}

void Device::Impl::switchOn() {
    if (powerReturn_) loop_.cancel(*std::exchange(powerReturn_, std::nullopt));
    if (server_ || !listener_) return;
    server_.emplace(loop_, listener_->accepting(), options.maxRequestBody,
                    [this](Exchange& exchange) { onRequest(exchange); });
    if (options.heartbeat.count() > 0) heartbeat_ = loop_.after(options.heartbeat, [this] { beat(); });
    isOn = true;
    followHosts();
}

void Device::Impl::switchOff() {
    isOn = false;
    followHosts();
    if (powerReturn_) loop_.cancel(*std::exchange(powerReturn_, std::nullopt));
    if (heartbeat_) loop_.cancel(*std::exchange(heartbeat_, std::nullopt));
    outlets.cutAll();
    if (listener_) listener_->refuse();
    server_.reset();
}

void Device::Impl::powerOff(std::optional<std::chrono::milliseconds> returnAfter) {
    loop_.call([&] { goAway(returnAfter); });
}

void Device::Impl::goAway(std::optional<std::chrono::milliseconds> returnAfter) {
    switchOff();
    if (returnAfter) powerReturn_ = loop_.after(*returnAfter, [this] { switchOn(); });
}

void Device::Impl::powerOn() {
    loop_.call([this] { switchOn(); });
}

void Device::Impl::cutStreams() {
    loop_.call([this] { streams.cut(); });
}

void Device::Impl::clearFaults(std::optional<FaultKind> kind) {
    faults.clear(kind);
    loop_.call([this] { outlets.cutSilent(); });
}

std::string Device::Impl::saveState() {
    const std::lock_guard lock(reportMutex_);
    return withState([this](const State& state) { return stateToText(state, streams.lastSerialNo()); });
}

void Device::Impl::loadState(const std::string& text) {
    {
        const std::lock_guard lock(reportMutex_);
        withState([&](State& state) {
            streams.continueAfter(stateFromText(state, options, text));
            for (const LoggedEvent& logged : state.access.log.events())
                journal.add({.serialNo = logged.serialNo, .event = logged.event, .picture = logged.picture});
        });
    }
    ++changes;
    loop_.call([this] { followHosts(); });
}

// The device may have been switched off while the answer was on its way; then it stays off.
void Device::Impl::reboot() {
    loop_.post([this] {
        if (server_) goAway(options.rebootTime);
    });
}

void Device::Impl::beat() {
    heartbeat_ = loop_.after(options.heartbeat, [this] { beat(); });
    streams.sendHeartbeat();
}

void Device::Impl::note(Exchange& exchange, int status) {
    exchange.record.devicePort = port();
    exchange.record.status = status;
    exchange.record.duration = std::chrono::duration_cast<std::chrono::microseconds>(
        std::chrono::steady_clock::now() - exchange.began());
    const RequestRecord kept = log.add(exchange.record);
    if (options.onRequest) options.onRequest(kept);
}

void Device::Impl::note(Exchange& exchange, const Reply& reply) {
    if (!reply.contentType.starts_with("image/"))
        exchange.record.answer = reply.body.substr(0, options.maxRecordedAnswer);
    note(exchange, reply.status);
}

// Answers go out after this, and so a client that has its answer finds the request recorded.
void Device::Impl::onRequest(Exchange& exchange) {
    const std::string_view path = exchange.record.path();
    if (path.starts_with(kRoot)) {
        if (const auto refusal = logIn.check(exchange)) {
            logIn.refuse(exchange, *refusal);
            note(exchange, refusal->reply);
            return;
        }
    }
    answer(exchange);
}

void Device::Impl::answer(Exchange& exchange) {
    if (replay_) {
        note(exchange, replay_->answer(exchange, port()));
        return;
    }
    const RequestRecord& request = exchange.record;
    const Route route = findResource(request.method, request.path());
    const auto scripted = withState([&](const State& state) { return scriptedAnswer(state, request); });
    const bool isStream = !scripted && route.resource && !route.resource->handler;
    const auto fault =
        faults.strike(request.path(), isStream ? Faults::Moment::StreamOpening : Faults::Moment::Answer);

    if (fault && fault->kind == FaultKind::StaleNonce) {
        const LogIn::Refusal refusal = logIn.staleRefusal();
        logIn.refuse(exchange, refusal);
        note(exchange, refusal.reply);
    } else if (fault && fault->kind == FaultKind::HangBefore) {
        Chunk nothing("");
        nothing.ending = Chunk::Ending::Silence;
        outlets.push(outlets.open(exchange), nothing);
        note(exchange, 0);
    } else if (fault && fault->kind == FaultKind::HttpError) {
        const bool busy = fault->amount == MHD_HTTP_SERVICE_UNAVAILABLE;
        const Reply reply =
            statusReply(request.target, static_cast<int>(fault->amount), busy ? kDeviceBusy : kDeviceError);
        exchange.answer(reply);
        note(exchange, reply);
    } else if (fault && fault->kind == FaultKind::Status) {
        const Reply reply = statusReply(request.target, static_cast<uint32_t>(fault->amount));
        exchange.answer(reply);
        note(exchange, reply);
    } else if (isStream) {
        streams.open(exchange, port());
        note(exchange, MHD_HTTP_OK);
    } else {
        const Reply reply = scripted ? *scripted : replyTo(exchange, route);
        followHosts();
        if (reply.thenReboot)
            outlets.push(outlets.open(exchange, [this](Outlets::Id) { reboot(); }), lastChunk(reply, fault));
        else if (fault)
            outlets.push(outlets.open(exchange), lastChunk(reply, fault));
        else
            exchange.answer(reply);
        note(exchange, reply);
    }
}

Reply Device::Impl::replyTo(const Exchange& exchange, const Route& route) {
    const RequestRecord& request = exchange.record;
    if (exchange.bodyTooLarge) return statusReply(request.target, MHD_HTTP_CONTENT_TOO_LARGE, kTooLarge);
    if (!route.resource)
        return statusReply(request.target, route.pathKnown ? MHD_HTTP_METHOD_NOT_ALLOWED : MHD_HTTP_NOT_FOUND,
                           kNotSupported);
    const std::lock_guard lock(stateMutex_);
    if (request.method != MHD_HTTP_METHOD_GET) ++changes;
    try {
        return route.resource->handler({request, route.variables, state_});
    } catch (const Refused& refusal) {
        return statusReply(request.target, refusal.status);
    } catch (const Json::Exception&) {  // a member of another type
        return statusReply(request.target, kBadJsonContent);
    }
}

}  // namespace veltasim
