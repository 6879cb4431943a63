#ifndef VELTA_DEVICE_STREAMSOCKETS_H
#define VELTA_DEVICE_STREAMSOCKETS_H

#include <curl/curl.h>
#include <xpr/mutex.h>

#include <atomic>
#include <vector>

namespace velta {

/* Ends a transfer from another thread without touching the transfer's handle: the sockets of the transfer are
 * opened and closed here, so that stop() can shut them down, which wakes the transfer wherever it waits. */
class StreamSockets {
 public:
    /* Before a transfer starts. */
    void reset();

    /* Makes the transfer end at once: its sockets are shut down, no new one is opened. Any thread. */
    void stop();

    bool stopped() const { return stopped_; }

    /* Makes a transfer open and close its sockets here, and end when it is asked whether it shall go on. */
    void attach(CURL* transfer);

 private:
    static curl_socket_t open(void* self, curlsocktype purpose, struct curl_sockaddr* address);
    static int close(void* self, curl_socket_t socket);
    static int progress(void* self, curl_off_t, curl_off_t, curl_off_t, curl_off_t);

    std::atomic<bool> stopped_{false};
    xpr::xpr_mutex mutex_;
    std::vector<curl_socket_t> sockets_ XPR_GUARDED_BY(mutex_);
};

}  // namespace velta

#endif
