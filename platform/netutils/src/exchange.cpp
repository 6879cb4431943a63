#include "exchange.h"

#include <string.h>

#include <algorithm>
#include <chrono>
#include <iterator>
#include <string_view>

#include "easy_handle.h"
#include "last_error.h"

namespace netutils {
namespace {

struct Method {
    const char* name;
    bool alwaysFramed; /* says how long its body is even when there is none */
};

/* By method code. */
constexpr Method kMethods[] = {{"GET", false}, {"PUT", true}, {"POST", true}, {"DELETE", false}};

constexpr long kShortestConnectTimeoutMs = 2000;

/* The unauthenticated request, the one with credentials, and one more for a nonce that had just become stale.
 * A device that never accepts its own nonces would otherwise be asked without end. */
constexpr long kMostRepetitions = 2;

/* Of all answers of an exchange together. libcurl keeps every line, also those behind the last chunk, of which it
 * takes any number. */
constexpr size_t kMostHeaderBytes = size_t{256} * 1024;

/* Puts the body of the answer into the caller's buffer. */
class Receiver {
 public:
    Receiver(char* buffer, uint32_t capacity) : buffer_(buffer), capacity_(capacity) {}

    static size_t receive(char* bytes, size_t, size_t count, void* receiver) {
        return static_cast<Receiver*>(receiver)->take(bytes, count);
    }
    uint32_t length() const { return length_; }
    bool cut() const { return cut_; }

 private:
    /* Taking less than there is stops the transfer. */
    size_t take(const char* bytes, size_t count) {
        const size_t taken = std::min<size_t>(count, capacity_ - length_);
        if (taken > 0) memcpy(buffer_ + length_, bytes, taken);
        length_ += static_cast<uint32_t>(taken);
        cut_ = taken < count;
        return taken;
    }

    char* buffer_;
    uint32_t capacity_;
    uint32_t length_ = 0;
    bool cut_ = false;
};

/* Ends a transfer whose request body has not moved for too long. */
class StallWatch {
 public:
    explicit StallWatch(int32_t limitMs) : limit_(limitMs) {}

    static int beginRequest(void* watch, char*, char*, int, int) {
        static_cast<StallWatch*>(watch)->restart();
        return CURL_PREREQFUNC_OK;
    }
    /* From here on the device may leave the rest of the body unread. */
    void answerBegins() { watching_ = false; }
    static int progress(void* watch, curl_off_t, curl_off_t, curl_off_t total, curl_off_t sent) {
        return static_cast<StallWatch*>(watch)->stalled(total, sent) ? 1 : 0;
    }

 private:
    using Clock = std::chrono::steady_clock;

    void restart() {
        watching_ = true;
        sent_ = 0;
        lastMove_ = Clock::now();
    }

    bool stalled(curl_off_t total, curl_off_t sent) {
        if (!watching_ || sent >= total) return false;
        if (sent != sent_) {
            sent_ = sent;
            lastMove_ = Clock::now();
        }
        return Clock::now() - lastMove_ > limit_;
    }

    std::chrono::milliseconds limit_;
    bool watching_ = false;
    curl_off_t sent_ = 0;
    Clock::time_point lastMove_;
};

/* Looks at the header lines of all answers of an exchange, and ends one that is up to no good. */
class HeaderWatch {
 public:
    explicit HeaderWatch(StallWatch* stall) : stall_(stall) {}

    static size_t header(char* bytes, size_t, size_t count, void* watch) {
        return static_cast<HeaderWatch*>(watch)->take({bytes, count}) ? count : 0;
    }
    /* The head of the last answer came to its end. */
    bool ended() const { return ended_; }
    /* A device that had offered Digest then asked for the password in clear. */
    bool downgraded() const { return downgraded_; }

 private:
    bool take(std::string_view line) {
        stall_->answerBegins();
        total_ += line.size();
        while (line.ends_with('\n') || line.ends_with('\r'))
            line.remove_suffix(1);
        if (line.starts_with("HTTP/")) {
            ended_ = offersDigest_ = offersBasic_ = false;
            asksForLogIn_ = line.substr(0, line.find(' ', line.find(' ') + 1)).ends_with(" 401");
        } else if (line.empty()) {
            ended_ = true;
            downgraded_ = asksForLogIn_ && offeredDigest_ && offersBasic_ && !offersDigest_;
            offeredDigest_ = offeredDigest_ || offersDigest_;
        } else if (line.find(':') == kChallenge.size() &&
                   equalsIgnoringCase(line.substr(0, kChallenge.size()), kChallenge)) {
            readChallenges(line.substr(kChallenge.size() + 1));
        }
        return total_ <= kMostHeaderBytes && !downgraded_;
    }

    /* One line may carry several challenges. They are read as libcurl reads them, which takes every comma for
     * the end of one, since it is libcurl that answers them. */
    void readChallenges(std::string_view line) {
        const auto isBlank = [](char c) { return c == ' ' || c == '\t'; };
        for (size_t at = 0; at < line.size();) {
            const size_t comma = std::min(line.find(',', at), line.size());
            const auto end = line.begin() + comma;
            const auto begin = std::find_if_not(line.begin() + at, end, isBlank);
            const std::string_view scheme(begin, std::find_if(begin, end, isBlank));
            offersDigest_ = offersDigest_ || equalsIgnoringCase(scheme, "Digest");
            offersBasic_ = offersBasic_ || equalsIgnoringCase(scheme, "Basic");
            at = comma + 1;
        }
    }

