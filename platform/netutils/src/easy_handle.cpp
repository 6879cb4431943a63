#include "easy_handle.h"

namespace netutils {

EasyHandle::EasyHandle() noexcept
    : easy_(curl_easy_init(), curl_easy_cleanup),
      headers_(nullptr, curl_slist_free_all),
      code_(easy_ ? CURLE_OK : CURLE_OUT_OF_MEMORY) {}

void EasyHandle::addHeader(const char* line) noexcept {
    curl_slist* longer = curl_slist_append(headers_.get(), line);
    if (longer == nullptr) {
        code_ = CURLE_OUT_OF_MEMORY;
        return;
    }
    (void)headers_.release();  // it is now part of the longer list
    headers_.reset(longer);
}

CURLcode EasyHandle::perform() noexcept {
    set(CURLOPT_HTTPHEADER, headers_.get());
    if (code_ == CURLE_OK) code_ = curl_easy_perform(easy_.get());
    return code_;
}

long EasyHandle::status() const noexcept {
    long status = 0;
    curl_easy_getinfo(easy_.get(), CURLINFO_RESPONSE_CODE, &status);
    return status;
}

}  // namespace netutils
