#pragma once

#include <pugixml.hpp>
#include <string>

namespace veltasim {

constexpr const char* kXmlType = "application/xml; charset=\"UTF-8\"";

// Starts a document: declaration and root element with the protocol's version and name space.
pugi::xml_node addRoot(pugi::xml_document& document, const char* name);
void addText(pugi::xml_node& parent, const char* name, const std::string& text);
// One element a line.
std::string toText(const pugi::xml_document& document);

}  // namespace veltasim
