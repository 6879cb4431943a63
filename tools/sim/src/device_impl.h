#pragma once

#include <veltasim/device.h>

#include <atomic>
#include <mutex>

#include "alert_streams.h"
#include "event_poster.h"
#include "faults.h"
#include "http_server.h"
#include "journal.h"
#include "listener.h"
#include "log_in.h"
#include "loop.h"
#include "outlets.h"
#include "replay/replay.h"
#include "request_log.h"
#include "resources/resource.h"
#include "state.h"

namespace veltasim {

struct Approach;

// What a device is made of.
class Device::Impl {
 public:
    explicit Impl(Options given)
        : options(std::move(given)),
          logIn(options),
          log(options.maxRecordedRequests, options.maxRecordedBody),
          journal(options.maxReports),
          state_(options),
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
    void clearFaults(std::optional<FaultKind> kind);
    // Sends an event to whoever wants it, and logs it. Returns its serial number.
    uint64_t report(const AccessEvent& event);
    void report(const Alarm& alarm);
    Passage presentCard(const std::string& cardNo, unsigned reader);
    Passage presentFace(const std::string& employeeNo, unsigned reader);
    void commandDoor(unsigned door, const std::string& command);
    std::string saveState();
    void loadState(const std::string& text);
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
    Journal journal;
    Faults faults;
    std::atomic<bool> isOn = false;
    std::atomic<uint64_t> changes = 0;  // requests that may have changed the state, and states loaded

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
    void note(Exchange& exchange, const Reply& reply);
    // Posts the event to those hosts of which the predicate holds.
    template <typename Predicate>
    void postToHosts(Predicate takes, const std::function<Message(const Sender&)>& make);
    // Posting goes on as long as there are hosts and power.
    void followHosts();
    Passage pass(const Approach& approach);

    std::mutex reportMutex_;  // keeps serial numbers in order; locked before stateMutex_
    std::mutex stateMutex_;
    State state_;  // guarded by stateMutex_
    Loop loop_;

 public:
    Outlets outlets;
    AlertStreams streams;
    EventPoster poster;

 private:
    // The rest belongs to the loop's thread.
    std::optional<Listener> listener_;  // set before the thread starts, and never changed
    std::optional<HttpServer> server_;  // while the power is on
    std::optional<Loop::TimerId> heartbeat_;
    std::optional<Loop::TimerId> powerReturn_;
    std::optional<Replay> replay_;  // set before the thread starts
};

}  // namespace veltasim
