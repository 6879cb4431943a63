#include "trace/left_out.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <optional>

#include "trace/http_reader.h"

namespace host {
namespace {

constexpr size_t npos = std::string_view::npos;
constexpr std::string_view kBlanks = " \t\r\n";
constexpr const char* kSecret = "[left out]";
constexpr size_t kShortTemplate = 48;  // bounds and file names stay

// In lower case. Names of secrets: these within a name, or as the whole of it.
constexpr std::array<std::string_view, 3> kSecretWords{"password", "passwd", "pwd"};
constexpr std::array<std::string_view, 4> kSecretNames{"pin", "pincode", "cardpin", "personpin"};
constexpr std::array<std::string_view, 9> kPictureNames{"fingerdata", "templatedata", "modeldata",
                                                        "facedata",   "picdata",      "picturedata",
                                                        "heximg",     "picture",      "image"};
// What follows the scheme of these is as good as the password, or helps to guess it.
constexpr std::array<std::string_view, 7> kSecretHeaders{
    "Authorization",      "WWW-Authenticate", "Authentication-Info", "Proxy-Authorization",
    "Proxy-Authenticate", "Cookie",           "Set-Cookie"};

constexpr std::array<std::string_view, 3> kSchemes{"Digest", "Basic", "Bearer"};

bool isOneOf(std::string_view name, auto& names) {
    return std::ranges::any_of(names, [name](std::string_view one) { return equalsIgnoringCase(one, name); });
}

bool isSecret(std::string_view name) {
    std::string lower(name);
    std::ranges::transform(lower, lower.begin(), [](unsigned char c) { return std::tolower(c); });
    return isOneOf(name, kSecretNames) ||
           std::ranges::any_of(kSecretWords, [&](std::string_view word) { return lower.find(word) != npos; });
}

// What stands for a value of that name; nothing: the value stays.
std::optional<std::string> noteFor(std::string_view name, std::string_view value, Keep keep) {
    if (!keep.secrets && !value.empty() && value != "true" && value != "false" && value != "null" &&
        isSecret(name))
        return kSecret;
    if (!keep.pictures && value.size() > kShortTemplate && isOneOf(name, kPictureNames))
        return "[left out: " + std::to_string(value.size()) + " characters]";
    return std::nullopt;
}

// Copies a text; where a value has a name, puts the note in its place. It is no parser: what is no proper JSON or
// XML is copied as it stands.
class Masked {
 public:
    Masked(std::string_view text, Keep keep) : text_(text), keep_(keep) {}

    std::string json() {
        while (at_ < text_.size()) {
            if (text_[at_] != '"') {
                ++at_;
                continue;
            }
            const std::string_view name = quoted();
            const size_t colon = text_.find_first_not_of(kBlanks, at_);
            if (colon == npos || text_[colon] != ':') continue;
            at_ = std::min(text_.find_first_not_of(kBlanks, colon + 1), text_.size());
            if (at_ == text_.size()) break;
            if (text_[at_] == '"')
                replace(name, quoted(), "");
            else if (std::isdigit(static_cast<unsigned char>(text_[at_])) != 0 || text_[at_] == '-')
                replace(name, bare(",}] \t\r\n"), "\"");
        }
        return rest();
    }

    std::string xml() {
        while ((at_ = text_.find('<', at_)) != npos) {
            const size_t end = text_.find('>', at_);
            if (end == npos) break;
            std::string_view name = text_.substr(at_ + 1, end - at_ - 1);
            at_ = end + 1;
            if (name.ends_with('/')) continue;
            name = name.substr(0, name.find_first_of(" \t\r\n"));
            name.remove_prefix(name.find(':') + 1);  // of a prefix; npos + 1 is 0
            replace(name, bare("<"), "");
        }
        return rest();
    }

    std::string form() {
        while (at_ < text_.size()) {
            const std::string_view name = bare("=&");
            if (at_ < text_.size() && text_[at_++] == '=') replace(name, bare("&"), "");
        }
        return rest();
    }

