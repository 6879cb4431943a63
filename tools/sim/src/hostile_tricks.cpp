#include "hostile_tricks.h"

#include <algorithm>
#include <stdexcept>
#include <string>

namespace veltasim {
namespace {

using namespace std::string_view_literals;
using namespace std::chrono_literals;

// clang-format off
constexpr Trick kTricks[] = {
    {"none", "Answers everything well.", "{good}", End::GoOn},

    {"silence", "Reads the request and says nothing.", "", End::Hang},
    {"slow-bytes", "A good answer, one byte a second.", "{ok}{length}<answer/>", End::GoOn, {.bytePause = 1s}},
    {"large-body", "A sound answer of three MiB.", "{ok}Content-Length: 3145728\r\n\r\n", End::GoOn, {.more = "<answer/>012345\n", .times = 196608}},

    {"endless-status-line", "The first line never ends.", "HTTP/1.1 200 ", End::Close, {.more = "OK "}},
    {"endless-headers", "Header lines without end.", "{ok}", End::Close, {.more = "X-More: and more\r\n"}},
    {"endless-header-line", "One header line without end.", "{ok}X-More: ", End::Close, {.more = "and more "}},
    {"endless-1xx", "Provisional answers without end.", "HTTP/1.1 100 Continue\r\n\r\n", End::Close, {.more = "HTTP/1.1 100 Continue\r\n\r\n"}},
    {"endless-hints", "Provisional answers with headers without end.", "HTTP/1.1 103 Early Hints\r\n\r\n", End::Close, {.more = "HTTP/1.1 103 Early Hints\r\nX-More: and more\r\n\r\n"}},
    {"endless-body", "A part of a stream that never ends, without a length.", "{ok}Content-Type: multipart/mixed; boundary=part\r\n\r\n--part\r\nContent-Type: application/json\r\n\r\n{\"more\":\"", End::Close, {.more = "and more "}},
    {"endless-pictures", "Headers of parts without end, without a length.", "{ok}Content-Type: multipart/mixed; boundary=part\r\n\r\n", End::Close, {.more = "--part\r\nContent-Type: image/jpeg\r\nContent-Length: 999999999\r\n\r\n"}},
    {"endless-chunks", "Chunks without end.", "{ok}{chunked}", End::Close, {.more = "8\r\nand more\r\n"}},
    {"endless-chunk-size", "The digits of a chunk's size never end.", "{ok}{chunked}", End::Close, {.more = "0"}},
    {"endless-chunk-extension", "A chunk's extension never ends.", "{ok}{chunked}9;x=", End::Close, {.more = "more"}},
    {"endless-trailers", "Header lines without end after the last chunk.", "{ok}{chunked}9\r\n<answer/>\r\n0\r\n", End::Close, {.more = "X-More: and more\r\n"}},
    {"endless-trailer-line", "One header line without end after the last chunk.", "{ok}{chunked}9\r\n<answer/>\r\n0\r\nX-More: ", End::Close, {.more = "and more "}},

    {"length-too-large", "Content-Length promises more than ever comes.", "{ok}Content-Length: 1000\r\n\r\n<answer/>", End::Hang},
    {"length-too-small", "Content-Length promises less than comes.", "{ok}Content-Length: 4\r\n\r\n<answer/>", End::GoOn},
    {"length-negative", "Content-Length is -9.", "{ok}Content-Length: -9\r\n\r\n<answer/>"},
    {"length-garbage", "Content-Length is a word.", "{ok}Content-Length: many\r\n\r\n<answer/>"},
    {"length-huge", "Content-Length has more digits than any number.", "{ok}Content-Length: 99999999999999999999999\r\n\r\n<answer/>", End::Hang},
    {"lengths-differ", "Two lengths that contradict each other.", "{ok}Content-Length: 4\r\nContent-Length: 9\r\n\r\n<answer/>", End::GoOn},
    {"lengths-listed", "One Content-Length with two values.", "{ok}Content-Length: 9, 4\r\n\r\n<answer/>", End::GoOn},
    {"length-and-chunks", "A length and chunks that contradict it.", "{ok}Content-Length: 4\r\n{chunked}9\r\n<answer/>\r\n0\r\n\r\n", End::GoOn},
    {"chunk-too-large", "A chunk promises more than ever comes.", "{ok}{chunked}ff\r\n<answer/>\r\n0\r\n\r\n", End::Hang},
    {"chunk-too-small", "A chunk promises less than comes.", "{ok}{chunked}4\r\n<answer/>\r\n0\r\n\r\n", End::GoOn},
    {"chunk-negative", "A chunk's size is -9.", "{ok}{chunked}-9\r\n<answer/>\r\n0\r\n\r\n", End::GoOn},
    {"chunk-huge", "A chunk's size is more than 64 bits hold.", "{ok}{chunked}fffffffffffffffff\r\n<answer/>\r\n0\r\n\r\n", End::Hang},
    {"chunk-garbage", "A chunk's size is a word.", "{ok}{chunked}many\r\n<answer/>\r\n0\r\n\r\n", End::GoOn},

    {"redirect-to-itself", "Redirects to the same resource for ever.", "{302}http://{here}{target}\r\n{length}<answer/>", End::GoOn},
    {"redirect-elsewhere", "Redirects to another host, which asks for a log-in.", "{302}http://{elsewhere}{target}\r\n{length}<answer/>", End::GoOn},
    {"redirect-ftp", "Redirects to FTP on another host.", "{302}ftp://{elsewhere}/\r\n{length}<answer/>", End::GoOn},
    {"redirect-file", "Redirects to a file of the client's own machine.", "{302}file:///etc/hostname\r\n{length}<answer/>", End::GoOn},
    {"redirect-gopher", "Redirects to Gopher on another host.", "{302}gopher://{elsewhere}/_{target}\r\n{length}<answer/>", End::GoOn},

    {"log-in-for-ever", "Asks for a log-in again and again, each time with another nonce.", "{401}{digest}\r\n{length}<answer/>", End::GoOn},
    {"log-in-stale", "Calls every nonce stale, for ever.", "{401}{digest}, stale=true\r\n{length}<answer/>", End::GoOn},
    {"log-in-unknown-schemes", "Asks for a log-in by schemes that nobody offered.", "{401}NTLM\r\nWWW-Authenticate: Negotiate\r\nWWW-Authenticate: Bearer realm=\"door\"\r\nWWW-Authenticate: Password\r\n{length}<answer/>", End::GoOn},
    {"log-in-unknown-digest", "Asks for a digest by a function that does not exist.", "{401}{digest}, algorithm=SUM\r\n{length}<answer/>", End::GoOn},
    {"log-in-basic-only", "Asks for the password in clear.", "{401}Basic realm=\"door\"\r\n{length}<answer/>", End::GoOn},
    {"log-in-basic-after-digest", "Asks for a digest, and then for the password in clear.", "{401}{digest}\r\n{length}<answer/>", End::GoOn, {.answerToLogIn = "{401}Basic realm=\"door\"\r\n{length}<answer/>"}},

    {"upgrade", "Switches to another protocol unasked.", "HTTP/1.1 101 Switching Protocols\r\nConnection: Upgrade\r\nUpgrade: websocket\r\n\r\n\x81\x09<answer/>", End::Hang},
    {"gzip", "A compressed body unasked.", "{ok}Content-Encoding: gzip\r\nContent-Length: 29\r\n\r\n\x1f\x8b\x08\x00\x00\x00\x00\x00\x02\x03\xb3I\xcc+.O-\xd2\xb7\x03\x00\x8cmp\xa7\x09\x00\x00\x00"sv, End::GoOn},
    {"deflate", "A body compressed in another way unasked.", "{ok}Content-Encoding: deflate\r\nContent-Length: 17\r\n\r\nx\x9c\xb3I\xcc+.O-\xd2\xb7\x03\x00\x10\xba\x03:"sv, End::GoOn},
    {"gzip-transfer", "A transfer compressed unasked.", "{ok}Transfer-Encoding: gzip\r\n\r\n\x1f\x8b\x08\x00\x00\x00\x00\x00\x02\x03\xb3I\xcc+.O-\xd2\xb7\x03\x00\x8cmp\xa7\x09\x00\x00\x00"sv},
    {"http-0.9", "A body without status and headers.", "<answer/>"},
    {"http-2", "Speaks HTTP/2 unasked.", "PRI * HTTP/2.0\r\n\r\nSM\r\n\r\n\x00\x00\x00\x04\x00\x00\x00\x00\x00"sv, End::Hang},
    {"http-9.9", "A version that does not exist.", "HTTP/9.9 200 OK\r\n{length}<answer/>", End::GoOn},
    {"status-huge", "A status of many digits.", "HTTP/1.1 200000000000000000000 OK\r\n{length}<answer/>", End::GoOn},
    {"zeros-in-headers", "Zero bytes in names and values of headers.", "{ok}X-\0More: and \0more\r\n{length}<answer/>"sv, End::GoOn},

    {"answer-first", "Answers before it was asked.", "{ok}{length}<answer/>", End::Hang, {.ear = Ear::Nothing}},
    {"body-unread", "Never reads the request's body, and says nothing.", "", End::Hang, {.ear = Ear::Head}},
    {"body-unread-answer", "Answers without reading the request's body, and goes.", "{ok}{length}<answer/>", End::Close, {.ear = Ear::Head}},

    {"close-at-once", "Closes before anything was said.", "", End::Close, {.ear = Ear::Nothing}},
    {"close-after-request-line", "Closes after the first line of the request.", "", End::Close, {.ear = Ear::RequestLine}},
    {"close-in-headers", "Closes in the middle of its headers.", "{ok}X-More: and"},
    {"close-in-body", "Closes in the middle of its body.", "{ok}Content-Length: 1000\r\n\r\n<answer/>"},
    {"close-after-answer", "Promises to keep the connection and closes it.", "{ok}Connection: keep-alive\r\n{length}<answer/>"},
    {"reset-at-once", "Resets before anything was said.", "", End::Reset, {.ear = Ear::Nothing}},
    {"reset-after-request-line", "Resets after the first line of the request.", "", End::Reset, {.ear = Ear::RequestLine}},
    {"reset-in-headers", "Resets in the middle of its headers.", "{ok}X-More: and", End::Reset},
    {"reset-in-body", "Resets in the middle of its body.", "{ok}Content-Length: 1000\r\n\r\n<answer/>", End::Reset},
    {"reset-after-answer", "Promises to keep the connection and resets it.", "{ok}Connection: keep-alive\r\n{length}<answer/>", End::Reset},
};
// clang-format on

}  // namespace

std::span<const Trick> allTricks() {
    return kTricks;
}

const Trick& trickNamed(std::string_view name) {
    const auto* trick = std::ranges::find(kTricks, name, &Trick::name);
    if (trick == std::end(kTricks)) throw std::invalid_argument("no such trick: " + std::string(name));
    return *trick;
}

}  // namespace veltasim
