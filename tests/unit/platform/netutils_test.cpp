#include <curl/curl.h>
#include <gmock/gmock.h>
#include <netutils/netutils.h>
#include <stdlib.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "scripted_server.h"

namespace {

using namespace std::string_literals;
using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;
using Then = Answer::Then;

constexpr uint32_t kUntouched = 4711;

struct Outcome {
    int result;
    uint32_t status;
    uint32_t length;
    std::string body;
};

class Client {
 public:
    Client() { set(NET_HTTPCLIENT_PARAM_EXCHANGE_TIMEOUT, "", asBytes(60'000)); }
    ~Client() { NET_HTTPCLIENT_Destroy(handle_); }
    Client(const Client&) = delete;
    Client& operator=(const Client&) = delete;

    static std::string asBytes(int32_t value) {
        return {reinterpret_cast<const char*>(&value), sizeof value};
    }
    int set(int code, const std::string& name, const std::string& value) {
        return NET_HTTPCLIENT_SetParam(handle_, code, name.data(), static_cast<uint32_t>(name.size()),
                                       value.data(), static_cast<uint32_t>(value.size()));
    }
    int header(const std::string& name, const std::string& value) {
        return set(NET_HTTPCLIENT_PARAM_HEADER, name + '\0', value + '\0');
    }
    void body(const std::string& bytes) { EXPECT_EQ(set(NET_HTTPCLIENT_PARAM_BODY, "", bytes), 0); }
    void login(const std::string& password = "open:sesame") {
        EXPECT_EQ(set(NET_HTTPCLIENT_PARAM_CREDENTIALS, "admin", password), 0);
    }
    Outcome exchange(const std::string& url, uint8_t method = NET_HTTPCLIENT_METHOD_GET,
                     uint32_t capacity = 4096) {
        const std::string unterminated = url + "/beyond";
        const auto buffer =
            std::make_unique<char[]>(capacity);  // of its exact size: sanitizers see what goes beyond
        NET_HTTPCLIENT_EXCHANGE in{};
        in.url = unterminated.data();
        in.urlLength = url.size();
        in.buffer = buffer.get();
        in.bufferSize = capacity;
        in.method = method;
        NET_HTTPCLIENT_EXCHANGE out{};
        out.httpStatus = out.bufferSize = kUntouched;
        const int result = NET_HTTPCLIENT_ShortLinkExchange(handle_, &in, &out);
        return {result, out.httpStatus, out.bufferSize,
                result == 1 ? std::string(buffer.get(), out.bufferSize) : ""};
    }

 private:
    NET_HTTPCLIENT_HANDLE handle_ = NET_HTTPCLIENT_Create();
};

std::string ok(const std::string& body = "") {
    return "HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
}

std::string refusal(const std::string& challenges, const std::string& body = "<refused/>") {
    return "HTTP/1.1 401 Unauthorized\r\n" + challenges + "Content-Length: " + std::to_string(body.size()) +
           "\r\n\r\n" + body;
}

const std::string kBasic = "WWW-Authenticate: Basic realm=\"door\"\r\n";
const std::string kDigest = "WWW-Authenticate: Digest realm=\"door\", nonce=\"4f2a\", qop=\"auth\"\r\n";

int count(const std::string& text, const std::string& part) {
    int found = 0;
    for (size_t at = 0; (at = text.find(part, at)) != std::string::npos; at += part.size())
        ++found;
    return found;
}

}  // namespace

TEST(Exchange, deviceWithoutLogin_getsOneWholeRequest) {
    ScriptedServer server({{ok("<answer/>")}});
    Client client;
    client.login();
    client.header("Connection", "keep-alive");
    client.header("X-Empty", "");
    client.header("Content-Type", "application/xml;charset=UTF-8");
    client.body("<a>\0</a>"s);
    const Outcome outcome =
        client.exchange(server.url("/VELTA/a/../b?format=json"), NET_HTTPCLIENT_METHOD_PUT);
    EXPECT_EQ(outcome.status, 200U);
    EXPECT_EQ(outcome.body, "<answer/>");
    ASSERT_THAT(server.requests(), SizeIs(1));
    EXPECT_EQ(server.requests()[0],
              "PUT /VELTA/a/../b?format=json HTTP/1.1\r\nHost: 127.0.0.1:" + std::to_string(server.port()) +
                  "\r\nAccept: */*\r\nConnection: keep-alive\r\nX-Empty:\r\n"
                  "Content-Type: application/xml;charset=UTF-8\r\nContent-Length: 8\r\n\r\n"
                  "<a>\0</a>"s);
}

TEST(Exchange, framingFollowsFromMethodAndBody) {
    const std::string large(1'500'000, 'x');
    const struct {
        uint8_t method;
        const char* name;
        std::string body, lengthSent;
    } cases[] = {
        {NET_HTTPCLIENT_METHOD_GET, "GET", "", ""},
        {NET_HTTPCLIENT_METHOD_GET, "GET", "{}", "2"},
        {NET_HTTPCLIENT_METHOD_PUT, "PUT", "", "0"},
        {NET_HTTPCLIENT_METHOD_PUT, "PUT", large, "1500000"},
        {NET_HTTPCLIENT_METHOD_DELETE, "DELETE", "", ""},
    };
    for (const auto& c : cases) {
        for (const bool callerSetsLength : {false, true}) {
            ScriptedServer server({{ok()}});
            Client client;
            if (callerSetsLength) client.header("content-length", "0");
            client.body(c.body);
            EXPECT_EQ(client.exchange(server.url(), c.method).status, 200U);
            ASSERT_THAT(server.requests(), SizeIs(1));
            const std::string request = server.requests()[0];
            EXPECT_THAT(request, StartsWith(c.name + " /VELTA/System/time HTTP/1.1\r\n"s));
            EXPECT_TRUE(request.ends_with("\r\n\r\n" + c.body));
            const std::string head = request.substr(0, request.find("\r\n\r\n") + 2);
            EXPECT_EQ(count(head, "ontent-"), c.lengthSent.empty() ? 0 : 1) << head;
            EXPECT_THAT(
                head, HasSubstr(c.lengthSent.empty() ? "" : "\r\nContent-Length: " + c.lengthSent + "\r\n"));
            EXPECT_THAT(head, Not(HasSubstr("Expect")));
        }
    }
}

TEST(Login, digest_isPreferredAndSentWithTheWholeRequest) {
    for (const char* more : {R"(, qop="auth")", "", R"(, algorithm=SHA-256, qop="auth")"}) {
        const std::string challenge = R"(WWW-Authenticate: Digest realm="door", nonce="4f2a")"s;
        ScriptedServer server({{refusal(kBasic + challenge + more + "\r\n")}, {ok()}});
        Client client;
        client.login();
        client.body("<door>1</door>");
        EXPECT_EQ(client.exchange(server.url("/VELTA/x?a=1"), NET_HTTPCLIENT_METHOD_POST).status, 200U);
        ASSERT_THAT(server.requests(), SizeIs(2));
        EXPECT_THAT(server.requests()[0], Not(HasSubstr("Authorization")));
        EXPECT_THAT(server.requests()[1], AllOf(HasSubstr("\r\nAuthorization: Digest username=\"admin\""),
                                                HasSubstr("uri=\"/VELTA/x?a=1\"")));
        for (const auto& request : server.requests())
            EXPECT_THAT(request, EndsWith("\r\n\r\n<door>1</door>"));
    }
}

TEST(Login, passwordInClear_isNeverSentAfterDigest) {
    for (const std::string realm : {"door", "Digest", "a, Basic Digest=1"}) {
        const std::string basic = "WWW-Authenticate: Basic realm=\"" + realm + "\"\r\n";
        ScriptedServer server({{refusal(kDigest)}, {refusal(basic)}, {ok()}});
        Client client;
        client.login();
        EXPECT_EQ(client.exchange(server.url()).status, 401U);
        EXPECT_THAT(server.requests(), SizeIs(2)) << realm;
    }
    // An answer that asks for nothing is an answer.
    ScriptedServer server(
        {{refusal(kDigest)}, {"HTTP/1.1 200 OK\r\nWWW-Authenticate: Basic\r\nContent-Length: 2\r\n\r\nok"}});
    Client client;
    client.login();
    EXPECT_EQ(client.exchange(server.url()).body, "ok");
}

TEST(Login, refused_handsBackTheRefusal) {
    const std::string stale = "WWW-Authenticate: Digest realm=\"door\", nonce=\"4f2a\", stale=true\r\n";
    const struct {
        std::string challenge;
        bool login;
        size_t requests;
        std::string body;
    } cases[] = {{kDigest, true, 2, "<last/>"},
                 {kBasic, true, 2, "<last/>"},
                 {kDigest, false, 1, "<refused/>"},
                 {stale, true, 3, ""}};  // a device that never takes its own nonces
    for (const auto& c : cases) {
        const Answer last{refusal(c.challenge, "<last/>")};
        ScriptedServer server({{refusal(c.challenge)}, last, last, last, last});
        Client client;
        if (c.login) client.login("wrong");
        const Outcome outcome = client.exchange(server.url());
        EXPECT_EQ(outcome.result, 1);
        EXPECT_EQ(outcome.status, 401U);
        EXPECT_EQ(outcome.body, c.body);
        EXPECT_THAT(server.requests(), SizeIs(c.requests)) << c.challenge;
    }
}

TEST(Answer, isHandedBackUpToTheCapacity) {
    const auto check = [](const Answer& answer, uint32_t capacity, uint32_t status, const std::string& body) {
        ScriptedServer server({answer});
        Client client;
        client.login();
        const Outcome outcome = client.exchange(server.url(), NET_HTTPCLIENT_METHOD_GET, capacity);
        EXPECT_EQ(outcome.result, 1) << answer.bytes;
        EXPECT_EQ(outcome.status, status);
        EXPECT_EQ(outcome.body, body);
        EXPECT_THAT(server.requests(), SizeIs(1));
    };
    check({ok("a\0b\0"s)}, 4, 200, "a\0b\0"s);
    check({ok("0123456789")}, 9, 200, "012345678");
    check({ok("0123456789")}, 0, 200, "");
    const std::string chunks = "3\r\nabc\r\n2\r\nde\r\n0\r\n\r\n";
    check({"HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n" + chunks}, 99, 200, "abcde");
    check({"HTTP/1.0 200 OK\r\n\r\nto the end", Then::kClose}, 99, 200, "to the end");
    check({"HTTP/1.1 200 OK\r\n\r\nan endless answer", Then::kHang}, 10, 200, "an endless");
    check({"HTTP/1.1 302 Found\r\nLocation: /elsewhere\r\nContent-Length: 2\r\n\r\nno"}, 99, 302, "no");
    check({"HTTP/1.1 204 No Content\r\n\r\n"}, 99, 204, "");
}

TEST(Exchange, withoutWholeAnswer_failsAndLeavesOutUntouched) {
    const std::string begun = "HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\n01234";
    const struct {
        Answer answer;
        int32_t timeoutMs;
        int error;
    } cases[] = {
        {{"", Then::kClose}, 60'000, CURLE_GOT_NOTHING},
        {{begun, Then::kClose}, 60'000, CURLE_PARTIAL_FILE},
        {{begun, Then::kHang}, 300, CURLE_OPERATION_TIMEDOUT},
        {{"", Then::kHang},
         1500,
         CURLE_OPERATION_TIMEDOUT},  // longer than the limit for sending, which has ended
        {{"door station 1.0\r\n\r\n", Then::kClose}, 60'000, CURLE_UNSUPPORTED_PROTOCOL},
        {{"HTTP/200t\r\n\r\n", Then::kClose}, 60'000, CURLE_WEIRD_SERVER_REPLY},
    };
    for (const auto& c : cases) {
        ScriptedServer server({c.answer});
        Client client;
        client.set(NET_HTTPCLIENT_PARAM_EXCHANGE_TIMEOUT, "", Client::asBytes(c.timeoutMs));
        client.set(NET_HTTPCLIENT_PARAM_SEND_TIMEOUT, "", Client::asBytes(1));
        client.body("{}");
        const Outcome outcome = client.exchange(server.url(), NET_HTTPCLIENT_METHOD_POST);
        EXPECT_EQ(outcome.result, 0) << c.answer.bytes;
        EXPECT_EQ(NET_UTILS_GetLastError(), c.error);
        EXPECT_EQ(outcome.status, kUntouched);
        EXPECT_EQ(outcome.length, kUntouched);
    }
    std::optional<ScriptedServer> gone(std::in_place, std::vector<Answer>{});
    const std::string url = gone->url();
    gone.reset();
    EXPECT_EQ(Client().exchange(url).result, 0);
    EXPECT_EQ(NET_UTILS_GetLastError(), CURLE_COULDNT_CONNECT);
}

TEST(Exchange, deviceThatStopsReading_endsItLongBeforeTheExchangeLimit) {
    ScriptedServer server({{"", Then::kHang, false}});
    Client client;
    client.set(NET_HTTPCLIENT_PARAM_SEND_TIMEOUT, "", Client::asBytes(200));
    client.body(std::string(32 << 20, 'x'));
    EXPECT_EQ(client.exchange(server.url(), NET_HTTPCLIENT_METHOD_PUT).result, 0);
    EXPECT_EQ(NET_UTILS_GetLastError(), CURLE_ABORTED_BY_CALLBACK)
        << "neither the exchange limit nor the peer ended it";
}

TEST(Exchange, proxyOfTheEnvironment_isIgnored) {
    for (const char* name : {"http_proxy", "all_proxy", "ALL_PROXY"})
        setenv(name, "http://127.0.0.1:1", 1);
    ScriptedServer server({{ok()}});
    EXPECT_EQ(Client().exchange(server.url()).status, 200U);
    for (const char* name : {"http_proxy", "all_proxy", "ALL_PROXY"})
        unsetenv(name);
}

TEST(Client, refusesWhatCannotBeSent) {
    ScriptedServer server({{ok()}});
    Client client;
    const auto terminated = [](const std::string& text) { return text + '\0'; };
    const struct {
        int code;
        std::string name, value;
    } cases[] = {
        {4, "", ""},
        {NET_HTTPCLIENT_PARAM_HEADER, terminated("X"), terminated("a\r\nInjected: 1")},
        {NET_HTTPCLIENT_PARAM_HEADER, terminated("X\n"), terminated("a")},
        {NET_HTTPCLIENT_PARAM_HEADER, terminated("X: a"), terminated("b")},
        {NET_HTTPCLIENT_PARAM_HEADER, terminated(""), terminated("a")},
        {NET_HTTPCLIENT_PARAM_HEADER, "X", "a"},
        {NET_HTTPCLIENT_PARAM_CREDENTIALS, "admin", "open\0sesame"s},
        {NET_HTTPCLIENT_PARAM_SEND_TIMEOUT, "", "123"},
        {NET_HTTPCLIENT_PARAM_EXCHANGE_TIMEOUT, "", Client::asBytes(-1)},
    };
    for (const auto& c : cases)
        EXPECT_EQ(client.set(c.code, c.name, c.value), NET_UTILS_ERROR_PARAMETER) << c.value;
    for (const std::string& path : {"/a b"s, "/a\r\nX: 1"s, "/a\0b"s}) {
        EXPECT_EQ(client.exchange(server.url(path)).result, 0) << path;
    }
    EXPECT_EQ(client.exchange("ftp://127.0.0.1/").result, 0);
    EXPECT_EQ(client.exchange(server.url(), 4).result, 0);
    EXPECT_EQ(NET_UTILS_GetLastError(), NET_UTILS_ERROR_METHOD);
    EXPECT_THAT(server.requests(), SizeIs(0));
    NET_HTTPCLIENT_Destroy(-1);
    EXPECT_LT(NET_HTTPCLIENT_SetParam(-1, NET_HTTPCLIENT_PARAM_BODY, nullptr, 0, nullptr, 0), 0);
}
