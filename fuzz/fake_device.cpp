#include "fake_device.h"

#include <netutils/netutils.h>

#include <algorithm>
#include <cstring>
#include <string_view>

namespace {

std::vector<fuzz::DeviceAnswer> script;
size_t served = 0;

/* Keeps what it is given, as the real client does: every byte is read, and a client that is not given back is a
 * leak. */
struct Client {
    std::vector<std::string> texts;
};

Client* clientOf(NET_HTTPCLIENT_HANDLE handle) {
    // NOLINTNEXTLINE(performance-no-int-to-ptr): handles are integers by contract
    return reinterpret_cast<Client*>(handle);
}

uint32_t statusOf(uint8_t letter) {
    switch (letter) {
        case '2':
            return 200;
        case '4':
            return 401;
        case '5':
            return 503;
        default:
            return 0;
    }
}

}  // namespace

namespace fuzz {

std::vector<DeviceAnswer> answersIn(Input& input) {
    std::vector<DeviceAnswer> answers;
    while (!input.atEnd()) {
        const uint32_t status = statusOf(input.byte());
        answers.push_back({status, input.part()});
    }
    return answers;
}

void setAnswers(std::vector<DeviceAnswer> answers) {
    script = std::move(answers);
    served = 0;
}

size_t exchanges() {
    return served;
}

void connect(CVeltaDevice& device, const std::string& items) {
    // Nothing listens there: what goes round the HTTP client library ends at once.
    std::string url = "Connect=TCP/IP;Target=127.0.0.1;Port=1;DevIndex=1;" + items;
    std::string user = "admin";
    std::string password = "velta-sim-1";
    device.Connect_V2(url.data(), user.data(), password.data());
}

void goOnline(CVeltaDevice& device) {
    setAnswers({{}});
    device.veltaStatusCheck();
}

}  // namespace fuzz

NET_HTTPCLIENT_HANDLE NET_HTTPCLIENT_Create(void) {
    return reinterpret_cast<NET_HTTPCLIENT_HANDLE>(new Client);
}

int NET_HTTPCLIENT_SetParam(NET_HTTPCLIENT_HANDLE client, int, const void* name, uint32_t nameLength,
                            const void* value, uint32_t valueLength) {
    std::vector<std::string>& texts = clientOf(client)->texts;
    if (nameLength > 0) texts.emplace_back(static_cast<const char*>(name), nameLength);
    if (valueLength > 0) texts.emplace_back(static_cast<const char*>(value), valueLength);
    return NET_UTILS_OK;
}

int NET_HTTPCLIENT_ShortLinkExchange(NET_HTTPCLIENT_HANDLE client, const NET_HTTPCLIENT_EXCHANGE* in,
                                     NET_HTTPCLIENT_EXCHANGE* out) {
    clientOf(client)->texts.emplace_back(in->url, in->urlLength);
    fuzz::require(in->url != nullptr && std::string_view(in->url, in->urlLength).starts_with("http://"),
                  "a request has a URL");
    fuzz::require(in->method <= NET_HTTPCLIENT_METHOD_DELETE, "a request has a method");
    const size_t position = served++;
    if (script.empty()) return 0;
    const fuzz::DeviceAnswer& answer = script[std::min(position, script.size() - 1)];
    if (answer.httpStatus == 0) return 0;
    const size_t length = std::min<size_t>(answer.body.size(), in->bufferSize);
    if (length > 0) std::memcpy(in->buffer, answer.body.data(), length);
    out->bufferSize = static_cast<uint32_t>(length);
    out->httpStatus = answer.httpStatus;
    return 1;
}

void NET_HTTPCLIENT_Destroy(NET_HTTPCLIENT_HANDLE client) {
    delete clientOf(client);
}

int NET_UTILS_GetLastError(void) {
    return NET_UTILS_ERROR_PARAMETER;
}
