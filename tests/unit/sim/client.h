// A client of the simulated device.
#pragma once

#include <curl/curl.h>
#include <gmock/gmock.h>

#include <atomic>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include <veltasim/device.h>

#include "../../wait.h"

namespace velta_test {

constexpr std::chrono::seconds kSoon{60};  // what is to happen happens much sooner, on any machine

struct Answer {
    CURLcode result = CURLE_OK;
    long status = 0;
    std::string header;
    std::string body;
};

// One connection to one device.
class Client {
 public:
    explicit Client(std::string url, const std::string& password = "velta-sim-1");
    explicit Client(const veltasim::Device& device, const std::string& password = "velta-sim-1")
        : Client(device.url(), password) {}

    Answer get(const std::string& target) { return send("GET", target); }
    Answer put(const std::string& target, const std::string& body) { return send("PUT", target, body); }
    Answer send(const std::string& method, const std::string& target, const std::string& body = "",
                const std::string& contentType = "application/xml");
    // Holds a conversation, written down a line each: "PUT TARGET [BODY] -> STATUS [what the answer has]". White
    // space in answers does not count, the target begins with the root ("." is the root itself), and
    // "?format=json" is added to what is not XML.
    void talk(const std::string& root, const std::string& script);

 private:
    friend class Subscriber;
    using Sink = std::function<void(std::string_view)>;
    CURLcode perform(const std::string& target, const Sink& sink);

    std::unique_ptr<CURL, decltype(&curl_easy_cleanup)> curl_{curl_easy_init(), curl_easy_cleanup};
    std::string url_;
};

// A running device with a client of it.
class DeviceTest : public testing::Test {
 protected:
    explicit DeviceTest(const veltasim::Options& options = {})
        : device(options), client((device.start(), device)) {}

    veltasim::Device device;
    Client client;
};

// A subscriber of the alert stream, on a thread of its own.
class Subscriber {
 public:
    explicit Subscriber(const veltasim::Device& device, bool reads = true);
    ~Subscriber();  // leaves

    // What came so far, as soon as it has the text so many times; empty if that never happens.
    std::string waitFor(const std::string& text, size_t times = 1);
    bool waitForEnd();  // whether the stream ended as it should

 private:
    Client client_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::string received_;           // guarded by mutex_
    CURLcode result_ = CURLE_AGAIN;  // guarded by mutex_; while it goes on
    std::atomic<bool> leaving_ = false;
    std::thread thread_;
};

}  // namespace velta_test
