#include <gtest/gtest.h>
#include <json/json.h>

#include <cerrno>
#include <string>
#include <vector>

#include "trace/connection_trace.h"
#include "trace/har.h"
#include "trace/http_reader.h"
#include "trace/left_out.h"

namespace {

// Writes down what it is told.
struct Story : host::HttpSink {
    bool onHead(host::HttpHead head) override {
        text += "[" + head.firstLine + "]";
        return true;
    }
    void onBody(std::string_view bytes) override { text += bytes; }
    void onEnd() override { text += "|"; }
    std::string text;
};

std::string told(host::HttpReader::Side side, const std::string& stream, size_t split, size_t pieceSize) {
    Story story;
    host::HttpReader reader(side, story);
    reader.feed(stream.substr(0, split));
    for (size_t at = split; at < stream.size(); at += pieceSize)
        reader.feed(stream.substr(at, pieceSize));
    reader.close();
    return story.text + (reader.isBroken() ? "broken" : reader.isBetweenMessages() ? "" : "open");
}

}  // namespace

TEST(HttpReader, Feed_messagesCutAnywhere) {
    using Side = host::HttpReader::Side;
    const struct {
        Side side;
        std::string stream;
        std::string told;
    } cases[] = {
        {Side::Request, "GET /a HTTP/1.1\r\nHost: x\r\n\r\nPUT /b HTTP/1.1\r\ncontent-length: 3\r\n\r\nxyz",
         "[GET /a HTTP/1.1]|[PUT /b HTTP/1.1]xyz|"},
        {Side::Response, "HTTP/1.1 100 Continue\r\n\r\nHTTP/1.1 200 OK\r\nContent-Length:2\r\n\r\nok\r\n",
         "[HTTP/1.1 200 OK]ok|"},
        {Side::Response,
         "HTTP/1.1 200 OK\nTransfer-Encoding: Chunked\n\n3;x=y\nabc\n1F\n0123456789012345678901234567890\n0\n"
         "Trailer: t\n\nHTTP/1.1 204 No\nContent-Length: 9\n\n",
         "[HTTP/1.1 200 OK]abc0123456789012345678901234567890|[HTTP/1.1 204 No]|"},
        {Side::Response, "HTTP/1.0 200 OK\r\n\r\nuntil\r\n\r\nthe end",
         "[HTTP/1.0 200 OK]until\r\n\r\nthe end|"},
        {Side::Response, "HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\nshort", "[HTTP/1.1 200 OK]shortopen"},
        {Side::Response, "\x16\x03\x01 no HTTP\r\n\r\n", "broken"},
        {Side::Response, "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\nzz\r\n",
         "[HTTP/1.1 200 OK]broken"},
    };
    for (const auto& one : cases) {
        for (size_t split = 0; split <= one.stream.size(); ++split)
            EXPECT_EQ(told(one.side, one.stream, split, one.stream.size()), one.told) << split;
        EXPECT_EQ(told(one.side, one.stream, 0, 1), one.told);
    }
    EXPECT_EQ(told(Side::Request, "GET / HTTP/1.1\r\nX: " + std::string(300000, 'x'), 0, 1000), "broken");
}

TEST(Trace, LeftOut_secretsAndPicturesOnly) {
    const std::string longer(60, 'F');
    const std::string jpeg = "\xFF\xD8\xFF\xE0";
    const struct {
        std::string body;
        std::string kept;
    } cases[] = {
        {R"({"userPassword" : "x\"y", "pin":4711,"spin":1,"password":{"@min":1}})",
         R"({"userPassword" : "[left out]", "pin":"[left out]","spin":1,"password":{"@min":1}})"},
        {R"({"riskPassword":true,"name":"password","a":[{"Passwd":"","adminPwd":"1"}]})",
         R"({"riskPassword":true,"name":"password","a":[{"Passwd":"","adminPwd":"[left out]"}]})"},
        {"<a x=\"1\"><v:password>p&amp;q</v:password><fingerData min=\"1\"/><fingerData>" + longer +
             "</fingerData></a>",
         "<a x=\"1\"><v:password>[left out]</v:password><fingerData min=\"1\"/><fingerData>[left out: 60 "
         "characters]</fingerData></a>"},
        {R"({"password":"never closed)", R"({"password":"[left out])"},
        {jpeg, "[left out: 4 bytes]"},
        {"plain password: 1", "plain password: 1"},
    };
    for (const auto& one : cases) {
        EXPECT_EQ(host::bodyFor("", one.body, {}), one.kept);
        EXPECT_EQ(host::bodyFor("", one.body, {.secrets = true, .pictures = true}), one.body);
    }
    EXPECT_EQ(host::targetFor("/a?user=b&password=c&d", {}), "/a?user=b&password=[left out]&d");
    EXPECT_EQ(host::bodyFor("application/x-www-form-urlencoded", "pwd=c", {}), "pwd=[left out]");
    EXPECT_EQ(host::headerFor("authorization", "Digest username=\"a\"", {}), "Digest [left out]");
    EXPECT_EQ(host::headerFor("Cookie", "a=b; c=d", {}), "[left out]");
    EXPECT_EQ(host::partFor("--b\r\nContent-Type: image/jpeg\r\n\r\n" + jpeg + "\r\n", {}),
              "--b\r\nContent-Type: image/jpeg\r\n\r\n[left out: 4 bytes]\r\n");
}

