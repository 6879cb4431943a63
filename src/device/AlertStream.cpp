// The device's alert stream: a request that never ends, read on a thread of its own.

#include <curl/curl.h>
#include <xlog/xlog.h>

#include <exception>
#include <memory>
#include <string_view>

#include "device/CVeltaDevice.h"

namespace {

constexpr long kMostRepetitions = 10;  // redirects and log-ins: a device must not send the thread in circles
// The library keeps every header line, also those behind the last chunk, of which it takes any number.
constexpr size_t kMostHeaderBytes = size_t{256} * 1024;
constexpr const char* kAlertStreamPath = "/VELTA/Event/notification/alertStream";
constexpr std::string_view kHeartbeat = "videoloss";
constexpr std::string_view kStreamsExhausted = "deployExceedMax";
constexpr long kHttpOk = 200;

}  // namespace

int CVeltaDevice::getAlertStreamThread(void* session) {
    CVeltaDevice& device = *static_cast<CVeltaDevice*>(session);
    try {
        device.getAlertStream();
    } catch (const std::exception& error) {
        xlog_format(XLOG_ERROR, "VELTADEV", "[%s(%d)] %s", __func__, __LINE__, error.what());
    }
    device.streamThreadExited_ = true;
    return 0;
}

void CVeltaDevice::getAlertStream() {
    const std::unique_ptr<CURL, decltype(&curl_easy_cleanup)> transfer(curl_easy_init(), curl_easy_cleanup);
    if (transfer == nullptr) {
        xlog_format(XLOG_ERROR, "VELTADEV", "[%s(%d)] curl init error", __func__, __LINE__);
        return;
    }
    const velta::Connection device = connection();
    const std::string url = device.url(kAlertStreamPath);
    CURL* const handle = transfer.get();
    streamHandle_ = handle;
    streamHeaderBytes_ = 0;
    curl_easy_setopt(handle, CURLOPT_URL, url.c_str());
    curl_easy_setopt(handle, CURLOPT_HEADER, 1L);  // the boundary stands in the response headers
    curl_easy_setopt(handle, CURLOPT_USERNAME, device.user.c_str());
    curl_easy_setopt(handle, CURLOPT_PASSWORD, device.password.c_str());
    curl_easy_setopt(handle, CURLOPT_HTTPAUTH, CURLAUTH_DIGEST);
    curl_easy_setopt(handle, CURLOPT_WRITEFUNCTION, writeResponseBody);
    curl_easy_setopt(handle, CURLOPT_WRITEDATA, this);
    curl_easy_setopt(handle, CURLOPT_HEADERFUNCTION, endOfHeaders);
    curl_easy_setopt(handle, CURLOPT_HEADERDATA, this);
    curl_easy_setopt(handle, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(handle, CURLOPT_CONNECTTIMEOUT, 10L);
    curl_easy_setopt(handle, CURLOPT_TIMEOUT, 0L);  // and no low-speed limit: a quiet stream is a good stream
    curl_easy_setopt(handle, CURLOPT_FOLLOWLOCATION, 1L);
    curl_easy_setopt(handle, CURLOPT_TCP_KEEPALIVE, 1L);
    curl_easy_setopt(handle, CURLOPT_TCP_KEEPIDLE, 120L);
    curl_easy_setopt(handle, CURLOPT_TCP_KEEPINTVL, 20L);
    curl_easy_setopt(handle, CURLOPT_PROTOCOLS_STR, "http");
    curl_easy_setopt(handle, CURLOPT_REDIR_PROTOCOLS_STR, "http");
    curl_easy_setopt(handle, CURLOPT_MAXREDIRS, kMostRepetitions);
    curl_easy_setopt(handle, CURLOPT_PROXY,
                     "");  // configuration comes from the host, not from the environment
    curl_easy_setopt(handle, CURLOPT_QUICK_EXIT, 1L);  // disarming does not wait for a name server
    streamSockets_.attach(handle);

    const CURLcode ended = curl_easy_perform(handle);
    xlog_format(XLOG_INFO, "VELTADEV", "[%s(%d)] curl perform end [%d] [%s]", __func__, __LINE__, ended,
                curl_easy_strerror(ended));
    streamHandle_ = nullptr;
}

// Any result other than the number of bytes makes the library end the transfer.
size_t CVeltaDevice::writeResponseBody(char* data, size_t size, size_t count, void* session) {
    if (session == nullptr || data == nullptr || size * count == 0) {
        xlog_format(XLOG_ERROR, "VELTADEV", "[%s(%d)] param error [%zu, %zu]", __func__, __LINE__, size,
                    count);
        return static_cast<size_t>(-1);
    }
    CVeltaDevice& device = *static_cast<CVeltaDevice*>(session);
    if (device.streamSockets_.stopped()) return static_cast<size_t>(-1);
    const std::string_view chunk(data, size * count);
    try {
        // The whole chunk goes, even if it carries more than that.
        if (chunk.find(kHeartbeat) != std::string_view::npos) {
            xlog_format(XLOG_DEBUG, "VELTADEV", "[%s(%d)] recv heartbeat [%zu bytes]", __func__, __LINE__,
                        chunk.size());
        } else if (chunk.find(kStreamsExhausted) != std::string_view::npos) {
            xlog_format(XLOG_ERROR, "VELTADEV", "[%s(%d)] recv deployExceedMax [%zu bytes]", __func__,
                        __LINE__, chunk.size());
        } else {
            device.streamParser_.feed(chunk);
        }
    } catch (const std::exception& error) {
        xlog_format(XLOG_ERROR, "VELTADEV", "[%s(%d)] %s", __func__, __LINE__, error.what());
        return static_cast<size_t>(-1);
    }
    return count;
}

// Sees each header line after writeResponseBody. What an answer other than the stream itself has left in the
// parser (a refused log-in, a redirect) would be taken for parts of the stream.
size_t CVeltaDevice::endOfHeaders(char* data, size_t size, size_t count, void* session) {
    const std::string_view line(data, size * count);
    CVeltaDevice& device = *static_cast<CVeltaDevice*>(session);
    device.streamHeaderBytes_ += line.size();
    if (device.streamHeaderBytes_ > kMostHeaderBytes) return 0;
    long status = 0;
    if (line == "\r\n" &&
        curl_easy_getinfo(device.streamHandle_, CURLINFO_RESPONSE_CODE, &status) == CURLE_OK &&
        status != kHttpOk) {
        device.streamParser_.clear();
    }
    return size * count;
}
