// One connection to a device: pairs requests with answers.
#pragma once

#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <string_view>

#include "trace/exchange_record.h"

namespace host {

// [any thread]
class ConnectionTrace {
 public:
    using Done = std::function<void(const ExchangeRecord&)>;

    // done: takes each exchange that is over; called by the thread that ended it.
    ConnectionTrace(std::string device, uint64_t number, Keep keep, Done done);

    void connected();
    void sent(std::string_view bytes);
    void received(std::string_view bytes);
    void peerClosed();
    void failed(int error);  // an errno
    void closed();           // by this side; nothing comes after it

 private:
    using Clock = std::chrono::steady_clock;

    struct Requests : HttpSink {
        explicit Requests(ConnectionTrace& trace) : trace_(trace) {}
        bool onHead(HttpHead head) override;
        void onBody(std::string_view bytes) override;
        void onEnd() override;
        ConnectionTrace& trace_;
    };
    struct Answers : Requests {
        using Requests::Requests;
        bool onHead(HttpHead head) override;
        void onBody(std::string_view bytes) override;
        void onEnd() override;
    };

    ExchangeRecord& newExchange();
    void hand(ExchangeRecord& exchange);
    std::string reason() const;

    const std::string device_;
    const uint64_t number_;
    const Keep keep_;
    const Done done_;
    const std::chrono::system_clock::time_point began_ = std::chrono::system_clock::now();
    const Clock::time_point opened_ = Clock::now();
    std::mutex mutex_;  // guards the rest
    std::optional<Clock::duration> connecting_;
    bool isFirst_ = true;
    bool peerClosed_ = false;
    bool wasConnected_ = false;
    int error_ = 0;
    Requests requests_{*this};
    Answers answers_{*this};
    HttpReader requestReader_{HttpReader::Side::Request, requests_};
    HttpReader answerReader_{HttpReader::Side::Response, answers_};
    std::deque<ExchangeRecord> open_;  // the answers come in the order of the requests
};

}  // namespace host
