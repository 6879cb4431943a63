#include "translate/XmlDocument.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <iterator>

#include "gateway/CXmlBase.h"

namespace velta {

namespace {

struct Escape {
    char character;
    std::string_view reference;
};
constexpr Escape kEscapes[] = {
    {'&', "&amp;"},  {'<', "&lt;"},    {'>', "&gt;"},
    {'"', "&quot;"}, {'\'', "&apos;"}, {'\r', "&#13;"},  // a reader would make a line feed of it
};

}  // namespace

std::string xmlElement(std::string_view name, std::string_view content, std::string_view attributes) {
    std::string element;
    element.reserve(2 * name.size() + attributes.size() + content.size() + 5);
    element.append("<").append(name).append(attributes).append(">").append(content);
    return element.append("</").append(name).append(">");
}

// The XML library's own writer lets everything between "&#x" and the next ";" through as it stands.
std::string xmlEscaped(std::string_view text) {
    std::string escaped;
    escaped.reserve(text.size());
    for (const char c : text) {
        const auto* const escape =
            std::find_if(std::begin(kEscapes), std::end(kEscapes),
                         [c](const Escape& candidate) { return candidate.character == c; });
        if (escape != std::end(kEscapes)) {
            escaped += escape->reference;
        } else {
            escaped += c;
        }
    }
    return escaped;
}

std::optional<std::string> rootChildText(const std::string& document, const char* name) {
    CXmlBase xml;
    if (xml.Parse(document.c_str()) == nullptr || !xml.SetRoot() || !xml.IntoElem() || !xml.FindElem(name)) {
        return std::nullopt;
    }
    return xml.GetData();
}

int leadingInt(const std::string& text) {
    const long number = std::strtol(text.c_str(), nullptr, 10);
    return static_cast<int>(std::clamp<long>(number, INT_MIN, INT_MAX));
}

}  // namespace velta
