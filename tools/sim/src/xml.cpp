#include "xml.h"

#include <sstream>

namespace veltasim {

pugi::xml_node addRoot(pugi::xml_document& document, const char* name) {
    pugi::xml_node declaration = document.append_child(pugi::node_declaration);
    declaration.append_attribute("version") = "1.0";
    declaration.append_attribute("encoding") = "UTF-8";
    pugi::xml_node root = document.append_child(name);
    root.append_attribute("version") = "2.0";
    root.append_attribute("xmlns") = "urn:velta:schema";
    return root;
}

void addText(pugi::xml_node& parent, const char* name, const std::string& text) {
    parent.append_child(name).text() = text.c_str();
}

std::string toText(const pugi::xml_document& document) {
    std::ostringstream out;
    document.save(out, "", pugi::format_indent | pugi::format_no_empty_element_tags, pugi::encoding_utf8);
    return out.str();
}

}  // namespace veltasim
