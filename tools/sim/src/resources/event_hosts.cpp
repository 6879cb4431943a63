#include "resources/access.h"
#include "xml.h"

namespace veltasim {
namespace {

constexpr const char* kList = "HttpHostNotificationList";

}  // namespace

Reply getEventHosts(const Call& call) {
    pugi::xml_document document;
    pugi::xml_node root = addRoot(document, kList);
    call.state.access.eventHosts.addElements(root);
    return {200, kXmlType, toText(document)};
}

Reply putEventHosts(const Call& call) {
    pugi::xml_document document;
    if (auto refusal = readDocument(call, kList, document)) return *refusal;
    call.state.access.eventHosts.set(document.document_element(), call.state.access.capacity.eventHosts);
    return done(call);
}

Reply deleteEventHosts(const Call& call) {
    call.state.access.eventHosts.clear();
    return done(call);
}

Reply getEventHostCapabilities(const Call& call) {
    pugi::xml_document document;
    pugi::xml_node root = addRoot(document, "HttpHostNotificationCap");
    addText(root, "hostNumber", std::to_string(call.state.access.capacity.eventHosts));
    return {200, kXmlType, toText(document)};
}

}  // namespace veltasim
