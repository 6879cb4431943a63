#include "resources/resource.h"
#include "xml.h"

namespace veltasim {

// Whoever gets here has been let in.
Reply getUserCheck(const Call&) {
    pugi::xml_document document;
    pugi::xml_node root = addRoot(document, "userCheck");
    addText(root, "statusValue", "200");
    addText(root, "statusString", "OK");
    addText(root, "isDefaultPassword", "false");
    addText(root, "isActivated", "true");
    return {200, kXmlType, toText(document)};
}

}  // namespace veltasim
