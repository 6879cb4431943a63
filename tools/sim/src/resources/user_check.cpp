#include "resources/resource.h"
#include "xml.h"

namespace veltasim {

// Whoever gets here has been let in.
Reply getUserCheck(const Call&) {
    pugi::xml_document document;
    pugi::xml_node root = addRoot(document, "userCheck");
    addText(root, "httpStatus", "200");
    addText(root, "statusString", "OK");
    return {200, kXmlType, toText(document)};
}

}  // namespace veltasim
