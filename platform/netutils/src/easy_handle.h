/* A libcurl easy handle with what it needs around it. */
#ifndef NETUTILS_EASY_HANDLE_H
#define NETUTILS_EASY_HANDLE_H

#include <curl/curl.h>

#include <memory>
#include <vector>

namespace netutils {

/* Holds libcurl's counted initialisation, so that it outlives the host's and the plug-in's own clean-up for
 * as long as a client is there. */
class LibraryInUse {
 public:
    LibraryInUse() noexcept : code_(curl_global_init(CURL_GLOBAL_DEFAULT)) {}
    ~LibraryInUse() {
        if (code_ == CURLE_OK) curl_global_cleanup();
    }
    LibraryInUse(const LibraryInUse&) = delete;
    LibraryInUse& operator=(const LibraryInUse&) = delete;

    CURLcode code() const { return code_; }

 private:
    CURLcode code_;
};

class EasyHandle {
 public:
    /* May throw std::bad_alloc. */
    EasyHandle();

    /* Once an option is refused or memory runs out, later calls do nothing and perform() returns the reason.
     */
    template <typename Value>
    void set(CURLoption option, Value value) noexcept {
        if (code_ == CURLE_OK) code_ = curl_easy_setopt(easy_.get(), option, value);
    }
    /* In libcurl's form: "Name: value" adds, "Name:" takes away a header of libcurl's own. The line stays the
     * caller's, and must outlive perform(); libcurl only reads it. May throw std::bad_alloc. */
    void addHeader(const char* line) { headers_.push_back({const_cast<char*>(line), nullptr}); }

    CURLcode perform() noexcept;
    long status() const noexcept;

 private:
    std::vector<curl_slist> headers_; /* linked by perform() */
    std::unique_ptr<CURL, decltype(&curl_easy_cleanup)> easy_;
    CURLcode code_;
};

}  // namespace netutils

#endif
