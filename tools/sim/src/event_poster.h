#pragma once

#include <curl/curl.h>

#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include "message.h"

namespace veltasim {

// Posts events to the notification hosts, one after the other, on a thread of its own. A host that cannot be
// reached misses the event, and so do all when they are too slow.
class EventPoster {
 public:
    ~EventPoster() { enable(false); }

    // [any thread] The thread runs while enabled. Disabling cuts what is being posted, and forgets the rest.
    void enable(bool on);
    // [any thread] Does nothing unless enabled.
    void post(const std::string& url, const Message& event);

 private:
    struct Post {
        std::string url;
        std::string contentType;
        std::string body;
    };

    void run();
    void send(const Post& post, CURL* easy);
    bool isStopping();

    std::mutex switchMutex_;  // of enable(); locked before mutex_
    std::unique_ptr<CURLM, decltype(&curl_multi_cleanup)> multi_{nullptr, curl_multi_cleanup};
    std::thread thread_;  // guarded by switchMutex_

    std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<Post> queue_;  // guarded by mutex_
    bool running_ = false;    // guarded by mutex_
};

}  // namespace veltasim
