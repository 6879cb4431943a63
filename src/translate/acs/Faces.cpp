// Pictures of persons' faces, kept by the device in libraries of three types. Hosts name a library by its type;
// the device wants its id, so its libraries are read first.

#include <velta/result.h>

#include "device/CVeltaDevice.h"
#include "gateway/JsonText.h"
#include "gateway/Url.h"
#include "translate/HostRules.h"
#include "translate/JsonExchange.h"
#include "translate/acs/EmployeeList.h"
#include "translate/acs/HexPicture.h"

namespace {

using enum velta::JsonType;
using enum velta::Presence;
using velta::HostRule;

constexpr const char* kLibrariesPath = "/VELTA/Intelligent/FDLib";
constexpr const char* kModifyPath = "/VELTA/Intelligent/FDLib/FDSearch";
constexpr const char* kDeletePath = "/VELTA/Intelligent/FDLib/FDSearch/Delete";

constexpr const char* kDefaultLibrary = "blackFD";
constexpr const char* kLibraryTypes[] = {"blackFD", "infraredFD", "staticFD"};

// Checked before the libraries are read, and after.
constexpr HostRule kPicture[] = {
    {"employeeNo", Required, String},
    {"hexImg", Required, String},
};
constexpr HostRule kLibrary[] = {{"faceLibType", Optional, String, kLibraryTypes}};

constexpr HostRule kSetUpBody[] = {
    {"FPID", Required, String},
    {"hexImg", Required, String},
    {"faceLibType", Optional, String, kLibraryTypes},
};

constexpr HostRule kModifiedFace[] = {
    {"faceURL", Required, String},
    {"employeeNo", Required, String},
    {"faceLibType", Required, String, kLibraryTypes},
};
constexpr HostRule kModifyBody[] = {{"FaceInfo", Required, Object, {}, kModifiedFace}};

constexpr HostRule kDeleteCondition[] = {
    {"EmployeeNoList", Required, Array, {}, velta::kEmployee},
    {"faceLibType", Optional, String, kLibraryTypes},
};
constexpr HostRule kDeleteBody[] = {{"FaceInfoDelCond", Required, Object, {}, kDeleteCondition}};

/* Of a device, which counts each library. */
constexpr HostRule kLibraryCount[] = {{"recordDataNumber", Required, Integer}};
constexpr HostRule kCounts[] = {{"FDRecordDataInfo", Required, Array, {}, kLibraryCount}};

constexpr HostRule kSearchCondition[] = {
    {"searchID", Required, String},
    {"searchResultPosition", Required, Any},
    {"maxResults", Required, Any},
    {"employeeNo", Optional, String},
    {"faceLibType", Optional, String, kLibraryTypes},
};
constexpr HostRule kSearchBody[] = {{"FaceInfoSearchCond", Required, Object, {}, kSearchCondition}};

std::string libraryType(const Json::Value& object) {
    return object.get("faceLibType", kDefaultLibrary).asString();
}

std::string pictureOf(const Json::Value& object) {
    const char* begin = nullptr;
    const char* end = nullptr;
    if (!velta::memberOf(object, "hexImg").getString(&begin, &end)) return "";
    return velta::hexToStr({begin, end});
}

Json::Value withoutPicture(const Json::Value& object) {
    Json::Value rest(Json::objectValue);
    for (const std::string& name : object.getMemberNames()) {
        if (name != "hexImg") rest[name] = object[name];
    }
    return rest;
}

std::string parameter(const char* name, const std::string& value) {
    return std::string("&") + name + "=" + velta::percentEncoded(value);
}

Json::Value hostPage(const Json::Value& search, const Json::Value& page) {
    Json::Value host;
    host["searchID"] = search["searchID"];
    for (const char* const name : {"responseStatusStrg", "numOfMatches", "totalMatches"}) {
        if (page.isMember(name)) host[name] = page[name];
    }
    Json::Value& faces = host["FaceInfo"] = Json::Value(Json::arrayValue);
    const Json::Value& matches = page["MatchList"];
    if (!matches.isArray()) return host;
    for (const Json::Value& match : matches) {
        Json::Value face;
        face["employeeNo"] = velta::memberOf(match, "FPID");
        faces.append(std::move(face));
    }
    return host;
}

}  // namespace

// The map is made anew at each reading, so that a library that is gone is gone.
uint32_t CVeltaDevice::veltaGetFDLib() {
    std::string reply;
    Json::Value root;
    if (const uint32_t code = velta::readJsonResource(*this, reply, kLibrariesPath, root)) return code;
    std::map<std::string, std::string> libraries;
    const Json::Value& list = velta::memberOf(root, "FDLib");
    if (list.isArray()) {
        for (const Json::Value& library : list) {
            const Json::Value& type = velta::memberOf(library, "faceLibType");
            const Json::Value& id = velta::memberOf(library, "FDID");
            if (type.isString() && id.isConvertibleTo(Json::stringValue))
                libraries[type.asString()] = id.asString();
        }
    }
    const XPR_Guard guard(stateMutex_);
    faceLibraries_ = std::move(libraries);
    return VELTA_OK;
}

std::string CVeltaDevice::faceLibraryId(const std::string& type) const {
    const XPR_Guard guard(stateMutex_);
    const auto library = faceLibraries_.find(type);
    return library != faceLibraries_.end() ? library->second : "";
}

