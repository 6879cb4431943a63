// A client of the simulated device.
#pragma once

#include <curl/curl.h>

#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include <veltasim/device.h>

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
    Answer send(const std::string& method, const std::string& target, const std::string& body = "");

 private:
    friend class Subscriber;
    using Sink = std::function<bool(std::string_view)>;
    CURLcode perform(const std::string& target, const Sink& sink);
    static size_t onData(char* data, size_t one, size_t size, void* sink);

    std::unique_ptr<CURL, decltype(&curl_easy_cleanup)> curl_{curl_easy_init(), curl_easy_cleanup};
    std::string url_;
};

// A subscriber of the alert stream, on a thread of its own.
class Subscriber {
 public:
    explicit Subscriber(const veltasim::Device& device);
    ~Subscriber();  // leaves

    // What came so far, as soon as it has the text so many times; empty if that never happens.
    std::string waitFor(const std::string& text, size_t times = 1);
    CURLcode waitForEnd();
    void leave();

 private:
    Client client_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::string received_;  // guarded by mutex_
    bool ended_ = false;    // guarded by mutex_
    bool leaving_ = false;  // guarded by mutex_
    CURLcode result_ = CURLE_OK;
    std::thread thread_;
};

}  // namespace velta_test
