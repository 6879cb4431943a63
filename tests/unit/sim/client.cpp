#include "client.h"

#include <algorithm>

namespace velta_test {
namespace {

int onProgress(void* leaving, curl_off_t, curl_off_t, curl_off_t, curl_off_t) {
    return (*static_cast<std::function<bool()>*>(leaving))() ? 1 : 0;
}

}  // namespace

Client::Client(std::string url, const std::string& password) : url_(std::move(url)) {
    curl_easy_setopt(curl_.get(), CURLOPT_HTTPAUTH, CURLAUTH_DIGEST | CURLAUTH_BASIC);
    curl_easy_setopt(curl_.get(), CURLOPT_USERNAME, "admin");
    curl_easy_setopt(curl_.get(), CURLOPT_PASSWORD, password.c_str());
    curl_easy_setopt(curl_.get(), CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(curl_.get(), CURLOPT_TIMEOUT, static_cast<long>(kSoon.count()));
    curl_easy_setopt(curl_.get(), CURLOPT_PROXY, "");
    curl_easy_setopt(curl_.get(), CURLOPT_WRITEFUNCTION, &onData);
    curl_easy_setopt(curl_.get(), CURLOPT_HEADERFUNCTION, &onData);
}

size_t Client::onData(char* data, size_t, size_t size, void* sink) {
    return (*static_cast<Sink*>(sink))({data, size}) ? size : 0;
}

CURLcode Client::perform(const std::string& target, const Sink& sink) {
    curl_easy_setopt(curl_.get(), CURLOPT_URL, (url_ + target).c_str());
    curl_easy_setopt(curl_.get(), CURLOPT_WRITEDATA, &sink);
    return curl_easy_perform(curl_.get());
}

Answer Client::send(const std::string& method, const std::string& target, const std::string& body) {
    Answer answer;
    const Sink header = [&](std::string_view line) {
        if (line.starts_with("HTTP/"))
            answer.header.clear();  // the answer before it only asked for the password
        answer.header += line;
        return true;
    };
    curl_easy_setopt(curl_.get(), CURLOPT_CUSTOMREQUEST, method.c_str());
    curl_easy_setopt(curl_.get(), CURLOPT_HEADERDATA, &header);
    if (!body.empty()) curl_easy_setopt(curl_.get(), CURLOPT_COPYPOSTFIELDS, body.c_str());
    answer.result = perform(target, [&](std::string_view data) {
        answer.body += data;
        return true;
    });
    curl_easy_setopt(curl_.get(), CURLOPT_HTTPGET, 1L);
    curl_easy_getinfo(curl_.get(), CURLINFO_RESPONSE_CODE, &answer.status);
    return answer;
}

Subscriber::Subscriber(const veltasim::Device& device) : client_(device) {
    thread_ = std::thread([this] {
        const Client::Sink sink = [this](std::string_view data) {
            const std::lock_guard lock(mutex_);
            received_ += data;
            changed_.notify_all();
            return true;
        };
        std::function<bool()> leaving = [this] {
            const std::lock_guard lock(mutex_);
            return leaving_;
        };
        CURL* curl = client_.curl_.get();
        curl_easy_setopt(curl, CURLOPT_HEADERDATA, &sink);
        curl_easy_setopt(curl, CURLOPT_NOPROGRESS, 0L);
        curl_easy_setopt(curl, CURLOPT_XFERINFOFUNCTION, &onProgress);
        curl_easy_setopt(curl, CURLOPT_XFERINFODATA, &leaving);
        const CURLcode result = client_.perform("/VELTA/Event/notification/alertStream", sink);
        const std::lock_guard lock(mutex_);
        result_ = result;
        ended_ = true;
        changed_.notify_all();
    });
}

Subscriber::~Subscriber() {
    leave();
    thread_.join();
}

std::string Subscriber::waitFor(const std::string& text, size_t times) {
    std::unique_lock lock(mutex_);
    size_t at = 0;  // nothing before it need be looked at again
    const bool came = changed_.wait_for(lock, kSoon, [&] {
        size_t found = 0;
        while (times > 0 && (found = received_.find(text, at)) != std::string::npos) {
            at = found + text.size();
            --times;
        }
        if (times > 0) at = std::max(at, received_.size() - std::min(received_.size(), text.size() - 1));
        return times == 0;
    });
    return came ? received_ : "";
}

CURLcode Subscriber::waitForEnd() {
    std::unique_lock lock(mutex_);
    changed_.wait_for(lock, kSoon, [&] { return ended_; });
    return ended_ ? result_ : CURLE_OPERATION_TIMEDOUT;
}

void Subscriber::leave() {
    const std::lock_guard lock(mutex_);
    leaving_ = true;
}

}  // namespace velta_test
