#pragma once

#include <json/json.h>

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace veltasim {

constexpr const char* kJsonType = "application/json; charset=\"UTF-8\"";

// A JSON object as devices write it: members in the order they were added, one a line, indented with tabs.
class JsonText {
 public:
    JsonText& add(const std::string& name, const std::string& text);
    JsonText& add(const std::string& name, int64_t number);
    JsonText& add(const std::string& name, const JsonText& object);
    // The value as JSON text; replaces a member of that name.
    JsonText& set(const std::string& name, const std::string& json);

    std::string text() const;

 private:
    std::vector<std::pair<std::string, std::string>> members_;  // name, value as JSON text
};

// Nothing but white space may follow the value. False: not JSON.
bool parseJson(std::string_view text, Json::Value& value);

}  // namespace veltasim
