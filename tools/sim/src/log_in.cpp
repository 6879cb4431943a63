#include "log_in.h"

#include <algorithm>
#include <cstdlib>
#include <memory>

#include "xml.h"

namespace veltasim {
namespace {

constexpr const char* kRealm = "VELTA";
constexpr std::string_view kNonceMember = "nonce=\"";
constexpr const char* kOpaque = "7f3c19a05be2468d";
constexpr unsigned kNonceSeconds = 300;

struct FreeText {
    void operator()(char* text) const { MHD_free(text); }
};
using Text = std::unique_ptr<char, FreeText>;

MHD_DigestAuthAlgorithm algorithmOf(AuthScheme scheme) {
    return scheme == AuthScheme::DigestSha256 ? MHD_DIGEST_ALG_SHA256 : MHD_DIGEST_ALG_MD5;
}

std::string nonceOf(MHD_Response* challenge) {
    const std::string_view header = MHD_get_response_header(challenge, MHD_HTTP_HEADER_WWW_AUTHENTICATE);
    const size_t begin = header.find(kNonceMember) + kNonceMember.size();
    return std::string(header.substr(begin, header.find('"', begin) - begin));
}

}  // namespace

std::optional<LogIn::Refusal> LogIn::check(Exchange& exchange) {
    if (options_.auth == AuthScheme::None) return std::nullopt;
    const Credentials credentials = read(exchange);
    if (!isLocked()) {
        count(credentials);
        if (credentials == Credentials::Right) return std::nullopt;
    }
    return Refusal{{MHD_HTTP_UNAUTHORIZED, kXmlType, refusalText()}, credentials == Credentials::Stale};
}

LogIn::Refusal LogIn::staleRefusal() const {
    return {{MHD_HTTP_UNAUTHORIZED, kXmlType, refusalText()}, true};
}

void LogIn::refuse(Exchange& exchange, const Refusal& refusal) {
    exchange.answer(refusal.reply, [&](MHD_Connection* connection, MHD_Response* response) {
        if (options_.auth == AuthScheme::Basic)
            return MHD_queue_basic_auth_fail_response(connection, kRealm, response);
        const MHD_Result result =
            MHD_queue_auth_fail_response2(connection, kRealm, kOpaque, response,
                                          refusal.stale ? MHD_YES : MHD_NO, algorithmOf(options_.auth));
        freshNonce_ = nonceOf(response);
        return result;
    });
}

LogIn::Credentials LogIn::read(Exchange& exchange) {
    return options_.auth == AuthScheme::Basic ? readBasic(exchange) : readDigest(exchange);
}

LogIn::Credentials LogIn::readDigest(Exchange& exchange) {
    const Text user(MHD_digest_auth_get_username(exchange.connection()));
    if (!user) return Credentials::None;
    exchange.record.user = user.get();
    // The HTTP library remembers one nonce only, and refuses a good password with any other just as it
    // refuses a bad one. So the password is to blame only if nobody has used this nonce and none was given
    // out after it; all others get a new nonce and try again.
    const bool fresh =
        !freshNonce_.empty() &&
        exchange.record.header(MHD_HTTP_HEADER_AUTHORIZATION).find(std::string(kNonceMember) + freshNonce_) !=
            std::string::npos;
    if (fresh) freshNonce_.clear();
    const int result =
        MHD_digest_auth_check2(exchange.connection(), kRealm, options_.user.c_str(),
                               options_.password.c_str(), kNonceSeconds, algorithmOf(options_.auth));
    if (result == MHD_YES) return Credentials::Right;
    return fresh && result != MHD_INVALID_NONCE ? Credentials::Wrong : Credentials::Stale;
}

LogIn::Credentials LogIn::readBasic(Exchange& exchange) const {
    char* rawPassword = nullptr;
    const Text user(MHD_basic_auth_get_username_password(exchange.connection(), &rawPassword));
    const Text password(rawPassword);
    if (!user) return Credentials::None;
    exchange.record.user = user.get();
    const bool right = password && options_.user == user.get() && options_.password == password.get();
    return right ? Credentials::Right : Credentials::Wrong;
}

void LogIn::count(Credentials credentials) {
    const std::lock_guard lock(mutex_);
    if (credentials == Credentials::Right) failures_ = 0;
    if (credentials != Credentials::Wrong || ++failures_ != options_.maxFailedLogins) return;
    failures_ = 0;
    lockedUntil_ = Clock::now() + options_.lockTime;
}

void LogIn::lock(std::chrono::seconds duration) {
    const std::lock_guard lock(mutex_);
    failures_ = 0;
    lockedUntil_ = Clock::now() + duration;
}

void LogIn::unlock() {
    lock(std::chrono::seconds::zero());
}

std::chrono::seconds LogIn::lockLeft() const {
    const std::lock_guard lock(mutex_);
    return std::chrono::ceil<std::chrono::seconds>(lockedUntil_ - Clock::now());
}

std::string LogIn::refusalText() const {
    pugi::xml_document document;
    pugi::xml_node root = addRoot(document, "userCheck");
    addText(root, "httpStatus", "401");
    addText(root, "statusString", "Unauthorized");
    const auto left = lockLeft();
    addText(root, "lockStatus", left.count() > 0 ? "lock" : "unlock");
    if (left.count() > 0) {
        addText(root, "lockSeconds", std::to_string(left.count()));
    } else if (options_.maxFailedLogins > 0) {
        const std::lock_guard lock(mutex_);
        addText(root, "attemptsLeft", std::to_string(options_.maxFailedLogins - failures_));
    }
    return toText(document);
}

}  // namespace veltasim
