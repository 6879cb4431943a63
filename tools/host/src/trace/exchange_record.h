// A request and its answer, as they went over a connection.
#pragma once

#include <chrono>
#include <optional>
#include <string>

#include "trace/captured_body.h"
#include "trace/http_reader.h"

namespace host {

struct RecordedMessage {
    explicit RecordedMessage(Keep keep) : body(keep) {}

    HttpHead head;
    CapturedBody body;
};

struct ExchangeRecord {
    using Steady = std::chrono::steady_clock;

    ExchangeRecord(Keep keep, std::string address)
        : request(keep), answer(keep), device(std::move(address)) {}

    RecordedMessage request;
    RecordedMessage answer;
    std::string device;                          // "192.168.1.20:80"
    uint64_t connection = 0;                     // 1, 2, 3, ...
    std::optional<Steady::duration> connecting;  // of the connection's first exchange
    // Unset: it did not come to that. The end is also the one of waiting in vain.
    std::optional<Steady::time_point> sendBegan, sendEnded, answerBegan, answerEnded;
    std::chrono::system_clock::time_point began = std::chrono::system_clock::now();
    std::string error;  // why there is no answer, or only the beginning of one
};

}  // namespace host
