#include "state_json.h"

#include <algorithm>
#include <array>
#include <sstream>

#include "base64.h"
#include "json_text.h"
#include "json_values.h"
#include "pictures.h"
#include "resources/access.h"
#include "xml.h"

namespace veltasim {
namespace {

constexpr const char* kFormat = "velta-sim";
constexpr int kVersion = 1;
constexpr const char* kHosts = "HttpHostNotificationList";

// A part of the text, each one array of records.
struct Section {
    const char* name;
    Json::Value (*save)(const Access& access);
    void (*load)(Access& access, const Json::Value& record, size_t index, const Clock& clock);
};

Json::Value savePersons(const Access& access) {
    Json::Value list = Json::arrayValue;
    for (const Person& person : access.people.persons())
        list.append(person.info);
    return list;
}

void loadPerson(Access& access, const Json::Value& record, size_t, const Clock& clock) {
    access.people.addPerson(record, clock);
}

Json::Value saveCards(const Access& access) {
    Json::Value list = Json::arrayValue;
    for (const Card& card : access.people.cards())
        list.append(card.info);
    return list;
}

void loadCard(Access& access, const Json::Value& record, size_t, const Clock&) {
    access.people.addCard(record);
}

Json::Value saveFaces(const Access& access) {
    Json::Value list = Json::arrayValue;
    for (const FaceLibrary& library : access.faces.libraries()) {
        for (const Face& face : library.faces) {
            Json::Value& record = list.append(face.info);
            record["FDID"] = library.fdid;
            record["picture"] = base64(face.picture);
            if (!face.url.empty()) record["faceURL"] = face.url;
        }
    }
    return list;
}

void loadFace(Access& access, const Json::Value& record, size_t, const Clock&) {
    access.people.person(textIn(record, "FPID"));  // must exist
    const auto picture = fromBase64(textIn(record, "picture"));
    if (!picture) throw Refused(badParameter("picture"));
    Json::Value info = record;
    info.removeMember("picture");
    info.removeMember("faceURL");
    access.faces.add(info, *picture);
    if (record.isMember("faceURL"))
        access.faces.setUrl(info["FDID"].asString(), "", info["FPID"].asString(), textIn(record, "faceURL"));
}

Json::Value saveFingerprints(const Access& access) {
    Json::Value list = Json::arrayValue;
    for (const Person& person : access.people.persons()) {
        for (const auto& [id, fingerprint] : person.fingerprints) {
            Json::Value& record = list.append(Json::objectValue);
            record["employeeNo"] = person.employeeNo();
            record["fingerPrintID"] = id;
            record["fingerType"] = fingerprint.type;
            record["fingerData"] = fingerprint.data;
            for (const unsigned reader : fingerprint.readers)
                record["enableCardReader"].append(reader);
            if (!fingerprint.leaderFp.isNull()) record["leaderFP"] = fingerprint.leaderFp;
        }
    }
    return list;
}

void loadFingerprint(Access& access, const Json::Value& record, size_t, const Clock&) {
    addFingerprint(access, record);
}

Json::Value saveDoors(const Access& access) {
    Json::Value list = Json::arrayValue;
    for (const Door& door : access.doors) {
        Json::Value& record = list.append(Json::objectValue);
        record["doorName"] = door.name;
        record["openDuration"] = Json::Int64(door.openTime.count());
        record["mode"] = static_cast<int>(door.mode);
    }
    return list;
}

void loadDoor(Access& access, const Json::Value& record, size_t index, const Clock&) {
    const unsigned mode = numberIn(record, "mode");
    if (index >= access.doors.size()) throw Refused(badParameter("the device has fewer doors"));
    if (mode < 1 || mode > static_cast<unsigned>(Door::Mode::Normal)) throw Refused(badParameter("mode"));
    access.doors[index] = {textIn(record, "doorName"), std::chrono::seconds(numberIn(record, "openDuration")),
                           static_cast<Door::Mode>(mode)};
}

Json::Value saveReaders(const Access& access) {
    Json::Value list = Json::arrayValue;
    for (const Json::Value& reader : access.readers)
        list.append(reader);
    return list;
}

void loadReader(Access& access, const Json::Value& record, size_t index, const Clock&) {
    if (index >= access.readers.size()) throw Refused(kIllegalCardReaderNo);
    if (!memberOf(record, "enable").isBool()) throw Refused(badParameter("enable"));
    access.readers[index] = record;
}

Json::Value saveSchedules(const Access& access) {
    Json::Value list = Json::arrayValue;
    for (const Schedules::Kind kind : Schedules::kKinds) {
        for (const auto& [number, document] : access.schedules.written(kind)) {
            Json::Value& record = list.append(Json::objectValue);
            record["number"] = number;
            record[Schedules::nameOf(kind)] = document;
        }
    }
    return list;
}

void loadSchedule(Access& access, const Json::Value& record, size_t, const Clock&) {
    const unsigned number = numberIn(record, "number");
    const auto* kind = std::find_if(
        Schedules::kKinds.begin(), Schedules::kKinds.end(),
        [&](Schedules::Kind one) { return memberOf(record, Schedules::nameOf(one)).isObject(); });
    if (kind == Schedules::kKinds.end()) throw Refused(badParameter("a plan"));
    if (number < 1 || number > Schedules::maxOf(*kind)) throw Refused(badParameter("number"));
    access.schedules.set(*kind, number, record[Schedules::nameOf(*kind)]);
}

Json::Value saveEvents(const Access& access) {
    Json::Value list = Json::arrayValue;
    for (const LoggedEvent& logged : access.log.events()) {
        const AccessEvent& event = logged.event;
        Json::Value& record = list.append(Json::objectValue);
        record["serialNo"] = Json::UInt64(logged.serialNo);
        record["dateTime"] = event.dateTime;
        record["majorEventType"] = event.majorEventType;
        record["subEventType"] = event.subEventType;
        record["name"] = event.name;
        record["employeeNo"] = event.employeeNo;
        record["cardNo"] = event.cardNo;
        record["cardReaderNo"] = event.cardReaderNo;
        record["doorNo"] = event.doorNo;
        record["currentVerifyMode"] = event.currentVerifyMode;
        if (!logged.picture.empty()) record["picture"] = std::string(nameOfPicture(logged.picture));
    }
    return list;
}

void loadEvent(Access& access, const Json::Value& record, size_t, const Clock& clock) {
    const auto number = [&record](const char* name) { return static_cast<int>(numberIn(record, name)); };
    const auto instant = clock.instantOf(textIn(record, "dateTime"));
    if (!instant) throw Refused(kTimeFormatError);
    const AccessEvent event{.majorEventType = number("majorEventType"),
                            .subEventType = number("subEventType"),
                            .name = textIn(record, "name"),
                            .employeeNo = textIn(record, "employeeNo"),
                            .cardNo = textIn(record, "cardNo"),
                            .cardReaderNo = number("cardReaderNo"),
                            .doorNo = number("doorNo"),
                            .currentVerifyMode = textIn(record, "currentVerifyMode"),
                            .dateTime = textIn(record, "dateTime")};
    access.log.add(
        {memberOf(record, "serialNo").asUInt64(), *instant, event, pictureNamed(textOr(record, "picture"))});
}

// In the order in which they can be loaded.
constexpr std::array kSections{
    Section{"persons", savePersons, loadPerson},
    Section{"cards", saveCards, loadCard},
    Section{"faces", saveFaces, loadFace},
    Section{"fingerprints", saveFingerprints, loadFingerprint},
    Section{"doors", saveDoors, loadDoor},
    Section{"cardReaders", saveReaders, loadReader},
    Section{"schedules", saveSchedules, loadSchedule},
    Section{"events", saveEvents, loadEvent},
};

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
    for (const Section& section : kSections) {
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
    for (const Section& section : kSections)
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
