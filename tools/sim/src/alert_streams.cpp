#include "alert_streams.h"

#include <optional>
#include <vector>

namespace veltasim {
namespace {

const std::string kStreamHeader = "HTTP/1.1 200 OK\r\nContent-Type: multipart/mixed; boundary=" + kBoundary +
                                  "\r\nConnection: close\r\n\r\n";

std::string textOf(Message message) {
    return *toChunk(std::move(message), std::nullopt).bytes;
}

}  // namespace

AlertStreams::AlertStreams(const Options& options, Outlets& outlets, Faults& faults, Complete complete)
    : options_(options), outlets_(outlets), faults_(faults), complete_(std::move(complete)) {
    if (options.eventAtConnect) requireJson(options.eventAtConnect->moreMembers);
}

void AlertStreams::open(Exchange& exchange, uint16_t devicePort) {
    const Subscriber subscriber{exchange.clientAddress(), exchange.began(), exchange.localAddress(),
                                devicePort, std::string(exchange.record.path())};
    const Outlets::Id id = outlets_.open(exchange, [this](Outlets::Id gone) { onClosed(gone); });

    const std::lock_guard lock(mutex_);
    if (subscribers_.size() >= options_.maxStreams) {
        outlets_.push(id, kStreamHeader + textOf(tooManyStreamsPart()));
        return;
    }
    std::string greeting = kStreamHeader;
    if (options_.eventAtConnect)
        greeting += textOf(accessEventPart(*options_.eventAtConnect, nextSerialNo(), senderTo(subscriber)));
    outlets_.push(id, std::move(greeting));
    subscribers_.emplace(id, subscriber);
    changed_.notify_all();
}

void AlertStreams::send(const AccessEvent& event, uint64_t serialNo) {
    const std::lock_guard lock(mutex_);
    broadcast([&](const Sender& sender) { return accessEventPart(event, serialNo, sender); });
}

void AlertStreams::send(const Alarm& alarm) {
    const std::lock_guard lock(mutex_);
    broadcast([&](const Sender& sender) { return alarmPart(alarm, sender); });
}

void AlertStreams::sendHeartbeat() {
    const std::lock_guard lock(mutex_);
    broadcast(heartbeatPart);
}

void AlertStreams::sendRaw(std::string bytes) {
    const Chunk chunk(std::move(bytes));
    const std::lock_guard lock(mutex_);
    for (const auto& [id, subscriber] : subscribers_)
        push(id, chunk);
}

void AlertStreams::endAfterQueue() {
    Chunk last("--" + kBoundary + "--\r\n");
    last.ending = Chunk::Ending::Cut;
    const std::lock_guard lock(mutex_);
    for (const auto& [id, subscriber] : subscribers_)
        outlets_.push(id, last);
}

void AlertStreams::cut() {
    std::vector<Outlets::Id> ids;
    {
        const std::lock_guard lock(mutex_);
        for (const auto& [id, subscriber] : subscribers_)
            ids.push_back(id);
    }
    for (const Outlets::Id id : ids)
        outlets_.cut(id);
}

size_t AlertStreams::count() const {
    const std::lock_guard lock(mutex_);
    return subscribers_.size();
}

std::vector<SubscriberView> AlertStreams::subscribers() const {
    const auto now = std::chrono::steady_clock::now();
    std::vector<SubscriberView> views;
    const std::lock_guard lock(mutex_);
    for (const auto& [id, subscriber] : subscribers_)
        views.push_back({subscriber.client, subscriber.path,
                         std::chrono::floor<std::chrono::seconds>(now - subscriber.since)});
    return views;
}

bool AlertStreams::waitForCount(size_t count, std::chrono::milliseconds timeout) const {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, timeout, [&] { return subscribers_.size() == count; });
}

uint64_t AlertStreams::lostEvents() const {
    const std::lock_guard lock(mutex_);
    return lost_;
}

Sender AlertStreams::sender(const std::string& ipAddress, uint16_t port) const {
    const Identity& identity = options_.identity;
    Sender sender{ipAddress, port, identity.macAddress, identity.deviceId, "", ""};
    complete_(sender);
    return sender;
}

void AlertStreams::broadcast(const MakePart& make) {
    std::map<std::string, Chunk>
        sound;  // by the address that the subscriber reached; made once, as pictures are large
    for (const auto& [id, subscriber] : subscribers_) {
        if (const auto fault = faults_.strike(subscriber.path, Faults::Moment::StreamPart)) {
            push(id, toChunk(make(senderTo(subscriber)), fault));
            continue;
        }
        auto found = sound.find(subscriber.ipAddress);
        if (found == sound.end())
            found =
                sound.emplace(subscriber.ipAddress, toChunk(make(senderTo(subscriber)), std::nullopt)).first;
        push(id, found->second);
    }
}

void AlertStreams::push(Outlets::Id id, const Chunk& chunk) {
    if (!outlets_.push(id, chunk)) ++lost_;
}

void AlertStreams::onClosed(Outlets::Id id) {
    const std::lock_guard lock(mutex_);
    subscribers_.erase(id);
    changed_.notify_all();
}

}  // namespace veltasim
