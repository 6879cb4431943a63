#include "translate/XmlDocument.h"

#include "gateway/CXmlBase.h"

namespace velta {

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
        switch (c) {
            case '&':
                escaped += "&amp;";
                break;
            case '<':
                escaped += "&lt;";
                break;
            case '>':
                escaped += "&gt;";
                break;
            case '"':
                escaped += "&quot;";
                break;
            case '\'':
                escaped += "&apos;";
                break;
            case '\r':  // a reader would make a line feed of it
                escaped += "&#13;";
                break;
            default:
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

}  // namespace velta
