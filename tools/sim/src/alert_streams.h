#pragma once

#include <atomic>
#include <condition_variable>
#include <functional>
#include <map>
#include <mutex>
#include <string>

#include <veltasim/device.h>

#include "events.h"
#include "faults.h"
#include "outlets.h"

namespace veltasim {

// Those who listen to the device's events. [any thread] unless said otherwise
class AlertStreams {
 public:
    // Fills in what the device may change: its name and the time.
    using Complete = std::function<void(Sender&)>;

    // Throws std::invalid_argument for an event at connect that is not JSON.
    AlertStreams(const Options& options, Outlets& outlets, Faults& faults, Complete complete);

    // [loop thread] Makes the sender of the request a subscriber, or tells it that there are too many.
    void open(Exchange& exchange, uint16_t devicePort);

    // What an event says of the device to somebody who knows it by this address.
    Sender sender(const std::string& ipAddress, uint16_t port) const;
    uint64_t nextSerialNo() { return ++serialNo_; }
    uint64_t lastSerialNo() const { return serialNo_; }
    void continueAfter(uint64_t serialNo) { serialNo_ = serialNo; }
    void send(const AccessEvent& event, uint64_t serialNo);
    void send(const Alarm& alarm);
    void sendHeartbeat();
    void sendRaw(std::string bytes);

    void endAfterQueue();
    void cut();  // [loop thread]

    size_t count() const;
    std::vector<SubscriberView> subscribers() const;
    bool waitForCount(size_t count, std::chrono::milliseconds timeout) const;
    uint64_t lostEvents() const;

 private:
    struct Subscriber {
        std::string client;
        std::chrono::steady_clock::time_point since;
        std::string ipAddress;
        uint16_t port;
        std::string path;
    };
    using MakePart = std::function<Message(const Sender&)>;

    Sender senderTo(const Subscriber& subscriber) const {
        return sender(subscriber.ipAddress, subscriber.port);
    }
    void broadcast(const MakePart& make);           // with mutex_ locked
    void push(Outlets::Id id, const Chunk& chunk);  // with mutex_ locked
    void onClosed(Outlets::Id id);

    const Options& options_;
    Outlets& outlets_;
    Faults& faults_;
    const Complete complete_;
    mutable std::mutex mutex_;
    mutable std::condition_variable changed_;
    std::map<Outlets::Id, Subscriber> subscribers_;  // guarded by mutex_
    std::atomic<uint64_t> serialNo_ = 0;             // the last one given
    uint64_t lost_ = 0;                              // guarded by mutex_
};

}  // namespace veltasim
