#include "json_text.h"

#include <algorithm>
#include <memory>
#include <sstream>

namespace veltasim {
namespace {

std::string quoted(const std::string& text) {
    // Making a writer costs far more than using it.
    thread_local const std::unique_ptr<Json::StreamWriter> writer = [] {
        Json::StreamWriterBuilder builder;
        builder["emitUTF8"] = true;
        builder["indentation"] = "";
        return std::unique_ptr<Json::StreamWriter>(builder.newStreamWriter());
    }();
    std::ostringstream out;
    writer->write(Json::Value(text), &out);
    return out.str();
}

std::string indented(const std::string& text) {
    std::string result;
    for (const char c : text) {
        result += c;
        if (c == '\n') result += '\t';
    }
    return result;
}

}  // namespace

JsonText& JsonText::add(const std::string& name, const std::string& text) {
    members_.emplace_back(name, quoted(text));
    return *this;
}

JsonText& JsonText::add(const std::string& name, int64_t number) {
    members_.emplace_back(name, std::to_string(number));
    return *this;
}

JsonText& JsonText::add(const std::string& name, const JsonText& object) {
    members_.emplace_back(name, indented(object.text()));
    return *this;
}

JsonText& JsonText::set(const std::string& name, const std::string& json) {
    const auto found = std::find_if(members_.begin(), members_.end(),
                                    [&](const auto& member) { return member.first == name; });
    if (found == members_.end())
        members_.emplace_back(name, json);
    else
        found->second = json;
    return *this;
}

std::string JsonText::text() const {
    std::string result = "{";
    const char* separator = "\n\t";
    for (const auto& [name, value] : members_) {
        result.append(separator).append(quoted(name)).append(":\t").append(value);
        separator = ",\n\t";
    }
    return result + "\n}";
}

bool parseJson(std::string_view text, Json::Value& value) {
    Json::CharReaderBuilder builder;
    Json::CharReaderBuilder::strictMode(&builder.settings_);
    builder["strictRoot"] = false;
    builder["failIfExtra"] = true;
    const std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
    return reader->parse(text.data(), text.data() + text.size(), &value, nullptr);
}

}  // namespace veltasim
