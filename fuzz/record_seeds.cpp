// Writes inputs to start from: what a simulated device answers to requests as hosts make them, and what it sends on
// its alert stream. The exchanges are those of the real HTTP client library, taken down on their way back.
//
// usage: record_seeds FOLDER

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netutils/netutils.h>
#include <sys/socket.h>
#include <unistd.h>
#include <veltasim/device.h>
#include <xlog/xlog.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <stdexcept>

#include "device/CVeltaDevice.h"
#include "gateway/JsonText.h"
#include "manager/CVeltaDevMgr.h"
#include "routes.h"
#include "support.h"

using namespace std::chrono_literals;

namespace {

constexpr uint8_t kXmlReaders = 19;
constexpr size_t kPictureSize = 600;  // short enough to be worked on

std::filesystem::path folder;
int written = 0;
std::string answersTaken;  // as the parts of an input

void write(const char* target, const std::string& input) {
    std::filesystem::create_directories(folder / target);
    std::ofstream(folder / target / ("seed" + std::to_string(++written)), std::ios::binary) << input;
}

char letterOf(uint32_t httpStatus) {
    return httpStatus == 200 ? '2' : httpStatus == 401 ? '4' : '5';
}

/* A document once for each reader: which of them it concerns shows when the inputs are minimised. */
void writeXml(const std::string& document) {
    for (uint8_t reader = 0; reader < kXmlReaders; ++reader)
        write("xml", std::string(1, static_cast<char>(reader)) + document);
}

void connect(CVeltaDevice& session, const veltasim::Device& device, const char* password) {
    std::string url =
        "Connect=TCP/IP;Target=127.0.0.1;Port=" + std::to_string(device.port()) + ";DevIndex=1;";
    std::string user = device.options().user;
    std::string secret = password;
    session.Connect_V2(url.data(), user.data(), secret.data());
}

std::string envelope(const char* method, const std::string& uri, const std::string& body) {
    Json::Value request;
    request["method"] = method;
    request["uri"] = uri;
    request["body"] = body;
    return velta::writeJson(request);
}

/* What a request of a host becomes, as an input of the gateway. */
void recordEnvelope(CVeltaDevice& session, const char* method, const std::string& uri, const char* body) {
    std::string request = envelope(method, uri, body);
    std::string response(65536, ' ');
    answersTaken.clear();
    session.VELTA_Getway(request.data(), response.data(), static_cast<unsigned>(response.size()), nullptr);
    write("host_request", std::string(1, '\0') + request + answersTaken);
}

void recordRoutes(const veltasim::Device& device) {
    CVeltaDevice session;
    connect(session, device, "velta-sim-1");
    session.veltaStatusCheck();
    std::string text(65536, ' ');
    session.DeviceLoop(text.data(), static_cast<unsigned>(text.size()));
    recordEnvelope(session, "GET", "/VELTA/System/deviceInfo?devIndex=1", "");
    recordEnvelope(session, "PUT", "/VELTA/System/deviceInfo?devIndex=1",
                   "<DeviceInfo><deviceName>East</deviceName></DeviceInfo>");
    recordEnvelope(session, "PUT", "/VELTA/System/IO/outputs/1/trigger?devIndex=1",
                   R"({"IOPortData":{"outputState":"high"}})");
    recordEnvelope(session, "DELETE", "/VELTA/Some/Thing?a=1&devIndex=1&format=json", "{}");
    for (size_t position = 0; position < std::size(fuzz::kRoutes); ++position) {
        const fuzz::Route& route = fuzz::kRoutes[position];
        answersTaken.clear();
        velta::HostRequest request{route.method, std::string(route.path) + "?format=json", {}};
        request.body.text = route.body;
        std::string answer;
        session.DealwithCommOpt(request, answer);
        write("translator", std::string(1, static_cast<char>(position)) + "1" + route.body + answersTaken);
        write("host_request",
              std::string(1, '\0') + envelope(route.method, request.uri, route.body) + answersTaken);
    }
}

void recordRefusals(veltasim::Device& device) {
    CVeltaDevice session;
    connect(session, device, "wrong");
    session.veltaStatusCheck();
    device.lockUser(1h);
    session.veltaStatusCheck();
    device.unlockUser();
}

/* A request over a connection of its own, and what comes back until the device ends or says enough. */
std::string rawAnswer(const veltasim::Device& device, const std::string& path,
                      const std::function<void()>& whenConnected = nullptr) {
    const int connection = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(device.port());
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (connect(connection, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
        throw std::runtime_error("no connection to the simulated device");
    const std::string request = "GET " + path + " HTTP/1.1\r\nHost: device\r\nConnection: close\r\n\r\n";
    send(connection, request.data(), request.size(), MSG_NOSIGNAL);
    if (whenConnected) whenConnected();
    std::string answer;
    char bytes[4096];
    for (ssize_t count = 0; (count = recv(connection, bytes, sizeof bytes, 0)) > 0;)
        answer.append(bytes, static_cast<size_t>(count));
    close(connection);
    return answer;
}

std::string streamOf(veltasim::Device& device, const std::function<void()>& events) {
    return rawAnswer(device, "/VELTA/Event/notification/alertStream", [&] {
        device.waitForStreams(1, 10s);
        events();
        device.endStreams(veltasim::Device::StreamEnd::AfterQueue);
    });
}

void recordStreams(veltasim::Device& device) {
    const std::string picture(veltasim::picture(veltasim::PictureSize::Small).substr(0, kPictureSize));
    const std::function<void()> stories[] = {
        [&] { device.sendAccessEvent(); },
        [&] { device.sendAccessEvent({.picture = picture}); },
        [&] { device.sendAlarm(); },
        [&] { device.sendAlarm({.eventState = "inactive", .picture = picture}); },
        [&] { device.sendHeartbeat(); },
        [&] {
            device.sendAccessEvent();
            device.sendAlarm();
            device.sendAccessEvent({.picture = picture});
            device.sendAccessEvent();
        },
    };
    for (const auto& story : stories) {
        const std::string stream = streamOf(device, story);
        const char kWays[][3] = {"\x00\xff", "\x00\x1f",
                                 "\x01\x02"};  // one chunk a message, 32 bytes, 3 and 1
        for (const auto& way : kWays)
            write("alert_stream", std::string(way, 2) + stream);
        write("http_client", std::string(1, '\x04') + '0' + stream);
        velta::AlertStreamParser parser([](const std::string& message) { write("alarm_message", message); });
        for (size_t at = 0; at < stream.size();) {
            const size_t end = std::min(stream.find('\n', at), stream.size() - 1) + 1;
            parser.feed(std::string_view(stream).substr(at, end - at));
            at = end;
        }
    }
}

void recordRawAnswers(const veltasim::Device& open, const veltasim::Device& guarded) {
    for (const char* path : {"/VELTA/System/time", "/VELTA/System/deviceInfo", "/VELTA/nothing"}) {
        for (char method = 0; method <= 4; ++method) {
            const std::string start = std::string(1, method) + '\0';
            write("http_client", start + rawAnswer(open, path));
            write("http_client", start + rawAnswer(guarded, path) + fuzz::kSeparator + rawAnswer(open, path));
        }
    }
    write("http_client", std::string(2, '\0') +
                             "HTTP/1.1 100 Continue\r\n\r\nHTTP/1.1 200 OK\r\n"
                             "Transfer-Encoding: chunked\r\n\r\n3\r\nabc\r\n0\r\n\r\n");
}

void recordUrls() {
    const char* const kUrls[] = {
        "Connect=TCP/IP;Target=10.0.0.5;Port=8080;ResType=door;DevIndex=7;DeviceName=East gate;",
        "Connect=TCP/IP;Target=door.example;Port=12abc;DevIndex=7;Target=b;x;Unknown=1",
        "Port=80;\nx;Connect=TCP/IP;Target=a;b;",
    };
    for (const char* const url : kUrls)
        write("connection_url", std::string(url) + fuzz::kSeparator + "admin" + fuzz::kSeparator + "secret");
}

void recordCommands() {
    write("plugin_config", std::string("SetEventSub") + fuzz::kSeparator + "1");
    write("plugin_config",
          std::string("NetZoneTableNotify") + fuzz::kSeparator +
              R"({"accessNetInfos":[{"protocolType":"VELTA","accessIp":"10.0.0.1","id":3}]})");
}

void record() {
    veltasim::Device device({.maxFailedLogins = 0, .heartbeat = 0ms});
    veltasim::Device open(
        {.inventory = {.proxyChannels = 1}, .auth = veltasim::AuthScheme::None, .heartbeat = 0ms});
    device.start();
    open.start();
    recordRefusals(device);
    recordStreams(open);
    recordRawAnswers(open, device);
    recordUrls();
    recordCommands();
    recordRoutes(device);  // restarts the device at the end
}

}  // namespace

// NOLINTBEGIN(bugprone-reserved-identifier): the linker knows both by these names
extern "C" {
int __real_NET_HTTPCLIENT_ShortLinkExchange(NET_HTTPCLIENT_HANDLE client, const NET_HTTPCLIENT_EXCHANGE* in,
                                            NET_HTTPCLIENT_EXCHANGE* out);

// The linker puts this in the place of the library's function.
int __wrap_NET_HTTPCLIENT_ShortLinkExchange(NET_HTTPCLIENT_HANDLE client, const NET_HTTPCLIENT_EXCHANGE* in,
                                            NET_HTTPCLIENT_EXCHANGE* out) {
    if (__real_NET_HTTPCLIENT_ShortLinkExchange(client, in, out) == 0) return 0;
    const std::string body(in->buffer, out->bufferSize);
    answersTaken += fuzz::kSeparator;
    answersTaken += letterOf(out->httpStatus) + body;
    if (body.starts_with('<')) writeXml(body);
    return 1;
}
}
// NOLINTEND(bugprone-reserved-identifier)

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s FOLDER\n", argv[0]);
        return 2;
    }
    try {
        folder = argv[1];
        xlog_set_level(XLOG_OFF);
        record();
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    return 0;
}
