// How a simulated device is set up. Everything here is read once, by the Device constructor.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include <veltasim/event.h>
#include <veltasim/recording.h>
#include <veltasim/request.h>

namespace veltasim {

enum class AuthScheme { Digest, DigestSha256, Basic, None };

// What the device says about itself.
struct Identity {
    std::string deviceName = "Access Controller";
    std::string deviceId = "88";
    std::string model = "VA204";
    std::string serialNumber = "VA204-000001";
    std::string macAddress = "02:56:53:00:00:01";
    std::string firmwareVersion = "V1.4.2";

    // The identity of the index-th of several devices: serial number, hardware address and name differ.
    static Identity numbered(unsigned index);
};

// What the device has, numbered from 1. 0: none, its list is empty; nothing: it does not know the resource (404).
struct Inventory {
    std::optional<unsigned> videoInputs = 1;
    std::optional<unsigned> proxyChannels = 0;  // cameras of others that a recorder takes in
    std::optional<unsigned> audioChannels = 1;
    std::optional<unsigned> ioInputs = 2;
    std::optional<unsigned> ioOutputs = 2;
    std::optional<unsigned> networkInterfaces = 1;
};

// How much an access controller can hold.
struct Capacity {
    unsigned persons = 10000;
    unsigned cards = 20000;
    unsigned faces = 10000;  // over all libraries
    unsigned fingerprints = 20000;
    unsigned cardsPerPerson = 5;
    unsigned fingerprintsPerPerson = 10;
    unsigned events = 10000;  // in the log; the oldest are forgotten
    unsigned eventHosts = 4;
};

struct Options {
    std::string bindAddress = "127.0.0.1";  // an IPv4 address
    uint16_t port = 0;                      // 0: the system picks a free one
    Identity identity = {};
    Inventory inventory = {};
    std::chrono::milliseconds rebootTime{10000};  // how long a device that reboots is away

    unsigned doors = 2;                    // each with one reader of the same number
    std::chrono::seconds doorOpenTime{5};  // how long a door stays open, by the device's clock
    std::chrono::milliseconds backgroundTime{
        200};  // how long the device works on a deletion or a fingerprint
    Capacity capacity = {};

    // With digest the device accepts the newest nonce only. A client that comes with an older one is told
    // that it is stale (401, never counted as a failure) and tries again, so that a record may hold more 401s
    // than log-ins.
    AuthScheme auth = AuthScheme::Digest;
    std::string user = "admin";
    std::string password = "velta-sim-1";
    unsigned maxFailedLogins = 5;        // failed log-ins in a row that lock the user; 0: never locks
    std::chrono::seconds lockTime{300};  // how long the lock lasts

    unsigned maxStreams = 8;                     // further subscribers are told "deployExceedMax"
    std::chrono::milliseconds heartbeat{10000};  // 0: no heartbeats
    size_t maxQueuedEvents = 4096;       // per subscriber; what comes on top is lost for that subscriber
    size_t maxQueuedBytes = 64U << 20U;  // likewise; one event is always taken, however large
    // Sent to each new subscriber in one write with the response header.
    std::optional<AccessEvent> eventAtConnect = {};

    size_t maxRecordedRequests = 10000;  // the oldest are forgotten
    size_t maxRecordedBody = 1U << 20U;  // bytes of a request body that are recorded
    size_t maxRecordedAnswer = 0;        // bytes of the body of an answer that are recorded
    size_t maxReports = 500;  // events that went out, for whoever watches; the oldest are forgotten
    size_t maxRequestBody = 16U << 20U;  // a larger one is answered 413
    // Called for every request, on the device's thread, just before the answer goes out; must be quick, must
    // not throw and must not call the device.
    std::function<void(const RequestRecord&)> onRequest = {};

    // A device that answers as another one did once: nothing is left of its own but the log-in.
    std::shared_ptr<const Recording> recording = {};
    double replaySpeed = 1;  // how many times faster the events come than they were recorded
    // Called for every request that the recording does not know, as onRequest is.
    std::function<void(const RequestRecord&)> onUnrecorded = {};
};

}  // namespace veltasim
