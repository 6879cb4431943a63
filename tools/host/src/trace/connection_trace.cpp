#include "trace/connection_trace.h"

#include <cstring>

namespace host {

ConnectionTrace::ConnectionTrace(std::string device, uint64_t number, Keep keep, Done done)
    : device_(std::move(device)), number_(number), keep_(keep), done_(std::move(done)) {}

ExchangeRecord& ConnectionTrace::newExchange() {
    ExchangeRecord& exchange = open_.emplace_back(keep_, device_);
    exchange.connection = number_;
    if (std::exchange(isFirst_, false)) {
        exchange.began = began_;
        exchange.connecting = connecting_;
    }
    return exchange;
}

void ConnectionTrace::hand(ExchangeRecord& exchange) {
    exchange.request.body.end();
    exchange.answer.body.end();
    done_(exchange);
}

bool ConnectionTrace::Requests::onHead(HttpHead head) {
    ExchangeRecord& exchange = trace_.newExchange();
    exchange.sendBegan = Clock::now();
    exchange.request.body.begin(head.header("Content-Type"));
    exchange.request.head = std::move(head);
    return true;
}
// The answer may be over before the request is; then the exchange is gone.
void ConnectionTrace::Requests::onBody(std::string_view bytes) {
    if (!trace_.open_.empty()) trace_.open_.back().request.body.add(bytes);
}
void ConnectionTrace::Requests::onEnd() {
    if (!trace_.open_.empty()) trace_.open_.back().sendEnded = Clock::now();
}

// An answer that nobody has asked for belongs to no exchange.
bool ConnectionTrace::Answers::onHead(HttpHead head) {
    if (trace_.open_.empty()) return true;
    ExchangeRecord& exchange = trace_.open_.front();
    exchange.answer.body.begin(head.header("Content-Type"));
    exchange.answer.head = std::move(head);
    return !exchange.request.head.firstLine.starts_with("HEAD ");
}
void ConnectionTrace::Answers::onBody(std::string_view bytes) {
    if (!trace_.open_.empty()) trace_.open_.front().answer.body.add(bytes);
}
void ConnectionTrace::Answers::onEnd() {
    if (trace_.open_.empty()) return;
    trace_.open_.front().answerEnded = Clock::now();
    trace_.hand(trace_.open_.front());
    trace_.open_.pop_front();
}

void ConnectionTrace::connected() {
    const std::lock_guard lock(mutex_);
    if (!connecting_) connecting_ = Clock::now() - opened_;
    wasConnected_ = true;
}

void ConnectionTrace::sent(std::string_view bytes) {
    connected();
    const std::lock_guard lock(mutex_);
    requestReader_.feed(bytes);
}

void ConnectionTrace::received(std::string_view bytes) {
    const std::lock_guard lock(mutex_);
    if (!open_.empty() && !open_.front().answerBegan) open_.front().answerBegan = Clock::now();
    answerReader_.feed(bytes);
}

void ConnectionTrace::peerClosed() {
    const std::lock_guard lock(mutex_);
    peerClosed_ = true;
    answerReader_.close();
}

void ConnectionTrace::failed(int error) {
    const std::lock_guard lock(mutex_);
    if (error_ == 0) error_ = error;
}

void ConnectionTrace::closed() {
    const std::lock_guard lock(mutex_);
    if (!wasConnected_) {
        connecting_ = Clock::now() - opened_;
        newExchange();
    }
    for (ExchangeRecord& exchange : open_) {
        exchange.answerEnded = Clock::now();
        // A stream of parts has no end of its own: whoever listens leaves when he has heard enough.
        const bool isStream = exchange.answerBegan && exchange.answer.body.isMultipart() && error_ == 0;
        if (!isStream) exchange.error = reason();
        hand(exchange);
    }
    open_.clear();
}

std::string ConnectionTrace::reason() const {
    const std::string seconds =
        std::to_string(std::chrono::duration<double>(Clock::now() - opened_).count()).substr(0, 5) + " s";
    if (error_ != 0 && !wasConnected_) return std::string("no connection: ") + std::strerror(error_);
    if (error_ != 0) return std::string("the connection broke: ") + std::strerror(error_);
    if (!wasConnected_) return "no connection: the device did not answer, given up after " + seconds;
    if (answerReader_.isBroken()) return "what the device answered is not HTTP";
    const bool hasBegun = !open_.empty() && open_.front().answerBegan.has_value();
    if (peerClosed_)
        return hasBegun ? "the device closed the connection within its answer"
                        : "the device closed the connection without an answer";
    return hasBegun ? "the rest of the answer did not come, or was not wanted; given up after " + seconds
                    : "the device did not answer, given up after " + seconds;
}

}  // namespace host
