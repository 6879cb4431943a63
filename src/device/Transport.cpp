// Requests to the device: one fresh client and one exchange each.

#include <netutils/netutils.h>
#include <xlog/xlog.h>

#include <algorithm>
#include <cstring>
#include <iterator>
#include <utility>

#include "device/AnswerBuffer.h"
#include "device/CVeltaDevice.h"

namespace {

constexpr const char* kRebootPath = "/VELTA/System/reboot";
constexpr const char* kBoundary = "--boundary";

struct Header {
    const char* name;
    const char* value;
};
// JSON bodies too go out under the XML content type; devices look at the query of the URL instead.
constexpr Header kOrdinaryHeaders[] = {
    {"Connection", "keep-alive"},
    {"Cache-Control", "no-cache"},
    {"Accept", "application/xml"},
    {"Content-Type", "application/xml;charset=UTF-8"},
};
constexpr Header kRebootHeaders[] = {
    {"Connection", "keep-alive"},
    {"Content-Length", "0"},
    {"Accept", "*/*"},
};
constexpr Header kFormHeaders[] = {
    {"Content-Type", "multipart/form-data; boundary=--boundary"},
    {"Connection", "keep-alive"},
    {"Cache-Control", "no-cache"},
    {"Accept", "application/xml"},
};

struct TimeOuts {
    int32_t exchangeMs;
    int32_t sendMs;
};
constexpr TimeOuts kOrdinaryTimeOuts{15000, 200};
constexpr TimeOuts kFormTimeOuts{10000, 5000};

// A client of the HTTP library.
class Client {
 public:
    Client() : handle_(NET_HTTPCLIENT_Create()) {}
    ~Client() {
        if (isValid()) NET_HTTPCLIENT_Destroy(handle_);
    }
    Client(const Client&) = delete;
    Client& operator=(const Client&) = delete;

    bool isValid() const { return handle_ >= 0; }

    template <size_t N>
    void setHeaders(const Header (&headers)[N]) {
        for (const Header& header : headers) {
            set(NET_HTTPCLIENT_PARAM_HEADER, header.name, std::strlen(header.name) + 1, header.value,
                std::strlen(header.value) + 1);
        }
    }
    void setBody(const std::string& body) {
        set(NET_HTTPCLIENT_PARAM_BODY, nullptr, 0, body.data(), body.size());
    }
    void setCredentials(const velta::Connection& device) {
        set(NET_HTTPCLIENT_PARAM_CREDENTIALS, device.user.data(), device.user.size(), device.password.data(),
            device.password.size());
    }
    void setTimeOuts(const TimeOuts& timeOuts) {
        set(NET_HTTPCLIENT_PARAM_EXCHANGE_TIMEOUT, nullptr, 0, &timeOuts.exchangeMs,
            sizeof timeOuts.exchangeMs);
        set(NET_HTTPCLIENT_PARAM_SEND_TIMEOUT, nullptr, 0, &timeOuts.sendMs, sizeof timeOuts.sendMs);
    }
    void setExtra(const std::string& extra) {
        if (!extra.empty()) set(NET_HTTPCLIENT_PARAM_EXTRA, nullptr, 0, extra.data(), extra.size());
    }

    int32_t exchange(const std::string& url, unsigned char method, std::string& response);

 private:
    void set(int code, const void* name, size_t nameLength, const void* value, size_t valueLength) {
        NET_HTTPCLIENT_SetParam(handle_, code, name, static_cast<uint32_t>(nameLength), value,
                                static_cast<uint32_t>(valueLength));
    }

