#include "pages.h"

#include <fnmatch.h>
#include <json/json.h>

#include <algorithm>
#include <pugixml.hpp>
#include <regex>
#include <sstream>
#include <stdexcept>

namespace docs {

namespace {

const std::string kUnchanged = "(the body, unchanged)";
constexpr size_t kWidth = 116;

bool parse(const std::string& text, Json::Value& value) {
    // The reader takes the "--" of a boundary for a number.
    if (const size_t at = text.find_first_not_of(" \n"); at == std::string::npos || text[at] != '{')
        return false;
    std::istringstream stream(text);
    return Json::parseFromStream(Json::CharReaderBuilder(), stream, &value, nullptr);
}

std::string squeezed(const std::string& text) {
    const std::string blanks = std::regex_replace(text, std::regex("\\s+"), " ");
    return std::regex_replace(blanks, std::regex("^ | $| (?=<)|(>) "), "$1");
}

bool matches(const std::string& pattern, const std::string& text) {
    return fnmatch(std::regex_replace(pattern, std::regex("[][?\\\\]"), "\\$&").c_str(), text.c_str(), 0) ==
           0;
}

bool matches(const Json::Value& shown, const Json::Value& actual) {
    if (shown == "*") return true;
    if (shown.isString() && actual.isString()) return matches(shown.asString(), actual.asString());
    if (shown.isObject() && actual.isObject() && shown.getMemberNames() != actual.getMemberNames())
        return false;
    if ((shown.isObject() && actual.isObject()) || (shown.isArray() && actual.isArray()))
        return std::equal(shown.begin(), shown.end(), actual.begin(), actual.end(),
                          [](const auto& a, const auto& b) { return matches(a, b); });
    return shown == actual;
}

/* On one line what fits; an object or array that does not has a line for each member. */
std::string prettyJson(const Json::Value& value, size_t depth = 1) {
    if (!value.isObject() && !value.isArray()) {
        Json::StreamWriterBuilder writer;
        writer["emitUTF8"] = true;
        return Json::writeString(writer, value);
    }
    Lines members;
    size_t length = 2 * depth;
    for (auto member = value.begin(); member != value.end(); ++member) {
        const std::string name = value.isObject() ? "\"" + member.name() + "\": " : "";
        length += members.emplace_back(name + prettyJson(*member, depth + 1)).size() + 2;
        if (members.back().find('\n') != std::string::npos) length = kWidth + 1;
    }
    const std::string indent(2 * depth, ' ');
    const bool fits = length <= kWidth;
    std::string text = value.isObject() ? "{" : "[";
    for (const std::string& member : members)
        text += (&member == &members.front() ? "" : fits ? ", " : ",") + (fits ? "" : "\n" + indent) + member;
    return text + (fits ? "" : "\n" + indent.substr(2)) + (value.isObject() ? "}" : "]");
}

std::vector<DeviceRequest> requestsIn(const std::string& text) {
    static const std::regex kRequestLine("(GET|PUT|POST|DELETE) /.*");
    std::vector<DeviceRequest> requests;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        if (std::regex_match(line, kRequestLine)) {
            requests.push_back({line, ""});
        } else if (!requests.empty()) {
            requests.back().body += line + "\n";
        }
    }
    return requests;
}

Example exampleOf(const std::string& place, const Block& block) {
    Json::Value envelope;
    if (!parse(block.text, envelope)) throw std::runtime_error(place + ": no JSON");
    const Json::Value& body = envelope["body"];
    const auto start = static_cast<size_t>(body.getOffsetStart());
    const auto end = static_cast<size_t>(body.getOffsetLimit());
    Example example;
    example.place = place;
    example.request = block;
    example.method = envelope["method"].asString();
    example.uri = envelope["uri"].asString();
    example.body = body.isString() ? body.asString() : block.text.substr(start, end - start);
    return example;
}

}  // namespace

std::vector<Example> examplesIn(const std::string& path, const Lines& page) {
    std::vector<Example> examples;
    Block block;
    bool isOpen = false;
    for (size_t at = 0; at < page.size(); ++at) {
        if (!page[at].starts_with("```")) {
            block.text += page[at] + "\n";
            continue;
        }
        isOpen = !isOpen;
        if (isOpen) {
            block = {"", "", at + 1};
            std::string language;
            std::istringstream(page[at].substr(3)) >> language >> block.mark >> block.flag;
            continue;
        }
        block.end = at;
        if (block.mark.empty()) continue;
        const std::string place = path + ":" + std::to_string(block.first);
        if (block.mark == "request") {
            examples.push_back(exampleOf(place, block));
            continue;
        }
        const bool isToDevice = block.mark == "to-device";
        const bool belongs = !examples.empty() && examples.back().answer.end == 0 &&
                             (isToDevice ? examples.back().toDevice.end == 0 : block.mark == "answer");
        if (!belongs) throw std::runtime_error(place + ": the block belongs to no example");
        (isToDevice ? examples.back().toDevice : examples.back().answer) = block;
    }
    return examples;
}

bool shows(const std::string& page, const std::string& actual) {
    Json::Value shown;
    Json::Value json;
    if (parse(page, shown) && parse(actual, json)) return matches(shown, json);
    return matches(squeezed(page), squeezed(actual));
}

bool showsRequests(const Example& example, const std::vector<DeviceRequest>& actual) {
    const auto shown = requestsIn(example.toDevice.text);
    return std::equal(shown.begin(), shown.end(), actual.begin(), actual.end(),
                      [&](const DeviceRequest& page, const DeviceRequest& request) {
                          if (page.line != request.line) return false;
                          if (squeezed(page.body) == kUnchanged) return request.body == example.body;
                          return shows(page.body, request.body);
                      });
}

std::string pretty(const std::string& text) {
    Json::Value json;
    if (parse(text, json)) return prettyJson(json) + "\n";
    pugi::xml_document xml;
    if (text.starts_with('<') &&
        xml.load_string(text.c_str(), pugi::parse_default | pugi::parse_declaration)) {
        std::ostringstream out;
        xml.save(out, "  ",
                 pugi::format_indent | pugi::format_no_declaration | pugi::format_no_empty_element_tags);
        return out.str();
    }
    const std::string lines = std::regex_replace(text, std::regex("\r|\n+$"), "");
    return std::regex_replace(lines, std::regex("[^\\x20-\\x7e\n]+"), "*") + "\n";
}

std::string prettyRequests(const Example& example, const std::vector<DeviceRequest>& actual) {
    std::string text;
    for (const DeviceRequest& request : actual) {
        text += (text.empty() ? "" : "\n") + request.line + "\n";
        if (request.body.empty()) continue;
        text += "\n" + (request.body == example.body ? kUnchanged + "\n" : pretty(request.body));
    }
    return text;
}

}  // namespace docs
