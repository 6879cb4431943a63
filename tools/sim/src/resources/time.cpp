#include "resources/resource.h"
#include "xml.h"

namespace veltasim {
namespace {

bool isZone(std::string_view text) {
    return text.starts_with("CST");
}

}  // namespace

Reply getTime(const Call& call) {
    pugi::xml_document document;
    pugi::xml_node root = addRoot(document, "Time");
    addText(root, "timeMode", "manual");
    addText(root, "localTime", call.state.clock.localTime());
    addText(root, "timeZone", call.state.clock.zone());
    return {200, kXmlType, toText(document)};
}

Reply putTime(const Call& call) {
    pugi::xml_document document;
    if (auto refusal = readDocument(call, "Time", document)) return *refusal;
    const pugi::xml_node zone = document.document_element().child("timeZone");
    const pugi::xml_node time = document.document_element().child("localTime");

    Clock changed = call.state.clock;
    if (zone) {
        if (!zone.text().empty() && !isZone(zone.text().get()))
            return refused(call, badParameter("timeZone"));
        changed.setZone(zone.text().get());
    }
    if (time) {
        const auto instant = changed.instantOf(time.text().get());
        if (!instant) return refused(call, badParameter("localTime"));
        changed.set(*instant);
    }
    call.state.clock = std::move(changed);
    return done(call);
}

Reply getTimeZone(const Call& call) {
    return {200, "text/plain; charset=\"UTF-8\"", call.state.clock.zone()};
}

Reply putTimeZone(const Call& call) {
    if (!isZone(call.request.body)) return refused(call, badParameter("timeZone"));
    call.state.clock.setZone(call.request.body);
    return done(call);
}

}  // namespace veltasim