    static constexpr std::string_view kChallenge = "WWW-Authenticate";

    StallWatch* stall_;
    size_t total_ = 0;
    bool ended_ = false;
    bool asksForLogIn_ = false;
    bool offersDigest_ = false;
    bool offersBasic_ = false;
    bool offeredDigest_ = false;
    bool downgraded_ = false;
};

void setProtocol(EasyHandle& easy) {
    easy.set(CURLOPT_PROTOCOLS_STR, "http");
    easy.set(CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
    easy.set(CURLOPT_FOLLOWLOCATION, 0L);
    easy.set(CURLOPT_MAXREDIRS, kMostRepetitions);  // counts repetitions for a log-in too
    easy.set(CURLOPT_PROXY, "");
    easy.set(CURLOPT_NOPROXY, "*");
    easy.set(CURLOPT_NOSIGNAL, 1L);
    easy.set(CURLOPT_PATH_AS_IS, 1L);
    easy.set(CURLOPT_DISALLOW_USERNAME_IN_URL, 1L);
}

void setLimits(EasyHandle& easy, const Request& request, StallWatch* watch) {
    easy.set(CURLOPT_TIMEOUT_MS, static_cast<long>(request.exchangeTimeoutMs()));
    easy.set(CURLOPT_CONNECTTIMEOUT_MS, std::max<long>(request.sendTimeoutMs(), kShortestConnectTimeoutMs));
    // Without a body nothing can stall, and libcurl need not report its progress.
    if (request.sendTimeoutMs() == 0 || request.body().empty()) return;
    easy.set(CURLOPT_PREREQFUNCTION, StallWatch::beginRequest);
    easy.set(CURLOPT_PREREQDATA, watch);
    easy.set(CURLOPT_XFERINFOFUNCTION, StallWatch::progress);
    easy.set(CURLOPT_XFERINFODATA, watch);
    easy.set(CURLOPT_NOPROGRESS, 0L);
}

void setCredentials(EasyHandle& easy, const Request& request) {
    if (!request.hasCredentials()) return;
    // With both kinds allowed the first request goes out whole and bare. With Digest alone it would go out
    // with an empty body, which a device that asks for no log-in would carry out.
    easy.set(CURLOPT_HTTPAUTH, static_cast<long>(CURLAUTH_DIGEST | CURLAUTH_BASIC));
    easy.set(CURLOPT_USERNAME, request.user().c_str());
    easy.set(CURLOPT_PASSWORD, request.password().c_str());
}

void setMessage(EasyHandle& easy, const Request& request, const Method& method) {
    for (const std::string& line : request.headers())
        easy.addHeader(line.c_str());
    if (method.alwaysFramed || !request.body().empty()) {
        easy.set(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(request.body().size()));
        easy.set(CURLOPT_POSTFIELDS, request.body().c_str());
        easy.addHeader("Expect:");
        if (!request.hasContentType()) easy.addHeader("Content-Type:");
    }
    easy.set(CURLOPT_CUSTOMREQUEST, method.name);
}

void setReceiver(EasyHandle& easy, Receiver* receiver, HeaderWatch* headers) {
    easy.set(CURLOPT_HEADERFUNCTION, HeaderWatch::header);
    easy.set(CURLOPT_HEADERDATA, headers);
    easy.set(CURLOPT_WRITEFUNCTION, Receiver::receive);
    easy.set(CURLOPT_WRITEDATA, receiver);
}

/* Whether an answer arrived, whatever it says: whole, stopped at the capacity, or a 401 to the last
 * repetition. */
bool answered(CURLcode code, const Receiver& receiver, const HeaderWatch& headers) {
    const bool arrived = code == CURLE_OK || receiver.cut() || code == CURLE_TOO_MANY_REDIRECTS;
    return (arrived && headers.ended()) || headers.downgraded();
}

bool valid(const NET_HTTPCLIENT_EXCHANGE& in, const NET_HTTPCLIENT_EXCHANGE* out) {
    return in.url != nullptr && (in.buffer != nullptr || in.bufferSize == 0) && out != nullptr &&
           !hasControlCharacters({in.url, in.urlLength});
}

}  // namespace

int exchange(const Request& request, const NET_HTTPCLIENT_EXCHANGE& in, NET_HTTPCLIENT_EXCHANGE* out) {
    if (!valid(in, out)) return failWithZero(NET_UTILS_ERROR_PARAMETER);
    if (in.method >= std::size(kMethods)) return failWithZero(NET_UTILS_ERROR_METHOD);

    const std::string url(in.url, in.urlLength);
    Receiver receiver(in.buffer, in.bufferSize);
    StallWatch watch(request.sendTimeoutMs());
    HeaderWatch headers(&watch);
    EasyHandle easy;
    setProtocol(easy);
    easy.set(CURLOPT_URL, url.c_str());
    setMessage(easy, request, kMethods[in.method]);
    setCredentials(easy, request);
    setLimits(easy, request, &watch);
    setReceiver(easy, &receiver, &headers);

    const CURLcode code = easy.perform();
    // libcurl is content with an answer that was cut off in its head, and with "HTTP/200", which has no status.
    const auto status = static_cast<uint32_t>(easy.status());
    if (!answered(code, receiver, headers)) return failWithZero(code == CURLE_OK ? CURLE_PARTIAL_FILE : code);
    if (status == 0) return failWithZero(CURLE_WEIRD_SERVER_REPLY);
    out->httpStatus = status;
    out->bufferSize = receiver.length();
    return 1;
}

}  // namespace netutils