    NET_HTTPCLIENT_HANDLE handle_;
};

int32_t Client::exchange(const std::string& url, unsigned char method, std::string& response) {
    velta::AnswerBuffer buffer;
    if (buffer.data() == nullptr) {
        xlog_format(XLOG_ERROR, "VELTADEV", "[%s(%d)] create pDataBuffer fail, url - %s", __func__, __LINE__,
                    url.c_str());
        return static_cast<int32_t>(VELTA_E_OUT_OF_MEMORY);
    }
    NET_HTTPCLIENT_EXCHANGE record{};
    record.url = url.data();
    record.urlLength = url.size();
    record.buffer = buffer.data();
    record.bufferSize = velta::AnswerBuffer::kCapacity;
    record.method = method;
    if (NET_HTTPCLIENT_ShortLinkExchange(handle_, &record, &record) == 0) {
        xlog_format(XLOG_ERROR, "VELTADEV", "[%s(%d)] NET_HTTPCLIENT_ShortLinkExchange fail - %d, url - %s",
                    __func__, __LINE__, NET_UTILS_GetLastError(), url.c_str());
        return CVeltaDevice::kTransportFailure;
    }
    buffer.setLength(record.bufferSize);
    const size_t length = strnlen(buffer.data(), record.bufferSize);
    if (record.httpStatus == 200) {
        if (record.bufferSize > 0) {
            response.assign(buffer.data(), length);
            response.push_back(
                '\0');  // callers are used to a text that is one character longer than the body
        }
        return 0;
    }
    response.assign(buffer.data(), length);
    if (response.starts_with('<') ||
        response.starts_with('{')) {  // a document that says why; nothing else is logged
        xlog_format(XLOG_ERROR, "VELTADEV", "[%s(%d)] %.500s", __func__, __LINE__, response.c_str());
    }
    xlog_format(XLOG_ERROR, "VELTADEV", "[%s(%d)] stShortExchange.dwHttpState - %u, url - %s", __func__,
                __LINE__, record.httpStatus, url.c_str());
    return record.httpStatus == 401 ? CVeltaDevice::kHttpUnauthorised : CVeltaDevice::kTransportFailure;
}

int32_t reportNoClient(const std::string& url) {
    xlog_format(XLOG_ERROR, "VELTADEV", "[%s(%d)] NET_HTTPCLIENT_Create fail - %d, url - %s", __func__,
                __LINE__, NET_UTILS_GetLastError(), url.c_str());
    return CVeltaDevice::kTransportFailure;
}

// The part header announces the length of the JSON as it was given, although its line feeds are left out. The
// picture, which may be large, becomes the form: there is never a third copy of it.
std::string faceRecordForm(const std::string& json, std::string image) {
    const std::string delimiter = std::string("--") + kBoundary;
    std::string head = delimiter + "\r\nContent-Disposition: form-data; name=\"FaceDataRecord\";\r\n";
    head += "Content-Type: application/json\r\nContent-Length: " + std::to_string(json.size()) + "\r\n\r\n";
    std::remove_copy(json.begin(), json.end(), std::back_inserter(head), '\n');
    head += "\r\n" + delimiter + "\r\nContent-Disposition: form-data; name=\"FaceImage\";\r\n";
    head += "Content-Type: image/jpeg\r\nContent-Length: " + std::to_string(image.size()) + "\r\n\r\n";
    const std::string tail = "\r\n" + delimiter + "--\r\n";
    image.reserve(head.size() + image.size() + tail.size());
    image.insert(0, head);
    image += tail;
    return image;
}

}  // namespace

int32_t CVeltaDevice::sendHttpReqToDevice(std::string& response, const std::string& path,
                                          const std::string& body, unsigned char method,
                                          const std::string& extra) {
    const velta::Connection device = connection();
    const std::string url = device.url(path);
    Client client;
    if (!client.isValid()) return reportNoClient(url);
    if (path == kRebootPath) {
        client.setHeaders(kRebootHeaders);
    } else {
        client.setHeaders(kOrdinaryHeaders);
        client.setBody(body);
    }
    client.setCredentials(device);
    client.setTimeOuts(kOrdinaryTimeOuts);
    client.setExtra(extra);
    return client.exchange(url, method, response);
}

int32_t CVeltaDevice::sendHttpReqToDevicebyForm(std::string& response, const std::string& path,
                                                const std::string& json, std::string image,
                                                unsigned char method) {
    const velta::Connection device = connection();
    const std::string url = device.url(path);
    Client client;
    if (!client.isValid()) return reportNoClient(url);
    client.setHeaders(kFormHeaders);
    client.setBody(faceRecordForm(json, std::move(image)));
    client.setCredentials(device);
    client.setTimeOuts(kFormTimeOuts);
    return client.exchange(url, method, response);
}
