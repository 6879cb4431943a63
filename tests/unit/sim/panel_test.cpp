#include <veltasim/panel.h>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>

#include "client.h"

using namespace std::chrono_literals;
using namespace velta_test;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

namespace {

constexpr const char* kOwn = "X-Velta-Panel: 1\r\n";

// A connection of a browser, which reads only when it is told to.
class Browser {
 public:
    Browser(const veltasim::PanelServer& panel, const std::string& requestLine,
            const std::string& headers = "", const std::string& body = "",
            const std::string& host = "127.0.0.1") {
        const int small = 65536;
        const timeval deadline{kSoon.count(), 0};
        setsockopt(socket_, SOL_SOCKET, SO_RCVBUF, &small, sizeof small);
        setsockopt(socket_, SOL_SOCKET, SO_RCVTIMEO, &deadline, sizeof deadline);
        sockaddr_in address{AF_INET, htons(panel.port()), {htonl(INADDR_LOOPBACK)}, {}};
        EXPECT_EQ(connect(socket_, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
        const std::string text = requestLine + " HTTP/1.1\r\nHost: " + host + "\r\nConnection: close\r\n" +
                                 headers + "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n" +
                                 body;
        for (size_t sent = 0; sent < text.size();) {
            const ssize_t size = ::send(socket_, text.data() + sent, text.size() - sent, MSG_NOSIGNAL);
            if (size <= 0) break;
            sent += static_cast<size_t>(size);
        }
    }
    ~Browser() { close(socket_); }

    // What came until the text was in it; all until the end of the connection if it never is.
    std::string readUntil(const std::string& text) {
        std::array<char, 65536> bytes{};
        for (size_t from = 0; received_.find(text, from) == std::string::npos;) {
            from = received_.size() - std::min(received_.size(), text.size());
            const ssize_t size = read(socket_, bytes.data(), bytes.size());
            if (size <= 0) return received_ + (size < 0 ? "(no end)" : "");
            received_.append(bytes.data(), static_cast<size_t>(size));
        }
        return received_;
    }
    std::string answer() { return readUntil("(the end)"); }

 private:
    int socket_ = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    std::string received_;
};

class Panel : public DeviceTest {
 protected:
    Panel() : DeviceTest({.maxRecordedAnswer = 1000}), panel({&device}, "127.0.0.1", 0) {}

    std::string order(const std::string& requestLine, const std::string& body) {
        return Browser(panel, requestLine, kOwn, body).answer();
    }

    veltasim::PanelServer panel;
};

TEST_F(Panel, servesItsPageAndRefusesStrangers) {
    for (const char* path : {"/", "/panel.css", "/panel.js", "/page.js", "/picture?name=small"})
        EXPECT_THAT(Browser(panel, std::string("GET ") + path).answer(),
                    AllOf(HasSubstr("200 OK"), HasSubstr("default-src 'none'; script-src 'self'"),
                          HasSubstr("nosniff"), Not(HasSubstr("Access-Control-Allow"))));
    struct Case {
        const char* requestLine;
        std::string headers;
        std::string host;
        const char* status;
    };
    const std::string address = "127.0.0.1:" + std::to_string(panel.port());
    const Case cases[] = {
        {"DELETE /control/faults", kOwn, "127.0.0.1", "200 OK"},
        {"DELETE /control/faults", kOwn + ("Origin: http://" + address + "\r\n"), address, "200 OK"},
        {"DELETE /control/faults", "", "127.0.0.1", "403"},
        {"DELETE /control/faults", kOwn + std::string("Origin: http://elsewhere\r\n"), "127.0.0.1", "403"},
        {"DELETE /control/faults", kOwn + std::string("Origin: null\r\n"), "127.0.0.1", "403"},
        {"GET /control/requests", "", "rebound.example", "403"},
        {"GET /live", "Origin: http://elsewhere\r\n", "localhost", "403"},
        {"POST /", kOwn, "localhost", "405"},
        {"GET /live?device=1", "", "localhost", "404"},
        {"GET /face?employeeNo=1", "", "localhost", "404"},
        {"GET /picture?name=../panel.js", "", "localhost", "404"},
    };
    for (const Case& each : cases)
        EXPECT_THAT(Browser(panel, each.requestLine, each.headers, "", each.host).answer(),
                    testing::StartsWith(std::string("HTTP/1.1 ") + each.status))
            << each.requestLine << ' ' << each.host << ' ' << each.headers;
}

TEST_F(Panel, tellsWhatIsAndWhatBecomes) {
    client.talk("/VELTA/AccessControl/", R"(
POST UserInfo/Record {"UserInfo":{"name":"Zoe Example","employeeNo":"7","Valid":{"enable":true,"beginTime":"2001-01-01T00:00:00","endTime":"2002-01-01T00:00:00"}}} -> 200
POST CardInfo/Record {"CardInfo":{"cardNo":"c7","employeeNo":"7"}} -> 200)");
    device.sendAlarm({.eventType = "before"});
    Browser watcher(panel, "GET /live");
    EXPECT_THAT(
        watcher.readUntil("CardInfo/Record"),
        AllOf(HasSubstr("text/event-stream"), HasSubstr("\"lastEvent\":1"), HasSubstr("\"persons\":1"),
              HasSubstr("event: events\ndata: [{"), HasSubstr("\"before\"")));
    order("POST /control/card", R"({"cardNo":"c7","reader":2})");
    EXPECT_THAT(watcher.readUntil("\"number\":2,\"outcome\""), HasSubstr("outside the validity period"));
    EXPECT_THAT(order("GET /control/persons?search=ZOE", ""),
                AllOf(HasSubstr("\"c7\""), HasSubstr("isValidNow\" : false")));
    EXPECT_THAT(order("GET /control/persons?search=c8", ""), HasSubstr("\"matches\" : 0"));
    EXPECT_THAT(order("GET /control/request?number=99", ""), HasSubstr("404"));
    EXPECT_THAT(order("POST /control/door", R"({"doorNo":3,"command":"open"})"), HasSubstr("no such door"));
    EXPECT_THAT(order("POST /control/door", R"({"doorNo":1,"command":"unhinge"})"),
                HasSubstr("no such command"));
}

TEST_F(Panel, cutsWhoReadsTooSlowly) {
    Browser slow(panel, "GET /live");
    Browser quick(panel, "GET /live");
    slow.readUntil("event: device");
    constexpr size_t kEvents = 20;
    constexpr size_t kSize = 500000;
    for (size_t i = 1; i <= kEvents; ++i) {
        order("POST /control/event", R"({"name":")" + std::string(kSize, 'x') + "\"}");
        ASSERT_THAT(quick.readUntil("\"number\":" + std::to_string(i) + ",").size(), testing::Gt(i * 100));
    }
    const std::string late = slow.answer();
    EXPECT_THAT(late, Not(HasSubstr("(no end)")));
    EXPECT_LT(late.size(), kEvents * kSize);
}

}  // namespace
