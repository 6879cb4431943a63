#include <veltasim/device.h>

#include <sys/resource.h>

#include <array>
#include <atomic>
#include <cstdio>
#include <mutex>

#include "alert_streams.h"
#include "faults.h"
#include "http_server.h"
#include "json_text.h"
#include "listener.h"
#include "log_in.h"
#include "loop.h"
#include "outlets.h"
#include "request_log.h"
#include "resources/network.h"
#include "resources/resource.h"
#include "xml.h"

namespace veltasim {
namespace {

constexpr std::string_view kRoot = "/VELTA/";

State firstState(const Options& options) {
    const Identity& identity = options.identity;
    State state;
    state.deviceInfo.deviceName = identity.deviceName;
    state.deviceInfo.deviceId = identity.deviceId;
    state.deviceInfo.model = identity.model;
    state.deviceInfo.serialNumber = identity.serialNumber;
    state.deviceInfo.macAddress = identity.macAddress;
    state.deviceInfo.firmwareVersion = identity.firmwareVersion;
    state.inventory = options.inventory;
    state.outputIsHigh.resize(options.inventory.ioOutputs.value_or(0));
    for (unsigned i = 0; i < options.inventory.networkInterfaces.value_or(0); ++i)
        state.networkInterfaces.push_back(firstNetworkInterface(i + 1, identity.macAddress));
    return state;
}

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

Identity Identity::numbered(unsigned index) {
    Identity identity;
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "VA204-%06u", index + 1);
    identity.serialNumber = text.data();
    std::snprintf(text.data(), text.size(), "02:56:53:%02x:%02x:%02x", (index + 1) >> 16U & 0xFFU,
                  (index + 1) >> 8U & 0xFFU, (index + 1) & 0xFFU);
    identity.macAddress = text.data();
    identity.deviceName.append(" ").append(std::to_string(index + 1));
    return identity;
}

void raiseOpenFileLimit() {
    rlimit limit{};
    getrlimit(RLIMIT_NOFILE, &limit);
    limit.rlim_cur = limit.rlim_max;
    setrlimit(RLIMIT_NOFILE, &limit);
}

class Device::Impl {
 public:
    explicit Impl(Options given)
        : options(std::move(given)),
          logIn(options),
          log(options.maxRecordedRequests, options.maxRecordedBody),
          state_(firstState(options)),
          outlets(loop_, options.maxQueuedEvents, options.maxQueuedBytes),
          streams(options, outlets, faults, [this](Sender& sender) {
              const std::lock_guard lock(stateMutex_);
              sender.deviceName = state_.deviceInfo.deviceName;
              sender.dateTime = state_.clock.localTime();
          }) {}

    ~Impl() {
        loop_.call([this] { switchOff(); });
        loop_.stop();
    }

    void start();
    void powerOff(std::optional<std::chrono::milliseconds> returnAfter);
    void powerOn();
    void cutStreams();
    void clearFaults();
    // What the function makes of the state, which is locked meanwhile.
    template <typename Function>
    auto withState(Function function) {
        const std::lock_guard lock(stateMutex_);
        return function(state_);
    }
    uint16_t port() const { return listener_ ? listener_->port() : 0; }

    const Options options;
    LogIn logIn;
    RequestLog log;
    Faults faults;
    std::atomic<bool> isOn = false;

 private:
    void switchOn();
    void switchOff();
    void goAway(std::optional<std::chrono::milliseconds> returnAfter);
    void reboot();
    void beat();
    void onRequest(Exchange& exchange);
    void answer(Exchange& exchange);
    Reply replyTo(const Exchange& exchange, const Route& route);
    void note(Exchange& exchange, int status);

    std::mutex stateMutex_;
    State state_;  // guarded by stateMutex_
    Loop loop_;

 public:
    Outlets outlets;
    AlertStreams streams;