TEST(Trace, Body_keepsTheBeginningOfWhatIsTooLong) {
    const size_t most = host::CapturedBody::kMostPartBytes;
    host::CapturedBody body({});
    body.begin("multipart/mixed; boundary=\"b\"");
    const std::string sent = "--b\r\n\r\n" + std::string(most + 500000, 'x') + "\r\n--b\r\n\r\nnext";
    for (size_t at = 0; at < sent.size(); at += 99991)
        body.add(std::string_view(sent).substr(at, 99991));
    body.end();
    ASSERT_EQ(body.parts().size(), 2U);
    EXPECT_GT(body.bytesCut(), 0U);
    EXPECT_EQ(body.text().size() + body.bytesCut(), sent.size());
}

TEST(Trace, Connection_everyEndIsAnEntry) {
    using Connection = host::ConnectionTrace;
    const std::string request = "POST /x HTTP/1.1\r\nContent-Length: 2\r\n\r\n{}";
    const std::string answer = "HTTP/1.1 200 OK\r\nContent-Length: 4\r\n\r\n";
    const std::string stream =
        "HTTP/1.1 200 OK\r\nContent-Type: multipart/mixed; boundary=b\r\n\r\n--b\r\n\r\n1\r\n--b\r\n\r\n22";
    const struct {
        std::function<void(Connection&)> life;
        std::string seen;  // status, error, parts
    } cases[] = {
        {[](Connection& c) { c.failed(ECONNREFUSED); }, "0 no connection: Connection refused 0"},
        {[](Connection&) {}, "0 no connection: the device did not answer 0"},
        {[](Connection& c) { c.connected(); }, ""},  // nobody asked anything
        {[&](Connection& c) { c.sent(request); }, "0 the device did not answer 0"},
        {[&](Connection& c) { c.sent(request), c.peerClosed(); },
         "0 the device closed the connection without an answer 0"},
        {[&](Connection& c) { c.sent(request), c.received(answer + "ab"), c.peerClosed(); },
         "200 the device closed the connection within its answer 0"},
        {[&](Connection& c) { c.sent(request), c.received("SSH-2.0\r\n"); },
         "0 what the device answered is not HTTP 0"},
        {[&](Connection& c) { c.sent(request), c.failed(ECONNRESET); },
         "0 the connection broke: Connection reset by peer 0"},
        {[&](Connection& c) { c.sent("HEAD /x HTTP/1.1\r\n\r\n"), c.received(answer); }, "200  0"},
        {[&](Connection& c) { c.sent(request), c.received(answer + "\xFF\xFE\xFD\xFC"); }, "200  0"},
        {[&](Connection& c) { c.sent(request), c.received(stream); }, "200  2"},
    };
    for (const auto& one : cases) {
        std::string seen;
        Connection connection("10.0.0.1:80", 1, {}, [&](const host::ExchangeRecord& exchange) {
            const Json::Value entry = host::harEntry(exchange, {});
            const std::string error = entry["_error"].asString();
            seen += entry["response"]["status"].asString() + " " + error.substr(0, error.find(", given up")) +
                    " " + std::to_string(entry["response"]["content"]["_parts"].size());
        });
        one.life(connection);
        connection.closed();
        EXPECT_EQ(seen, one.seen);
    }
}
