/* What a client was told to send: credentials, headers, body and time limits. */
#ifndef NETUTILS_REQUEST_H
#define NETUTILS_REQUEST_H

#include <stdint.h>

#include <string>
#include <string_view>
#include <vector>

namespace netutils {

/* A text that is wiped from memory when it is replaced or goes. */
class Secret {
 public:
    Secret() = default;
    ~Secret() { wipe(); }
    Secret(const Secret&) = delete;
    Secret& operator=(const Secret&) = delete;

    void set(std::string_view text);
    const char* c_str() const { return text_.c_str(); }

 private:
    void wipe() noexcept;

    std::string text_;
};

class Request {
 public:
    /* As NET_HTTPCLIENT_SetParam; may throw std::bad_alloc. */
    int setParameter(int code, std::string_view name, std::string_view value);

    bool hasCredentials() const { return hasCredentials_; }
    const Secret& user() const { return user_; }
    const Secret& password() const { return password_; }
    const std::string& body() const { return body_; }
    /* In libcurl's form: "Name: value", or "Name;" for an empty value. */
    const std::vector<std::string>& headers() const { return headers_; }
    bool hasContentType() const { return hasContentType_; }
    int32_t sendTimeoutMs() const { return sendTimeoutMs_; }
    int32_t exchangeTimeoutMs() const { return exchangeTimeoutMs_; }

 private:
    int setCredentials(std::string_view user, std::string_view password);
    int addHeader(std::string_view name, std::string_view value);

    bool hasCredentials_ = false;
    bool hasContentType_ = false;
    Secret user_;
    Secret password_;
    std::string body_;
    std::vector<std::string> headers_;
    int32_t sendTimeoutMs_ = 0;
    int32_t exchangeTimeoutMs_ = 0;
};

/* Bytes that would end or forge a line of the request. */
bool hasControlCharacters(std::string_view text);

/* Names of headers and of ways to log in; ASCII only. */
bool equalsIgnoringCase(std::string_view a, std::string_view b);

}  // namespace netutils

#endif
