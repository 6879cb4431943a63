// What can go wrong with a device.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace veltasim {

// Faults strike requests that were let in; a client that is only being asked for its password sees none.
// On an alert stream HttpError, Status, HangBefore and StaleNonce strike when it is opened; each other fault strikes
// parts, and then each part (event, alarm, heartbeat) counts as one answer.
enum class FaultKind {
    HangBefore,     // "hang-before": no answer at all; the connection stays open
    HangMidway,     // "hang-midway": half of the answer, then silence; the connection stays open
    Drop,           // "drop": half of the answer, then the connection is cut
    WrongLength,    // "wrong-length": Content-Length is too great by `amount` bytes (default 16; less than 0:
                    // too small)
    MalformedBody,  // "malformed": the body loses its second half, Content-Length fits what is left
    HttpError,      // "http-error": HTTP status `amount` (default 500) with a ResponseStatus
    Status,      // "status": a ResponseStatus with the errorCode `amount` (default 1610612737), whose upper
                 // four bits are the statusCode; the HTTP status is the one that belongs to it
    SlowBytes,   // "slow": `amount` bytes per second (default 100)
    StaleNonce,  // "stale-nonce": 401 that asks for the same password with a new nonce (digest only)
};

struct Fault {
    static constexpr unsigned kForEver = 0;

    FaultKind kind = FaultKind::HangBefore;
    int64_t amount = 0;         // its meaning depends on the kind; 0: the kind's default
    std::string path = {};      // strikes paths that begin so, "/VELTA/System"; empty: all
    unsigned count = kForEver;  // wears off after so many answers
};

// "KIND[=AMOUNT][,path=PREFIX][,count=N]"; nothing if the text is not of that form.
std::optional<Fault> parseFault(std::string_view text);
// Name of the kind as in the comments above.
std::string_view nameOf(FaultKind kind);

}  // namespace veltasim
