/* Parts of the XML documents that go to and come from devices. */
#ifndef VELTA_TRANSLATE_XMLDOCUMENT_H
#define VELTA_TRANSLATE_XMLDOCUMENT_H

#include <optional>
#include <string>
#include <string_view>

namespace velta {

inline constexpr char kXmlDeclaration[] = R"(<?xml version="1.0" encoding="UTF-8"?>)";
/* The attributes of a root element; the second set for the few documents that have no version. */
inline constexpr char kXmlRoot[] = R"( version="2.0" xmlns="urn:velta:schema")";
inline constexpr char kXmlRootUnversioned[] = R"( xmlns="urn:velta:schema")";

/* An element with its content as it stands. attributes: empty, or one blank and the attributes. */
std::string xmlElement(std::string_view name, std::string_view content, std::string_view attributes = {});

/* Text to stand between tags or in an attribute. */
std::string xmlEscaped(std::string_view text);

/* The text of the root's first child of that name, empty when the child has none; nothing when there is no
 * such child, or no document. */
std::optional<std::string> rootChildText(const std::string& document, const char* name);

/* The number at the start of a text, as devices write numbers: 0 when there is none, the nearest int when it
 * is none. */
int leadingInt(const std::string& text);

}  // namespace velta

#endif
