#include "resources/resource.h"
#include "xml.h"

namespace veltasim {

Reply getIoOutputStatus(const Call& call) {
    const auto index = indexIn(call, call.state.outputIsHigh.size());
    if (!index) return notFound(call);
    pugi::xml_document document;
    pugi::xml_node root = addRoot(document, "OutputStatus");
    addText(root, "portId", std::to_string(*index + 1));
    addText(root, "portType", "output");
    addText(root, "state", call.state.outputIsHigh[*index] ? "active" : "inactive");
    return {200, kXmlType, toText(document)};
}

Reply putIoOutputTrigger(const Call& call) {
    const auto index = indexIn(call, call.state.outputIsHigh.size());
    if (!index) return notFound(call);
    pugi::xml_document document;
    if (auto refusal = readDocument(call, "IOPortData", document)) return *refusal;
    const std::string_view state = document.document_element().child("outputState").text().get();
    if (state != "high" && state != "low") return refused(call, badParameter("outputState"));
    call.state.outputIsHigh[*index] = state == "high";
    return done(call);
}

}  // namespace veltasim
