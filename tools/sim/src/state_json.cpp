#include "state_json.h"

#include "json_values.h"
#include "state_sections.h"
#include "status.h"
#include "xml.h"

namespace veltasim {
namespace {

constexpr const char* kFormat = "velta-sim";
constexpr int kVersion = 1;
constexpr const char* kHosts = "HttpHostNotificationList";

std::string saveHosts(const Access& access) {
    pugi::xml_document document;
    pugi::xml_node root = addRoot(document, kHosts);
    access.eventHosts.addElements(root);
    return toText(document);
}

void loadHosts(Access& access, const Json::Value& text) {
    pugi::xml_document document;
    if (!text.isString() || !document.load_string(text.asCString())) throw Refused(kBadXmlFormat);
    access.eventHosts.set(document.document_element(), access.capacity.eventHosts);
}

// Whatever the function throws, said with the place in the text.
template <typename Function>
void at(const std::string& place, Function function) {
    try {
        function();
    } catch (const Refused& refused) {
        const std::string_view what = refused.status.subStatus;
        const std::string_view more = refused.status.errorMessage;
        throw std::runtime_error(place + ": " + std::string(what) +
                                 (more == what ? "" : ", " + std::string(more)));
    } catch (const Json::Exception& error) {
        throw std::runtime_error(place + ": " + error.what());
    }
}

Access accessFrom(const Json::Value& json, const Options& options, const Clock& clock) {
    Access access(options);
    for (const Section& section : stateSections()) {
        const Json::Value& list = json[section.name];
        if (!list.isNull() && !list.isArray())
            throw std::runtime_error(std::string(section.name) + ": no array");
        for (Json::ArrayIndex i = 0; i < list.size(); ++i)
            at(std::string(section.name) + "[" + std::to_string(i) + "]",
               [&] { section.load(access, list[i], i, clock); });
    }
    if (json.isMember("eventHosts")) at("eventHosts", [&] { loadHosts(access, json["eventHosts"]); });
    access.faceRecognizeMode = textOr(json, "faceRecognizeMode", access.faceRecognizeMode);
    return access;
}

}  // namespace

std::string stateToText(const State& state, uint64_t lastSerialNo) {
    Json::Value json;
    json[kFormat] = kVersion;
    json["deviceName"] = state.deviceInfo.deviceName;
    json["timeZone"] = state.clock.zone();
    json["lastSerialNo"] = Json::UInt64(lastSerialNo);
    for (const Section& section : stateSections())
        json[section.name] = section.save(state.access);
    json["eventHosts"] = saveHosts(state.access);
    json["faceRecognizeMode"] = state.access.faceRecognizeMode;
    return jsonReply(json).body + "\n";
}

uint64_t stateFromText(State& state, const Options& options, const std::string& text) {
    Json::Value json;
    at("state", [&] { json = readObject(text); });
    if (json[kFormat] != kVersion)
        throw std::runtime_error("no state of a simulated device, or of another version");
    Clock clock = state.clock;
    clock.setZone(textOr(json, "timeZone", clock.zone()));
    Access access = accessFrom(json, options, clock);
    uint64_t lastSerialNo = 0;
    at("lastSerialNo", [&] { lastSerialNo = json["lastSerialNo"].asUInt64(); });

    state.access = std::move(access);
    state.clock = std::move(clock);
    state.deviceInfo.deviceName = textOr(json, "deviceName", state.deviceInfo.deviceName);
    return lastSerialNo;
}

}  // namespace veltasim
