#include "access/person_rules.h"
#include "json_values.h"
#include "resources/access.h"

namespace veltasim {
namespace {

// The numbers of an array that may be missing.
std::set<unsigned> numbersIn(const Json::Value& object, const char* name) {
    std::set<unsigned> numbers;
    if (!object.isMember(name)) return numbers;
    for (const Json::Value& number : arrayIn(object, name)) {
        if (!number.isUInt()) throw Refused(badParameter(name));
        numbers.insert(number.asUInt());
    }
    return numbers;
}

std::set<unsigned> readersIn(const Access& access, const Json::Value& object) {
    std::set<unsigned> readers = numbersIn(object, "enableCardReader");
    for (const unsigned reader : readers) {
        if (!access.hasReader(reader)) throw Refused(kIllegalCardReaderNo);
    }
    return readers;
}

std::string fingerTypeIn(const Json::Value& object, const std::string& otherwise) {
    std::string type = textOr(object, "fingerType", otherwise);
    if (!isOneOf(type, kFingerTypes)) throw Refused(kErrorFingerPrintType);
    return type;
}

}  // namespace

void addFingerprint(Access& access, const Json::Value& config) {
    Fingerprint fingerprint{fingerTypeIn(config, "normalFP"), textIn(config, "fingerData"),
                            readersIn(access, config), memberOf(config, "leaderFP")};
    if (fingerprint.data.empty()) throw Refused(kFingerPrintDataLenZero);
    if (fingerprint.readers.empty()) fingerprint.readers = {1};
    access.people.addFingerprint(textIn(config, "employeeNo"), numberIn(config, "fingerPrintID"),
                                 std::move(fingerprint));
}

Reply postFingerprint(const Call& call) {
    const Json::Value body = readObject(call.request.body);
    Access& access = call.state.access;
    addFingerprint(access, objectIn(body, "FingerPrintCfg"));
    access.fingerprintDownload.start(access.backgroundTime);
    return done(call);
}

Reply getFingerprintProgress(const Call& call) {
    const Background& download = call.state.access.fingerprintDownload;
    Json::Value answer;
    answer["FingerPrintStatus"]["status"] = download.status();
    answer["FingerPrintStatus"]["done"] = download.isRunning() ? 0 : 1;
    return jsonReply(answer);
}

Reply postFingerprintModify(const Call& call) {
    const Json::Value body = readObject(call.request.body);
    const Json::Value& change = objectIn(body, "FingerPrintModify");
    Fingerprint& fingerprint = call.state.access.people.fingerprint(change);
    fingerprint.type = fingerTypeIn(change, fingerprint.type);
    if (change.isMember("leaderFP")) fingerprint.leaderFp = change["leaderFP"];
    return done(call);
}

// Each finger once for every reader that knows it.
Reply postFingerprintSearch(const Call& call) {
    const Json::Value body = readObject(call.request.body);
    const Json::Value& condition = objectIn(body, "FingerPrintCond");
    const unsigned onlyId = numberOr0(condition, "fingerPrintID");
    const unsigned onlyReader = numberOr0(condition, "cardReaderNo");
    Json::Value list = Json::arrayValue;
    for (const auto& [id, fingerprint] :
         call.state.access.people.person(textIn(condition, "employeeNo")).fingerprints) {
        for (const unsigned reader : fingerprint.readers) {
            if ((onlyId != 0 && id != onlyId) || (onlyReader != 0 && reader != onlyReader)) continue;
            Json::Value item;
            item["cardReaderNo"] = reader;
            item["fingerPrintID"] = id;
            item["fingerType"] = fingerprint.type;
            item["fingerData"] = fingerprint.data;
            if (!fingerprint.leaderFp.isNull()) item["leaderFP"] = fingerprint.leaderFp;
            list.append(item);
        }
    }
    Json::Value answer;
    Json::Value& info = answer["FingerPrintInfo"];
    info["searchID"] = textIn(condition, "searchID");
    info["status"] = list.empty() ? "NONE" : "OK";
    info["FingerPrintList"] = std::move(list);
    return jsonReply(answer);
}

// By person: those of "fingerPrintID" at the readers of "enableCardReader"; without a list every finger or reader
// is meant. By reader: what all persons have at "cardReaderNo".
Reply putFingerprintDelete(const Call& call) {
    const Json::Value body = readObject(call.request.body);
    const Json::Value& condition = objectIn(body, "FingerPrintDelete");
    Access& access = call.state.access;
    const std::string mode = textIn(condition, "mode");
    if (mode == "byEmployeeNo") {
        access.people.removeFingerprints(textIn(condition, "employeeNo"),
                                         numbersIn(condition, "fingerPrintID"), readersIn(access, condition));
    } else if (mode == "byCardReader") {
        const unsigned reader = numberIn(condition, "cardReaderNo");
        if (!access.hasReader(reader)) return refused(call, kIllegalCardReaderNo);
        for (const Person& person : access.people.persons())
            access.people.removeFingerprints(person.employeeNo(), {}, {reader});
    } else {
        return refused(call, badParameter("mode"));
    }
    access.fingerprintDeletion.start(access.backgroundTime);
    return done(call);
}

Reply getFingerprintDeleteProcess(const Call& call) {
    Json::Value answer;
    answer["FingerPrintDeleteProcess"]["status"] = call.state.access.fingerprintDeletion.status();
    return jsonReply(answer);
}

}  // namespace veltasim
