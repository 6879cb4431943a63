#include <json/json.h>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <utility>

#include <veltasim/recording.h>

#include "base64.h"
#include "replay/left_out.h"

namespace veltasim {
namespace {

constexpr size_t npos = std::string::npos;
constexpr int kUnauthorized = 401;

Json::Value parsed(const std::string& text) {
    Json::CharReaderBuilder builder;
    builder["collectComments"] = false;
    builder["failIfExtra"] = true;
    const std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
    Json::Value json;
    std::string errors;
    try {
        if (reader->parse(text.data(), text.data() + text.size(), &json, &errors)) return json;
    } catch (const Json::Exception& error) {  // nested too deeply
        errors = error.what();
    }
    // "* Line 3, Column 5\n  Missing ..."
    std::string reason = errors.substr(std::min(errors.find_first_not_of("* "), errors.size()));
    std::ranges::replace(reason, '\n', ' ');
    throw std::runtime_error("not JSON: " + reason);
}

struct Url {
    std::string address;
    uint16_t port = 80;
    std::string target;

    std::string device() const { return address + ":" + std::to_string(port); }
};

// "http://192.168.1.20:8080/path?query"; without a scheme "HOST[:PORT]" too.
std::optional<Url> parseUrl(const std::string& text) {
    const size_t scheme = text.find("://");
    const size_t begin = scheme == npos ? 0 : scheme + 3;
    const size_t slash = std::min(text.find('/', begin), text.size());
    const std::string authority = text.substr(begin, slash - begin);
    const size_t colon = std::min(authority.find(':'), authority.size());
    Url url{authority.substr(0, colon), 80, slash == text.size() ? "/" : text.substr(slash)};
    if (url.address.empty()) return std::nullopt;
    if (colon == authority.size()) return url;
    const char* end = authority.data() + authority.size();
    const auto [stop, error] = std::from_chars(authority.data() + colon + 1, end, url.port);
    if (error != std::errc() || stop != end) return std::nullopt;
    return url;
}

// An entry whose members are asked for by name; what is missing or of another type is an error that says so.
class Entry {
 public:
    Entry(const Json::Value& json, const std::string& where) : json_(json), where_(where) {}

    Entry at(const char* name) const {
        const Json::Value& found = json_.isObject() ? json_[name] : Json::Value::nullSingleton();
        return {found, where_ + "." + name};
    }
    std::string text() const {
        if (!json_.isString()) fail("a text");
        return json_.asString();
    }
    int number() const {
        if (!json_.isInt()) fail("a number");
        return json_.asInt();
    }
    std::string textOrNothing() const { return json_.isString() ? json_.asString() : ""; }
    const Json::Value& json() const { return json_; }
    [[noreturn]] void fail(const std::string& wanted) const {
        throw std::runtime_error(where_ + ": " + wanted + " is expected");
    }

 private:
    const Json::Value& json_;
    const std::string where_;
};

std::string bodyOf(const Entry& data, const char* encoding) {
    std::string text = data.at("text").textOrNothing();
    if (data.at(encoding).textOrNothing() != "base64") return text;
    auto bytes = fromBase64(text);
    if (!bytes) data.at("text").fail("base64");
    return *std::move(bytes);
}

bool hasHeader(const Entry& message, const std::string& name) {
    const Json::Value& headers = message.at("headers").json();
    return std::ranges::any_of(headers, [&](const Json::Value& header) {
        const std::string found = Entry(header, "").at("name").textOrNothing();
        return std::ranges::equal(
            found, name, [](unsigned char a, unsigned char b) { return std::tolower(a) == std::tolower(b); });
    });
}

// An archive of another program does not tell when the parts came, nor where they begin.
std::vector<RecordedAnswer::Part> partsByBoundary(const std::string& body) {
    const std::string delimiter = body.substr(0, body.find("\r\n"));
    std::vector<RecordedAnswer::Part> parts;
    for (size_t begin = 0; begin < body.size() && !delimiter.empty();) {
        const size_t next = body.find("\n" + delimiter, begin);
        const size_t end = next == npos ? body.size() : next + 1;
        parts.push_back({{}, body.substr(begin, end - begin)});
        begin = end;
    }
    if (parts.empty() && !body.empty()) parts.push_back({{}, body});
    return parts;
}

std::vector<RecordedAnswer::Part> partsOf(const Entry& content, const std::string& body) {
    const Json::Value& list = content.at("_parts").json();
    if (!list.isArray()) return partsByBoundary(body);
    std::vector<RecordedAnswer::Part> parts;
    size_t begin = 0;
    for (const Json::Value& one : list) {
        if (!one.isObject() || !one["size"].isUInt() || !one["time"].isNumeric())
            content.at("_parts").fail("a list of sizes and times");
        const size_t size = std::min<size_t>(one["size"].asUInt(), body.size() - begin);
        const std::chrono::milliseconds time(
            static_cast<int64_t>(std::clamp(one["time"].asDouble(), 0.0, 1e12)));
        parts.push_back({time, body.substr(begin, size)});
        begin += size;
    }
    return parts;
}

RecordedAnswer answerOf(const Entry& request, const Entry& response, std::string target) {
    const Entry content = response.at("content");
    RecordedAnswer answer;
    answer.method = request.at("method").text();
    answer.target = std::move(target);
    answer.requestBody = bodyOf(request.at("postData"), "_encoding");
    answer.status = response.at("status").number();
    answer.contentType = content.at("mimeType").textOrNothing();
    if (answer.contentType == "x-unknown") answer.contentType.clear();  // as archives say that there was none
    answer.body = bodyOf(content, "encoding");
    answer.isStream = answer.contentType.starts_with("multipart/") && !hasHeader(response, "Content-Length");
    if (answer.isStream) answer.parts = partsOf(content, std::exchange(answer.body, ""));
    for (RecordedAnswer::Part& part : answer.parts)
        part.bytes = filledIn(part.bytes);
    answer.body = filledIn(answer.body);
    return answer;
}

}  // namespace

Recording Recording::fromHar(const std::string& text, const std::string& device) {
    const Json::Value json = parsed(text);
    const Entry entries = Entry(json, "archive").at("log").at("entries");
    if (!entries.json().isArray()) entries.fail("a list");

    const auto wanted = device.empty() ? std::nullopt : parseUrl(device);
    if (!device.empty() && !wanted) throw std::runtime_error(device + ": HOST or HOST:PORT is expected");
    std::string name = wanted ? wanted->device() : "";
    Recording recording;
    unsigned number = 0;
    for (const Json::Value& one : entries.json()) {
        const Entry entry(one, "entry " + std::to_string(++number));
        const Entry request = entry.at("request");
        const auto url = parseUrl(request.at("url").text());
        if (!url) request.at("url").fail("the URL of a device");
        if (name.empty()) name = url->device();
        if (url->device() != name) {
            if (std::ranges::count(recording.otherDevices, url->device()) == 0)
                recording.otherDevices.push_back(url->device());
            continue;
        }
        const std::string address = entry.at("serverIPAddress").textOrNothing();
        recording.address = address.empty() ? url->address : address;
        recording.port = url->port;
        const bool wasConnected = request.at("method").text() != "CONNECT";
        const Entry response = entry.at("response");
        if (wasConnected && response.at("status").number() != kUnauthorized)
            recording.answers.push_back(answerOf(request, response, url->target));
    }
    if (recording.address.empty())
        throw std::runtime_error(name.empty() ? "the archive has no entries" : "no entries of " + name);
    return recording;
}

}  // namespace veltasim
