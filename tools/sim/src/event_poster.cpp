#include "event_poster.h"

#include "events.h"
#include "json_text.h"

namespace veltasim {
namespace {

constexpr size_t kMostQueued = 1000;
constexpr long kConnectMilliseconds = 2000;
constexpr long kPostMilliseconds = 5000;
constexpr int kPollMilliseconds = 1000;

size_t ignore(const char*, size_t, size_t size, const void*) noexcept {
    return size;
}

}  // namespace

void EventPoster::enable(bool on) {
    static const CURLcode ready = curl_global_init(CURL_GLOBAL_DEFAULT);
    const std::lock_guard switching(switchMutex_);
    if (on == thread_.joinable() || ready != CURLE_OK) return;
    if (on) multi_.reset(curl_multi_init());
    {
        const std::lock_guard lock(mutex_);
        running_ = on;
        queue_.clear();
        changed_.notify_all();
    }
    if (on) {
        thread_ = std::thread([this] { run(); });
    } else {
        curl_multi_wakeup(multi_.get());
        thread_.join();
        multi_.reset();
    }
}

void EventPoster::post(const std::string& url, const Message& event) {
    Post post{url, kJsonType, event.body};
    if (hasPicture(event)) {
        post.contentType = "multipart/form-data; boundary=" + kBoundary;
        post.body = *toChunk(event, std::nullopt).bytes + "--" + kBoundary + "--\r\n";
    }
    const std::lock_guard lock(mutex_);
    if (!running_ || queue_.size() >= kMostQueued) return;
    queue_.push_back(std::move(post));
    changed_.notify_all();
}

bool EventPoster::isStopping() {
    const std::lock_guard lock(mutex_);
    return !running_;
}

void EventPoster::run() {
    const std::unique_ptr<CURL, decltype(&curl_easy_cleanup)> easy(curl_easy_init(), curl_easy_cleanup);
    for (;;) {
        Post next;
        {
            std::unique_lock lock(mutex_);
            changed_.wait(lock, [this] { return !running_ || !queue_.empty(); });
            if (!running_) return;
            next = std::move(queue_.front());
            queue_.pop_front();
        }
        send(next, easy.get());
    }
}

void EventPoster::send(const Post& post, CURL* easy) {
    const std::unique_ptr<curl_slist, decltype(&curl_slist_free_all)> headers(
        curl_slist_append(curl_slist_append(nullptr, ("Content-Type: " + post.contentType).c_str()),
                          "Expect:"),
        curl_slist_free_all);
    curl_easy_reset(easy);
    curl_easy_setopt(easy, CURLOPT_URL, post.url.c_str());
    curl_easy_setopt(easy, CURLOPT_PROTOCOLS_STR, "http,https");
    curl_easy_setopt(easy, CURLOPT_PROXY, "");
    curl_easy_setopt(easy, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(easy, CURLOPT_CONNECTTIMEOUT_MS, kConnectMilliseconds);
    curl_easy_setopt(easy, CURLOPT_TIMEOUT_MS, kPostMilliseconds);
    curl_easy_setopt(easy, CURLOPT_SSL_VERIFYPEER, 0L);  // a device knows no authorities
    curl_easy_setopt(easy, CURLOPT_SSL_VERIFYHOST, 0L);
    curl_easy_setopt(easy, CURLOPT_HTTPHEADER, headers.get());
    curl_easy_setopt(easy, CURLOPT_POSTFIELDSIZE, static_cast<long>(post.body.size()));
    curl_easy_setopt(easy, CURLOPT_POSTFIELDS, post.body.data());
    curl_easy_setopt(easy, CURLOPT_WRITEFUNCTION, &ignore);

    curl_multi_add_handle(multi_.get(), easy);
    int running = 1;
    while (curl_multi_perform(multi_.get(), &running) == CURLM_OK && running > 0 && !isStopping())
        curl_multi_poll(multi_.get(), nullptr, 0, kPollMilliseconds, nullptr);
    curl_multi_remove_handle(multi_.get(), easy);
}

}  // namespace veltasim
