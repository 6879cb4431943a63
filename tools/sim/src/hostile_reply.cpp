#include "hostile_reply.h"

#include <strings.h>

#include <array>
#include <atomic>
#include <cstdlib>

namespace veltasim {
namespace {

constexpr std::string_view kOk = "HTTP/1.1 200 OK\r\n";
constexpr std::string_view kUserCheck = "<userCheck><statusValue>200</statusValue></userCheck>";
constexpr std::string_view kXmlStatus =
    "<ResponseStatus><statusCode>1</statusCode><statusString>OK</statusString></ResponseStatus>";
constexpr std::string_view kJsonStatus = R"({"statusCode":1,"statusString":"OK","subStatusCode":"ok"})";

// The value of a header of the request; empty: there is none.
std::string_view headerOf(std::string_view head, std::string_view name) {
    for (size_t at = head.find("\r\n"); at != std::string_view::npos; at = head.find("\r\n")) {
        head.remove_prefix(at + 2);
        if (head.size() < name.size() || strncasecmp(head.data(), name.data(), name.size()) != 0 ||
            !head.substr(name.size()).starts_with(": "))
            continue;
        head.remove_prefix(name.size() + 2);
        return head.substr(0, head.find("\r\n"));
    }
    return {};
}

std::string newNonce() {
    static std::atomic<unsigned> nonces{0};
    return std::to_string(++nonces);
}

}  // namespace

std::string_view HostileReply::target() const {
    const size_t begin = head.find(' ');
    const size_t end = head.find(' ', begin + 1);
    return end == std::string::npos ? "/" : std::string_view(head).substr(begin + 1, end - begin - 1);
}

bool HostileReply::asksForUser() const {
    return head.starts_with("GET /VELTA/Security/userCheck");
}

bool HostileReply::carriesCredentials() const {
    return !headerOf(head, "Authorization").empty();
}

size_t HostileReply::bodyLength() const {
    return std::strtoul(std::string(headerOf(head, "Content-Length")).c_str(), nullptr, 10);
}

std::string HostileReply::fill(std::string_view text) const {
    const std::array<std::pair<std::string_view, std::string>, 10> fillings{{
        {"{good}", good()},
        {"{ok}", std::string(kOk)},
        {"{302}", "HTTP/1.1 302 Found\r\nLocation: "},
        {"{401}", "HTTP/1.1 401 Unauthorized\r\nWWW-Authenticate: "},
        {"{digest}", R"(Digest realm="door", qop="auth", nonce=")" + newNonce() + '"'},
        {"{length}", "Content-Length: 9\r\n\r\n"},
        {"{chunked}", "Transfer-Encoding: chunked\r\n\r\n"},
        {"{here}", here},
        {"{elsewhere}", elsewhere},
        {"{target}", std::string(target())},
    }};
    std::string filled(text);
    for (const auto& [mark, filling] : fillings) {
        const size_t at = filled.find(mark);
        if (at != std::string::npos) filled.replace(at, mark.size(), filling);
    }
    return filled;
}

// What a sound device says. To a subscriber of the alert stream: a stream without events.
std::string HostileReply::good() const {
    if (target().find("alertStream") != std::string_view::npos)
        return std::string(kOk) + "Content-Type: multipart/mixed; boundary=part\r\n\r\n";
    const std::string_view status =
        target().find("format=json") != std::string_view::npos ? kJsonStatus : kXmlStatus;
    const std::string_view body = asksForUser() ? kUserCheck : status;
    return std::string(kOk) + "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n" +
           std::string(body);
}

}  // namespace veltasim
