#include "client.h"

#include <sstream>

namespace velta_test {
namespace {

int onProgress(void* leaving, curl_off_t, curl_off_t, curl_off_t, curl_off_t) {
    return *static_cast<std::atomic<bool>*>(leaving) ? 1 : 0;
}

size_t onData(char* data, size_t, size_t size, void* sink) {
    (*static_cast<std::function<void(std::string_view)>*>(sink))({data, size});
    return size;
}

}  // namespace

Client::Client(std::string url, const std::string& password) : url_(std::move(url)) {
    curl_easy_setopt(curl_.get(), CURLOPT_HTTPAUTH, CURLAUTH_DIGEST | CURLAUTH_BASIC);
    curl_easy_setopt(curl_.get(), CURLOPT_USERNAME, "admin");
    curl_easy_setopt(curl_.get(), CURLOPT_PASSWORD, password.c_str());
    curl_easy_setopt(curl_.get(), CURLOPT_TIMEOUT, static_cast<long>(kSoon.count()));
    curl_easy_setopt(curl_.get(), CURLOPT_PROXY, "");
    curl_easy_setopt(curl_.get(), CURLOPT_WRITEFUNCTION, &onData);
    curl_easy_setopt(curl_.get(), CURLOPT_HEADERFUNCTION, &onData);
}

CURLcode Client::perform(const std::string& target, const Sink& sink) {
    curl_easy_setopt(curl_.get(), CURLOPT_URL, (url_ + target).c_str());
    curl_easy_setopt(curl_.get(), CURLOPT_WRITEDATA, &sink);
    return curl_easy_perform(curl_.get());
}

Answer Client::send(const std::string& method, const std::string& target, const std::string& body,
                    const std::string& contentType) {
    Answer answer;
    const Sink header = [&](std::string_view line) {
        if (line.starts_with("HTTP/")) answer.header.clear();  // the one before only asked for the password
        answer.header += line;
    };
    const std::unique_ptr<curl_slist, decltype(&curl_slist_free_all)> headers(
        curl_slist_append(nullptr, ("Content-Type: " + contentType).c_str()), curl_slist_free_all);
    curl_easy_setopt(curl_.get(), CURLOPT_CUSTOMREQUEST, method.c_str());
    curl_easy_setopt(curl_.get(), CURLOPT_HEADERDATA, &header);
    curl_easy_setopt(curl_.get(), CURLOPT_HTTPHEADER, headers.get());
    curl_easy_setopt(curl_.get(), CURLOPT_POSTFIELDSIZE, static_cast<long>(body.size()));
    if (!body.empty()) curl_easy_setopt(curl_.get(), CURLOPT_COPYPOSTFIELDS, body.data());
    answer.result = perform(target, [&](std::string_view data) { answer.body += data; });
    curl_easy_setopt(curl_.get(), CURLOPT_HTTPGET, 1L);
    curl_easy_setopt(curl_.get(), CURLOPT_HTTPHEADER, nullptr);
    curl_easy_getinfo(curl_.get(), CURLINFO_RESPONSE_CODE, &answer.status);
    return answer;
}

void Client::talk(const std::string& root, const std::string& script) {
    const auto squeezed = [](std::string text) {
        std::erase_if(text, [](char c) { return c == ' ' || c == '\t' || c == '\n'; });
        return text;
    };
    std::istringstream lines(script);
    for (std::string line; std::getline(lines, line);) {
        const size_t arrow = line.find(" -> ");
        if (arrow == std::string::npos) continue;
        std::istringstream request(line.substr(0, arrow));
        std::istringstream expected(line.substr(arrow + 4));
        std::string method, target, body, text;
        long status = 0;
        std::getline(request >> method >> target >> std::ws, body);
        std::getline(expected >> status >> std::ws, text);
        target = target == "." ? root : root + target;
        if (!body.starts_with('<') && target.find('?') == std::string::npos) target += "?format=json";
        const Answer answer = send(method, target, body);
        EXPECT_EQ(answer.status, status) << line << '\n' << answer.body;
        EXPECT_THAT(squeezed(answer.body), testing::HasSubstr(squeezed(text))) << line;
    }
}

Subscriber::Subscriber(const veltasim::Device& device, bool reads) : client_(device) {
    thread_ = std::thread([this, reads] {
        const Client::Sink sink = [this, reads](std::string_view data) {
            if (!reads && data.starts_with("HTTP/1.1 200")) leaving_.wait(false);
            const std::lock_guard lock(mutex_);
            received_ += data;
            changed_.notify_all();
        };
        curl_easy_setopt(client_.curl_.get(), CURLOPT_HEADERDATA, &sink);
        curl_easy_setopt(client_.curl_.get(), CURLOPT_NOPROGRESS, 0L);
        curl_easy_setopt(client_.curl_.get(), CURLOPT_XFERINFOFUNCTION, &onProgress);
        curl_easy_setopt(client_.curl_.get(), CURLOPT_XFERINFODATA, &leaving_);
        const CURLcode result = client_.perform("/VELTA/Event/notification/alertStream", sink);
        const std::lock_guard lock(mutex_);
        result_ = result;
        changed_.notify_all();
    });
}

Subscriber::~Subscriber() {
    leaving_ = true;
    leaving_.notify_all();
    thread_.join();
}

std::string Subscriber::waitFor(const std::string& text, size_t times) {
    std::unique_lock lock(mutex_);
    size_t at = 0;
    const bool came = changed_.wait_for(lock, kSoon, [&] {
        for (size_t found = 0; times > 0 && (found = received_.find(text, at)) != std::string::npos; --times)
            at = found + text.size();
        return times == 0;
    });
    return came ? received_ : "";
}

bool Subscriber::waitForEnd() {
    std::unique_lock lock(mutex_);
    changed_.wait_for(lock, kSoon, [&] { return result_ != CURLE_AGAIN; });
    return result_ == CURLE_OK;
}

}  // namespace velta_test
