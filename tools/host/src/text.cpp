#include "text.h"

#include <json/reader.h>
#include <json/writer.h>

#include <array>
#include <cstdio>
#include <ctime>
#include <memory>

namespace host {
namespace {

std::string write(const Json::Value& value, const char* indentation, bool utf8) {
    Json::StreamWriterBuilder builder;
    builder["indentation"] = indentation;
    builder["emitUTF8"] = utf8;
    return Json::writeString(builder, value);
}

// The second byte of U+0080 to U+009F, which some terminals obey like escape sequences.
bool isUpperControl(char before, char c) {
    return before == '\xC2' && static_cast<unsigned char>(c) >= 0x80 && static_cast<unsigned char>(c) < 0xA0;
}

}  // namespace

std::string printable(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    for (const char c : text) {
        const auto code = static_cast<unsigned char>(c);
        if (!result.empty() && isUpperControl(result.back(), c))
            result.back() = '?';
        else if ((code < 0x20 && c != '\n' && c != '\t') || code == 0x7F)
            result += '?';
        else
            result += c;
    }
    return result;
}

bool parseJson(std::string_view text, Json::Value& value) {
    Json::CharReaderBuilder builder;
    Json::CharReaderBuilder::strictMode(&builder.settings_);
    builder["strictRoot"] = false;
    builder["rejectDupKeys"] = false;
    const std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
    try {
        if (reader->parse(text.data(), text.data() + text.size(), &value, nullptr)) return true;
    } catch (const Json::Exception&) {  // nested too deeply
    }
    value = Json::Value();
    return false;
}

std::string compactJson(const Json::Value& value) {
    return write(value, "", false);
}
std::string prettyJson(const Json::Value& value) {
    return write(value, "  ", true);
}

std::string member(const Json::Value& value, const char* name) {
    if (!value.isObject()) return "";
    const Json::Value& found = value[name];
    return found.isConvertibleTo(Json::stringValue) ? found.asString() : "";
}

std::string element(std::string_view xml, const std::string& name) {
    const std::string opening = "<" + name + ">";
    const size_t start = xml.find(opening);
    if (start == std::string_view::npos) return "";
    const size_t end = xml.find("</" + name + ">", start);
    if (end == std::string_view::npos) return "";
    return std::string(xml.substr(start + opening.size(), end - start - opening.size()));
}

std::string sizeText(size_t bytes) {
    std::array<char, 32> text{};
    if (bytes < 1024)
        std::snprintf(text.data(), text.size(), "%zu B", bytes);
    else
        std::snprintf(text.data(), text.size(), "%.1f KB", static_cast<double>(bytes) / 1024);
    return text.data();
}

std::string hexText(unsigned number) {
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "0x%08X", number);
    return text.data();
}

std::string clockText() {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    std::array<char, 16> text{};
    std::strftime(text.data(), text.size(), "%H:%M:%S", &local);
    return text.data();
}

}  // namespace host