 private:
    // What stands between the quotation marks; at_ goes behind them.
    std::string_view quoted() {
        const size_t begin = ++at_;
        while (at_ < text_.size() && text_[at_] != '"')
            at_ += text_[at_] == '\\' ? 2 : 1;
        at_ = std::min(at_, text_.size());
        const std::string_view found = text_.substr(begin, at_ - begin);
        at_ = std::min(at_ + 1, text_.size());
        return found;
    }
    std::string_view bare(const char* ends) {
        const size_t begin = at_;
        at_ = std::min(text_.find_first_of(ends, at_), text_.size());
        return text_.substr(begin, at_ - begin);
    }
    void replace(std::string_view name, std::string_view value, const char* quote) {
        const auto note = noteFor(name, value, keep_);
        if (!note) return;
        const auto begin = static_cast<size_t>(value.data() - text_.data());
        masked_.append(text_.substr(copied_, begin - copied_)).append(quote).append(*note).append(quote);
        copied_ = begin + value.size();
    }
    std::string rest() { return masked_.append(text_.substr(copied_)); }

    const std::string_view text_;
    const Keep keep_;
    size_t at_ = 0;
    size_t copied_ = 0;
    std::string masked_;
};

}  // namespace

bool isText(std::string_view bytes) {
    size_t following = 0;
    unsigned code = 0;
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        if (following > 0) {
            code = code << 6U | (byte & 0x3FU);
            const bool isSurrogate = code >= 0xD800 && code < 0xE000;
            if ((byte & 0xC0U) != 0x80 || (--following == 0 && (code > 0x10FFFF || isSurrogate)))
                return false;
        } else if (byte >= 0x80) {
            if (byte < 0xC2 || byte > 0xF4) return false;
            following = byte >= 0xF0 ? 3 : byte >= 0xE0 ? 2 : 1;
            code = byte & (0x3FU >> following);
        } else if (byte < 0x20 && byte != '\t' && byte != '\r' && byte != '\n') {
            return false;
        }
    }
    return following == 0;
}

std::string headerFor(const std::string& name, const std::string& value, Keep keep) {
    if (keep.secrets || !isOneOf(name, kSecretHeaders)) return value;
    const std::string scheme = value.substr(0, value.find_first_of(" =,;"));
    return isOneOf(scheme, kSchemes) ? scheme + " " + kSecret : kSecret;
}

std::string targetFor(const std::string& target, Keep keep) {
    const size_t query = target.find('?');
    if (query == npos) return target;
    return target.substr(0, query + 1) + Masked(std::string_view(target).substr(query + 1), keep).form();
}

std::string bodyFor(std::string_view contentType, std::string_view body, Keep keep) {
    if (!keep.pictures && !isText(body)) return "[left out: " + std::to_string(body.size()) + " bytes]";
    const size_t first = body.find_first_not_of(kBlanks);
    if (first == npos) return std::string(body);
    if (body[first] == '{' || body[first] == '[') return Masked(body, keep).json();
    if (body[first] == '<') return Masked(body, keep).xml();
    const bool isForm = contentType.find("form-urlencoded") != npos;
    return isForm ? Masked(body, keep).form() : std::string(body);
}

std::string partFor(std::string_view part, Keep keep) {
    constexpr std::string_view kHeaderEnd = "\r\n\r\n";
    const size_t headerEnd = part.find(kHeaderEnd);
    if (headerEnd == npos) return bodyFor("", part, keep);
    const std::string_view headers = part.substr(0, headerEnd + kHeaderEnd.size());
    std::string_view body = part.substr(headers.size());
    const std::string_view end = body.ends_with("\r\n") ? "\r\n" : "";
    body.remove_suffix(end.size());
    return std::string(headers) + bodyFor("", body, keep) + std::string(end);
}

}  // namespace host
