#include <netutils/netutils.h>

#include <memory>
#include <new>
#include <string_view>

#include "easy_handle.h"
#include "exchange.h"
#include "last_error.h"
#include "request.h"

using netutils::fail;
using netutils::failWithZero;

namespace {

struct Client {
    netutils::LibraryInUse library;
    netutils::Request request;
    bool incomplete = false; /* memory ran out for one of its parameters: half a request is never sent */
};

Client* clientOf(NET_HTTPCLIENT_HANDLE handle) {
    // NOLINTNEXTLINE(performance-no-int-to-ptr): handles are integers by contract
    return handle > 0 ? reinterpret_cast<Client*>(handle) : nullptr;
}

/* Runs body with the client; failed is what the function returns when it cannot. */
template <typename Body>
int guarded(NET_HTTPCLIENT_HANDLE handle, int (*failed)(int error), Body body) noexcept {
    Client* client = clientOf(handle);
    if (client == nullptr) return failed(NET_UTILS_ERROR_PARAMETER);
    try {
        return body(*client);
    } catch (...) {
        client->incomplete = true;
        return failed(NET_UTILS_ERROR_OUT_OF_MEMORY);
    }
}

bool readable(const void* bytes, uint32_t length) {
    return bytes != nullptr || length == 0;
}

}  // namespace

NET_HTTPCLIENT_HANDLE NET_HTTPCLIENT_Create(void) {
    auto client = std::unique_ptr<Client>(new (std::nothrow) Client);
    if (!client) return fail(NET_UTILS_ERROR_OUT_OF_MEMORY);
    if (client->library.code() != CURLE_OK) {
        fail(client->library.code());
        return -1;
    }
    return reinterpret_cast<NET_HTTPCLIENT_HANDLE>(client.release());
}

int NET_HTTPCLIENT_SetParam(NET_HTTPCLIENT_HANDLE client, int code, const void* name, uint32_t nameLength,
                            const void* value, uint32_t valueLength) {
    if (!readable(name, nameLength) || !readable(value, valueLength)) return fail(NET_UTILS_ERROR_PARAMETER);
    const std::string_view nameBytes(static_cast<const char*>(name), nameLength);
    const std::string_view valueBytes(static_cast<const char*>(value), valueLength);
    return guarded(client, fail,
                   [&](Client& c) { return c.request.setParameter(code, nameBytes, valueBytes); });
}

int NET_HTTPCLIENT_ShortLinkExchange(NET_HTTPCLIENT_HANDLE client, const NET_HTTPCLIENT_EXCHANGE* in,
                                     NET_HTTPCLIENT_EXCHANGE* out) {
    if (in == nullptr) return failWithZero(NET_UTILS_ERROR_PARAMETER);
    return guarded(client, failWithZero, [&](Client& c) {
        if (c.incomplete) return failWithZero(NET_UTILS_ERROR_OUT_OF_MEMORY);
        return netutils::exchange(c.request, *in, out);
    });
}

void NET_HTTPCLIENT_Destroy(NET_HTTPCLIENT_HANDLE client) {
    delete clientOf(client);
}
