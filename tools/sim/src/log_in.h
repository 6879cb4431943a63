#pragma once

#include <chrono>
#include <mutex>
#include <optional>
#include <string>

#include <veltasim/options.h>

#include "http_server.h"
#include "reply.h"

namespace veltasim {

// The device's user: who may come in, and who failed too often.
class LogIn {
 public:
    explicit LogIn(const Options& options) : options_(options) {}

    struct Refusal {
        Reply reply;
        bool stale = false;  // the client may try the same password with a new nonce
    };

    // [loop thread] Nothing: the request may pass. Notes its user in the record.
    std::optional<Refusal> check(Exchange& exchange);
    // What a client is told whose nonce is too old.
    Refusal staleRefusal() const;
    // [loop thread] Answers with the refusal and asks for a password.
    void refuse(Exchange& exchange, const Refusal& refusal);

    // [any thread]
    void lock(std::chrono::seconds duration);
    void unlock();
    bool isLocked() const { return lockLeft() > std::chrono::seconds::zero(); }

 private:
    using Clock = std::chrono::steady_clock;
    enum class Credentials { None, Stale, Wrong, Right };

    Credentials read(Exchange& exchange);
    Credentials readDigest(Exchange& exchange);
    Credentials readBasic(Exchange& exchange) const;
    void count(Credentials credentials);
    std::chrono::seconds lockLeft() const;
    std::string refusalText() const;

    const Options& options_;
    std::string freshNonce_;  // the last one given out, until it is used; belongs to the loop's thread
    mutable std::mutex mutex_;
    unsigned failures_ = 0;            // in a row; guarded by mutex_
    Clock::time_point lockedUntil_{};  // guarded by mutex_
};

}  // namespace veltasim