 private:
    // The rest belongs to the loop's thread.
    std::optional<Listener> listener_;  // set before the thread starts, and never changed
    std::optional<HttpServer> server_;  // while the power is on
    std::optional<Loop::TimerId> heartbeat_;
    std::optional<Loop::TimerId> powerReturn_;
};

void Device::Impl::start() {
    listener_.emplace(options.bindAddress, options.port);
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
}

void Device::Impl::switchOff() {
    isOn = false;
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

void Device::Impl::clearFaults() {
    faults.clear();
    loop_.call([this] { outlets.cutSilent(); });
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

// Answers go out after this, and so a client that has its answer finds the request recorded.
void Device::Impl::onRequest(Exchange& exchange) {
    const std::string_view path = exchange.record.path();
    if (path.starts_with(kRoot)) {
        if (const auto refusal = logIn.check(exchange)) {
            logIn.refuse(exchange, *refusal);
            note(exchange, refusal->reply.status);
            return;
        }
    }
    answer(exchange);
}

void Device::Impl::answer(Exchange& exchange) {
    const RequestRecord& request = exchange.record;
    const Route route = findResource(request.method, request.path());
    const auto scripted = withState([&](const State& state) { return scriptedAnswer(state, request); });
    const bool isStream = !scripted && route.resource && !route.resource->handler;
    const auto fault =
        faults.strike(request.path(), isStream ? Faults::Moment::StreamOpening : Faults::Moment::Answer);

    if (fault && fault->kind == FaultKind::StaleNonce) {
        const LogIn::Refusal refusal = logIn.staleRefusal();
        logIn.refuse(exchange, refusal);
        note(exchange, refusal.reply.status);
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
        note(exchange, reply.status);
    } else if (fault && fault->kind == FaultKind::Status) {
        const Reply reply = statusReply(request.target, static_cast<uint32_t>(fault->amount));
        exchange.answer(reply);
        note(exchange, reply.status);
    } else if (isStream) {
        streams.open(exchange, port());
        note(exchange, MHD_HTTP_OK);
    } else {
        const Reply reply = scripted ? *scripted : replyTo(exchange, route);
        if (reply.thenReboot)
            outlets.push(outlets.open(exchange, [this](Outlets::Id) { reboot(); }), lastChunk(reply, fault));
        else if (fault)
            outlets.push(outlets.open(exchange), lastChunk(reply, fault));
        else
            exchange.answer(reply);
        note(exchange, reply.status);
    }
}

Reply Device::Impl::replyTo(const Exchange& exchange, const Route& route) {
    const RequestRecord& request = exchange.record;
    if (exchange.bodyTooLarge) return statusReply(request.target, MHD_HTTP_CONTENT_TOO_LARGE, kTooLarge);
    if (!route.resource)
        return statusReply(request.target, route.pathKnown ? MHD_HTTP_METHOD_NOT_ALLOWED : MHD_HTTP_NOT_FOUND,
                           kNotSupported);
    const std::lock_guard lock(stateMutex_);
    return route.resource->handler({request, route.variables, state_});
}

Device::Device(Options options) : impl_(std::make_unique<Impl>(std::move(options))) {}
Device::~Device() = default;

void Device::start() {
    impl_->start();
}
const Options& Device::options() const {
    return impl_->options;
}
uint16_t Device::port() const {
    return impl_->port();
}
std::string Device::url() const {
    return "http://" + impl_->options.bindAddress + ":" + std::to_string(port());
}

void Device::powerOff(std::optional<std::chrono::milliseconds> returnAfter) {
    impl_->powerOff(returnAfter);
}
void Device::powerOn() {
    impl_->powerOn();
}
bool Device::isOn() const {
    return impl_->isOn;
}

uint64_t Device::sendAccessEvent(const AccessEvent& event) {
    return impl_->streams.send(event);
}
void Device::sendAlarm(const Alarm& alarm) {
    impl_->streams.send(alarm);
}
void Device::sendHeartbeat() {
    impl_->streams.sendHeartbeat();
}
void Device::sendRaw(std::string bytes) {
    impl_->streams.sendRaw(std::move(bytes));
}

void Device::endStreams(StreamEnd how) {
    if (how == StreamEnd::AtOnce)
        impl_->cutStreams();
    else
        impl_->streams.endAfterQueue();
}

size_t Device::streamCount() const {
    return impl_->streams.count();
}
bool Device::waitForStreams(size_t count, std::chrono::milliseconds timeout) const {
    return impl_->streams.waitForCount(count, timeout);
}
bool Device::waitForDrained(std::chrono::milliseconds timeout) const {
    return impl_->outlets.waitForDrained(timeout);
}
uint64_t Device::lostEvents() const {
    return impl_->streams.lostEvents();
}

void Device::setFault(const Fault& fault) {
    impl_->faults.add(fault);
}
void Device::clearFaults() {
    impl_->clearFaults();
}
std::vector<Fault> Device::faults() const {
    return impl_->faults.all();
}

std::vector<RequestRecord> Device::requests() const {
    return impl_->log.all();
}
void Device::forgetRequests() {
    impl_->log.clear();
}
std::optional<RequestRecord> Device::waitForRequest(const RequestPredicate& fits,
                                                    std::chrono::milliseconds timeout) const {
    return impl_->log.waitFor(fits, timeout);
}

std::string Device::deviceName() const {
    return impl_->withState([](const State& state) { return state.deviceInfo.deviceName; });
}
void Device::lockUser(std::chrono::seconds duration) {
    impl_->logIn.lock(duration);
}
void Device::unlockUser() {
    impl_->logIn.unlock();
}
bool Device::isLocked() const {
    return impl_->logIn.isLocked();
}

bool Device::outputIsHigh(int output) const {
    return impl_->withState([output](const State& state) {
        const std::vector<bool>& outputs = state.outputIsHigh;
        return output >= 1 && static_cast<size_t>(output) <= outputs.size() &&
               outputs[static_cast<size_t>(output) - 1];
    });
}
void Device::setProxyOnline(int channel, bool online) {
    impl_->withState([=](State& state) {
        if (online)
            state.offlineProxies.erase(channel);
        else
            state.offlineProxies.insert(channel);
    });
}

std::chrono::sys_seconds Device::deviceTime() const {
    return impl_->withState([](const State& state) { return state.clock.now(); });
}
void Device::setDeviceTime(std::chrono::sys_seconds time) {
    impl_->withState([time](State& state) { state.clock.set(time); });
}
std::string Device::timeZone() const {
    return impl_->withState([](const State& state) { return state.clock.zone(); });
}
void Device::setTimeZone(std::string zone) {
    impl_->withState([&zone](State& state) { state.clock.setZone(std::move(zone)); });
}

void Device::setAnswer(const std::string& method, const std::string& path, int httpStatus, std::string body) {
    const char* type = body.starts_with('{') ? kJsonType : kXmlType;
    Reply reply{httpStatus, type, std::move(body)};
    impl_->withState([&](State& state) { state.scripted[{method, path}] = std::move(reply); });
}
void Device::setDocument(const std::string& path, std::string body) {
    setAnswer("GET", path, MHD_HTTP_OK, std::move(body));
}
void Device::clearAnswers() {
    impl_->withState([](State& state) { state.scripted.clear(); });
}

}  // namespace veltasim
