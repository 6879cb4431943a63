#include "device/StreamSockets.h"

#include <sys/socket.h>
#include <unistd.h>

#include <vector>

namespace velta {

void StreamSockets::reset() {
    stopped_ = false;
}

void StreamSockets::stop() {
    stopped_ = true;
    const XPR_Guard guard(mutex_);
    for (const curl_socket_t socket : sockets_)
        shutdown(socket, SHUT_RDWR);
}

void StreamSockets::attach(CURL* transfer) {
    curl_easy_setopt(transfer, CURLOPT_OPENSOCKETFUNCTION, open);
    curl_easy_setopt(transfer, CURLOPT_OPENSOCKETDATA, this);
    curl_easy_setopt(transfer, CURLOPT_CLOSESOCKETFUNCTION, close);
    curl_easy_setopt(transfer, CURLOPT_CLOSESOCKETDATA, this);
    curl_easy_setopt(transfer, CURLOPT_XFERINFOFUNCTION, progress);
    curl_easy_setopt(transfer, CURLOPT_XFERINFODATA, this);
    curl_easy_setopt(transfer, CURLOPT_NOPROGRESS, 0L);
}

curl_socket_t StreamSockets::open(void* self, curlsocktype, curl_sockaddr* address) {
    StreamSockets& sockets = *static_cast<StreamSockets*>(self);
    const XPR_Guard guard(sockets.mutex_);
    if (sockets.stopped_) return CURL_SOCKET_BAD;
    const curl_socket_t opened = socket(address->family, address->socktype | SOCK_CLOEXEC, address->protocol);
    if (opened == CURL_SOCKET_BAD) return CURL_SOCKET_BAD;
    try {
        sockets.sockets_.push_back(opened);
    } catch (...) {  // a socket that stop() does not know could not be woken
        ::close(opened);
        return CURL_SOCKET_BAD;
    }
    return opened;
}

int StreamSockets::close(void* self, curl_socket_t socket) {
    StreamSockets& sockets = *static_cast<StreamSockets*>(self);
    const XPR_Guard guard(sockets.mutex_);
    std::erase(sockets.sockets_, socket);
    return ::close(socket);
}

int StreamSockets::progress(void* self, curl_off_t, curl_off_t, curl_off_t, curl_off_t) {
    return static_cast<StreamSockets*>(self)->stopped_ ? 1 : 0;
}

}  // namespace velta