uint32_t CVeltaDevice::veltaAddAcsFace(std::string& answer, const std::string& path,
                                       const velta::HostBody& body) {
    const XPR_Guard lock(requestMutex_);
    if (!body.json.isObject()) return VELTA_E_BAD_PARAMETER;
    const Json::Value& face = velta::memberOf(body.json, "FaceInfo");
    Json::Value record;
    if (face.isObject()) {
        if (!velta::keepsRules(face, kPicture)) return VELTA_E_BAD_PARAMETER;
        if (const uint32_t code = veltaGetFDLib()) return code;
        if (!velta::keepsRules(face, kLibrary)) return VELTA_E_BAD_PARAMETER;
        record["faceLibType"] = libraryType(face);
        record["FDID"] = faceLibraryId(libraryType(face));
        record["FPID"] = face["employeeNo"];
    } else {  // the host speaks the device's own words
        record = withoutPicture(body.json);
    }
    const int32_t sent = sendHttpReqToDevicebyForm(answer, path + "?format=json", velta::writeJson(record),
                                                   pictureOf(face.isObject() ? face : body.json), kPost);
    if (sent != 0) return isOnline() ? static_cast<uint32_t>(sent) : velta::kDeviceOffline;
    return velta::judgeJsonAnswer(answer);
}

uint32_t CVeltaDevice::veltaSetUpAcsFace(std::string& answer, const std::string& path,
                                         const velta::HostBody& body) {
    const XPR_Guard lock(requestMutex_);
    if (const uint32_t code = veltaGetFDLib()) return code;
    if (!velta::keepsRules(body.json, kSetUpBody)) return VELTA_E_BAD_PARAMETER;
    Json::Value record = withoutPicture(body.json);
    record["faceLibType"] = libraryType(body.json);
    record["FDID"] = faceLibraryId(libraryType(body.json));
    const int32_t sent = sendHttpReqToDevicebyForm(answer, path + "?format=json", velta::writeJson(record),
                                                   pictureOf(body.json), kPut);
    return sent != 0 ? static_cast<uint32_t>(sent) : velta::judgeJsonAnswer(answer);
}

uint32_t CVeltaDevice::veltaSetAcsFace(std::string& answer, const std::string&, const velta::HostBody& body) {
    const XPR_Guard lock(requestMutex_);
    if (const uint32_t code = veltaGetFDLib()) return code;
    if (!velta::keepsRules(body.json, kModifyBody)) return VELTA_E_BAD_PARAMETER;
    const Json::Value& face = body.json["FaceInfo"];
    const std::string type = libraryType(face);
    Json::Value document;
    document["faceURL"] = face["faceURL"];
    return velta::orderJson(*this, answer, kModifyPath, velta::writeJson(document), kPut,
                            parameter("FDID", faceLibraryId(type)) +
                                parameter("FPID", face["employeeNo"].asString()) +
                                parameter("faceLibType", type));
}

uint32_t CVeltaDevice::veltaDeleteAcsFace(std::string& answer, const std::string&,
                                          const velta::HostBody& body) {
    const XPR_Guard lock(requestMutex_);
    if (const uint32_t code = veltaGetFDLib()) return code;
    if (!velta::keepsRules(body.json, kDeleteBody)) return VELTA_E_BAD_PARAMETER;
    const Json::Value& condition = body.json["FaceInfoDelCond"];
    const std::string type = libraryType(condition);
    Json::Value document;
    Json::Value& persons = document["FPID"] = Json::Value(Json::arrayValue);
    for (const Json::Value& person : condition["EmployeeNoList"]) {
        Json::Value item;
        item["value"] = person["employeeNo"];
        persons.append(std::move(item));
    }
    return velta::orderJson(*this, answer, kDeletePath, velta::writeJson(document), kPut,
                            parameter("FDID", faceLibraryId(type)) + parameter("faceLibType", type));
}

uint32_t CVeltaDevice::veltaGetAcsFaceCount(std::string& answer, const std::string& path) {
    Json::Value root;
    if (const uint32_t code = velta::readJsonResource(*this, answer, path, root)) return code;
    if (!velta::keepsRules(root, kCounts)) return VELTA_E_BAD_PARAMETER;
    Json::Int64 sum = 0;
    for (const Json::Value& library : root["FDRecordDataInfo"])
        sum += library["recordDataNumber"].asInt();
    Json::Value host;
    host["FaceInfoCount"]["faceNumber"] = sum;
    answer = velta::writeJson(host);
    return VELTA_OK;
}

uint32_t CVeltaDevice::veltaSearchAcsFace(std::string& answer, const std::string& path,
                                          const velta::HostBody& body) {
    if (const uint32_t code = veltaGetFDLib()) return code;
    if (!velta::keepsRules(body.json, kSearchBody)) return VELTA_E_BAD_PARAMETER;
    const Json::Value& search = body.json["FaceInfoSearchCond"];
    Json::Value condition;
    condition["searchResultPosition"] = search["searchResultPosition"];
    condition["maxResults"] = search["maxResults"];
    condition["faceLibType"] = libraryType(search);
    condition["FDID"] = faceLibraryId(libraryType(search));
    if (search.isMember("employeeNo")) condition["FPID"] = search["employeeNo"];
    const std::string document = velta::writeJson(condition);
    if (const uint32_t sent = velta::exchangeJson(*this, answer, path, document, kPost)) return sent;
    Json::Value root;
    if (!velta::readJsonAnswer(answer, root)) return velta::kBadJsonContent;
    if (root.isMember("statusCode")) {
        if (const uint32_t code = velta::judgeJsonAnswer(root)) return code;
    }
    Json::Value host;
    host["FaceInfoSearch"] = hostPage(search, root);
    answer = velta::writeJson(host);
    return VELTA_OK;
}
