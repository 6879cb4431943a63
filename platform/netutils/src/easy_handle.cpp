#include "easy_handle.h"

namespace netutils {

/* As many headers as an ordinary request has, libcurl's own that it takes away included. */
constexpr size_t kUsualHeaders = 8;

EasyHandle::EasyHandle()
    : easy_(curl_easy_init(), curl_easy_cleanup), code_(easy_ ? CURLE_OK : CURLE_OUT_OF_MEMORY) {
    headers_.reserve(kUsualHeaders);
}

CURLcode EasyHandle::perform() noexcept {
    for (size_t i = 1; i < headers_.size(); ++i)
        headers_[i - 1].next = &headers_[i];
    set(CURLOPT_HTTPHEADER, headers_.empty() ? nullptr : headers_.data());
    if (code_ == CURLE_OK) code_ = curl_easy_perform(easy_.get());
    return code_;
}

long EasyHandle::status() const noexcept {
    long status = 0;
    curl_easy_getinfo(easy_.get(), CURLINFO_RESPONSE_CODE, &status);
    return status;
}

}  // namespace netutils
