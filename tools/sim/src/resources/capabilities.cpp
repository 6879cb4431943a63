#include "access/person_rules.h"
#include "json_values.h"
#include "resources/access.h"

namespace veltasim {
namespace {

Json::Value range(int min, unsigned max) {
    Json::Value json;
    json["@min"] = min;
    json["@max"] = max;
    return json;
}

Json::Value choice(const std::string& values) {
    Json::Value json;
    json["@opt"] = values;
    return json;
}

}  // namespace

Reply getAccessControlCapabilities(const Call&) {
    Json::Value answer;
    for (const char* name :
         {"supportsUserInfo", "supportsUserInfoDetailDelete", "supportsCardInfo", "supportsFDLib",
          "supportsFingerPrintCfg", "supportsFingerPrintDelete", "supportsCaptureFingerPrint",
          "supportsCardReaderCfg", "supportsUserRightWeekPlanCfg", "supportsUserRightHolidayPlanCfg",
          "supportsUserRightHolidayGroupCfg", "supportsUserRightPlanTemplate", "supportsFaceRecognizeMode",
          "supportsRemoteControlDoor", "supportsDoorParam", "supportsAcsWorkStatus", "supportsAcsEvent",
          "supportsHttpHosts"})
        answer["AccessControl"][name] = true;
    return jsonReply(answer);
}

Reply getPersonCapabilities(const Call& call) {
    Json::Value answer;
    Json::Value& person = answer["UserInfo"];
    person["maxRecordNum"] = call.state.access.capacity.persons;
    person["employeeNo"] = range(1, 32);
    person["name"] = range(0, 128);
    person["userType"] = choice(kUserTypes);
    person["Valid"]["enable"] = choice("true,false");
    person["Valid"]["timeType"] = choice("local,UTC");
    person["doorRight"] = range(1, static_cast<unsigned>(call.state.access.doors.size()));
    person["maxCards"] = call.state.access.capacity.cardsPerPerson;
    return jsonReply(answer);
}

Reply getCardCapabilities(const Call& call) {
    Json::Value answer;
    Json::Value& card = answer["CardInfo"];
    card["maxRecordNum"] = call.state.access.capacity.cards;
    card["cardNo"] = range(1, 32);
    card["employeeNo"] = range(1, 32);
    card["cardType"] = choice(kCardTypes);
    return jsonReply(answer);
}

Reply getFaceCapabilities(const Call& call) {
    std::string types;
    for (const FaceLibrary& library : call.state.access.faces.libraries())
        types.append(types.empty() ? "" : ",").append(library.type);
    Json::Value answer = okJson();
    answer["FDRecordDataMaxNum"] = call.state.access.capacity.faces;
    answer["faceLibType"] = choice(types);
    return jsonReply(answer);
}

Reply getFaceRecognizeModeCapabilities(const Call&) {
    Json::Value answer;
    answer["FaceRecognizeMode"]["mode"] = choice("normalMode,deepMode");
    return jsonReply(answer);
}

Reply getFingerprintCapabilities(const Call& call) {
    const Access& access = call.state.access;
    Json::Value answer;
    Json::Value& finger = answer["FingerPrintCfg"];
    finger["maxRecordNum"] = access.capacity.fingerprints;
    finger["employeeNo"] = range(1, 32);
    finger["fingerPrintID"] = range(1, 10);
    finger["fingerType"] = choice(kFingerTypes);
    finger["enableCardReader"] = range(1, static_cast<unsigned>(access.readers.size()));
    return jsonReply(answer);
}

Reply getFingerprintDeleteCapabilities(const Call& call) {
    Json::Value answer;
    Json::Value& deletion = answer["FingerPrintDelete"];
    deletion["mode"] = choice("byEmployeeNo,byCardReader");
    deletion["cardReaderNo"] = range(1, static_cast<unsigned>(call.state.access.readers.size()));
    return jsonReply(answer);
}

}  // namespace veltasim
