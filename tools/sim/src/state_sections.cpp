#include "state_sections.h"

#include <algorithm>
#include <array>

#include "base64.h"
#include "json_values.h"
#include "pictures.h"
#include "resources/access.h"

namespace veltasim {
namespace {

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
        record["major"] = event.major;
        record["minor"] = event.minor;
        record["name"] = event.name;
        record["employeeNo"] = event.employeeNo;
        record["cardNo"] = event.cardNo;
        record["cardReaderNo"] = event.cardReaderNo;
        record["doorNo"] = event.doorNo;
        record["verifyMode"] = event.verifyMode;
        if (!logged.picture.empty()) record["picture"] = std::string(nameOfPicture(logged.picture));
    }
    return list;
}

void loadEvent(Access& access, const Json::Value& record, size_t, const Clock& clock) {
    const auto number = [&record](const char* name) { return static_cast<int>(numberIn(record, name)); };
    const auto instant = clock.instantOf(textIn(record, "dateTime"));
    if (!instant) throw Refused(kTimeFormatError);
    const AccessEvent event{.major = number("major"),
                            .minor = number("minor"),
                            .name = textIn(record, "name"),
                            .employeeNo = textIn(record, "employeeNo"),
                            .cardNo = textIn(record, "cardNo"),
                            .cardReaderNo = number("cardReaderNo"),
                            .doorNo = number("doorNo"),
                            .verifyMode = textIn(record, "verifyMode"),
                            .dateTime = textIn(record, "dateTime")};
    access.log.add(
        {memberOf(record, "serialNo").asUInt64(), *instant, event, pictureNamed(textOr(record, "picture"))});
}

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

}  // namespace

std::span<const Section> stateSections() {
    return kSections;
}

}  // namespace veltasim
