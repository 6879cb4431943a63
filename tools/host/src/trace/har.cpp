#include "trace/har.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <ctime>

namespace host {
namespace {

using Steady = ExchangeRecord::Steady;

double milliseconds(Steady::duration duration) {
    return static_cast<double>(std::chrono::duration_cast<std::chrono::microseconds>(duration).count()) /
           1000;
}

// HAR's way to say that a time does not apply.
Json::Value between(const std::optional<Steady::time_point>& from,
                    const std::optional<Steady::time_point>& to) {
    return from && to ? milliseconds(*to - *from) : -1;
}

std::string timeText(std::chrono::system_clock::time_point time) {
    const auto sinceEpoch = std::chrono::duration_cast<std::chrono::milliseconds>(time.time_since_epoch());
    const std::time_t seconds = sinceEpoch.count() / 1000;
    std::tm utc{};
    gmtime_r(&seconds, &utc);
    std::array<char, 32> text{};
    const size_t size = std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%S", &utc);
    std::snprintf(text.data() + size, text.size() - size, ".%03dZ",
                  static_cast<int>(sinceEpoch.count() % 1000));
    return text.data();
}

std::string base64(std::string_view bytes) {
    constexpr const char* kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    for (size_t at = 0; at < bytes.size(); at += 3) {
        unsigned group = 0;
        for (size_t i = at; i < at + 3; ++i)
            group = group << 8U | (i < bytes.size() ? static_cast<unsigned char>(bytes[i]) : 0U);
        for (size_t i = 0; i < 4; ++i)
            text += at + i > bytes.size() ? '=' : kDigits[group >> (18 - 6 * i) & 63U];
    }
    return text;
}

// The words of "GET /path HTTP/1.1" and "HTTP/1.1 404 Not Found".
std::array<std::string, 3> words(const std::string& line) {
    std::array<std::string, 3> found;
    const size_t first = line.find(' ');
    found[0] = line.substr(0, first);
    if (first == std::string::npos) return found;
    const size_t second = line.find(' ', first + 1);
    found[1] = line.substr(first + 1, second == std::string::npos ? second : second - first - 1);
    if (second != std::string::npos) found[2] = line.substr(second + 1);
    return found;
}

Json::Value pair(const std::string& name, const std::string& value) {
    Json::Value json;
    json["name"] = name;
    json["value"] = value;
    return json;
}

Json::Value headersOf(const HttpHead& head, Keep keep) {
    Json::Value list = Json::arrayValue;
    for (const auto& [name, value] : head.headers)
        list.append(pair(name, headerFor(name, value, keep)));
    return list;
}

Json::Value queryOf(const std::string& target) {
    Json::Value list = Json::arrayValue;
    size_t at = target.find('?');
    while (at != std::string::npos) {
        const size_t next = target.find('&', at + 1);
        const std::string one = target.substr(at + 1, next == std::string::npos ? next : next - at - 1);
        const size_t equals = std::min(one.find('='), one.size());
        if (!one.empty())
            list.append(pair(one.substr(0, equals), one.substr(std::min(equals + 1, one.size()))));
        at = next;
    }
    return list;
}

void setText(Json::Value& json, const CapturedBody& body, const char* encoding) {
    const bool plain = isText(body.text());
    json["text"] = plain ? body.text() : base64(body.text());
    if (!plain) json[encoding] = "base64";
    if (body.bytesCut() > 0)
        json["comment"] = std::to_string(body.bytesCut()) + " bytes were too many, and are not kept";
}

void setSizes(Json::Value& json, const RecordedMessage& message) {
    const bool isThere = !message.head.firstLine.empty();
    json["headersSize"] = isThere ? Json::Value(Json::UInt64(message.head.size)) : -1;
    json["bodySize"] = isThere ? Json::Value(Json::UInt64(message.body.size())) : -1;
}

Json::Value requestOf(const ExchangeRecord& exchange, Keep keep) {
    const RecordedMessage& message = exchange.request;
    const auto [method, target, version] = words(message.head.firstLine);
    const std::string shown = targetFor(target.empty() ? "/" : target, keep);
    Json::Value json;
    json["method"] = method.empty() ? "CONNECT" : method;  // nothing was sent
    json["url"] = (shown.starts_with('/') ? "http://" + exchange.device : "") + shown;
    json["httpVersion"] = version.empty() ? "HTTP/1.1" : version;
    json["cookies"] = Json::arrayValue;
    json["headers"] = headersOf(message.head, keep);
    json["queryString"] = queryOf(shown);
    setSizes(json, message);
    if (message.body.size() == 0) return json;
    Json::Value& data = json["postData"];
    data["mimeType"] = message.body.contentType();
    data["params"] = Json::arrayValue;
    setText(data, message.body, "_encoding");
    return json;
}

Json::Value responseOf(const ExchangeRecord& exchange, Keep keep) {
    const RecordedMessage& message = exchange.answer;
    const auto [version, status, reason] = words(message.head.firstLine);
    Json::Value json;
    json["status"] = std::atoi(status.c_str());  // 0: no answer
    json["statusText"] = reason;
    json["httpVersion"] = version.empty() ? "HTTP/1.1" : version;
    json["cookies"] = Json::arrayValue;
    json["headers"] = headersOf(message.head, keep);
    json["redirectURL"] = std::string(message.head.header("Location"));
    setSizes(json, message);
    Json::Value& content = json["content"];
    content["size"] = Json::UInt64(message.body.size());
    content["mimeType"] = message.body.contentType().empty() ? "x-unknown" : message.body.contentType();
    if (message.body.size() > 0) setText(content, message.body, "encoding");
    if (!exchange.error.empty()) json["_error"] = exchange.error;
    for (const BodyPart& part : message.body.parts()) {
        Json::Value& one = content["_parts"].append(Json::objectValue);
        one["time"] = between(exchange.answerBegan, part.arrived);
        one["size"] = Json::UInt64(part.size);
    }
    return json;
}

Json::Value timingsOf(const ExchangeRecord& exchange) {
    Json::Value json;
    for (const char* name : {"blocked", "dns", "ssl"})
        json[name] = -1;
    json["connect"] = exchange.connecting ? Json::Value(milliseconds(*exchange.connecting)) : -1;
    json["send"] = between(exchange.sendBegan, exchange.sendEnded);
    json["wait"] =
        between(exchange.sendEnded, exchange.answerBegan ? exchange.answerBegan : exchange.answerEnded);
    json["receive"] = between(exchange.answerBegan, exchange.answerEnded);
    for (const char* name : {"send", "wait", "receive"}) {  // these three can't do without a value
        if (json[name].asDouble() < 0) json[name] = 0;
    }
    return json;
}

}  // namespace

Json::Value harEntry(const ExchangeRecord& exchange, Keep keep) {
    Json::Value entry;
    entry["startedDateTime"] = timeText(exchange.began);
    entry["request"] = requestOf(exchange, keep);
    entry["response"] = responseOf(exchange, keep);
    entry["cache"] = Json::objectValue;
    entry["timings"] = timingsOf(exchange);
    double time = 0;
    for (const char* name : {"connect", "send", "wait", "receive"})
        time += std::max(entry["timings"][name].asDouble(), 0.0);
    entry["time"] = time;
    entry["serverIPAddress"] = exchange.device.substr(0, exchange.device.find(':'));
    entry["connection"] = std::to_string(exchange.connection);
    if (!exchange.error.empty()) entry["_error"] = exchange.error;
    return entry;
}

}  // namespace host
