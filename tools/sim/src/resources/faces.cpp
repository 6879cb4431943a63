#include "form.h"
#include "json_values.h"
#include "resources/access.h"
#include "resources/search_page.h"
#include "url.h"

namespace veltasim {
namespace {

constexpr const char* kPictures = "/VELTA/Intelligent/FDLib/Pictures/";

struct FaceForm {
    Json::Value info;
    std::string picture;
};

FaceForm readForm(const Call& call) {
    const std::string_view type = call.request.header("Content-Type");
    FaceForm form{readObject(formPart(type, call.request.body, "FaceDataRecord")),
                  std::string(formPart(type, call.request.body, "FaceImage"))};
    call.state.access.people.person(textIn(form.info, "FPID"));  // must exist
    return form;
}

std::string query(const Call& call, const char* name) {
    return queryValue(call.request.target, name);
}

Json::Value toJson(const FaceLibrary& library) {
    Json::Value json;
    json["FDID"] = library.fdid;
    json["faceLibType"] = library.type;
    json["name"] = library.name;
    return json;
}

std::string urlOf(const Call& call, const FaceLibrary& library, const Face& face) {
    if (!face.url.empty()) return face.url;
    return std::string("http://").append(call.request.header("Host")).append(kPictures) + library.fdid + "/" +
           percentEncoded(face.fpid());
}

}  // namespace

Reply getFaceLibraries(const Call& call) {
    Json::Value answer = okJson();
    for (const FaceLibrary& library : call.state.access.faces.libraries())
        answer["FDLib"].append(toJson(library));
    return jsonReply(answer);
}

Reply postFace(const Call& call) {
    FaceForm form = readForm(call);
    call.state.access.faces.add(form.info, std::move(form.picture));
    return done(call);
}

Reply putFace(const Call& call) {
    FaceForm form = readForm(call);
    call.state.access.faces.addOrReplace(form.info, std::move(form.picture));
    return done(call);
}

Reply postFaceSearch(const Call& call) {
    const Json::Value condition = readObject(call.request.body);
    const FaceLibrary& library =
        call.state.access.faces.library(textIn(condition, "FDID"), textOr(condition, "faceLibType"));
    std::vector<const Face*> matches;
    const std::string fpid = textOr(condition, "FPID");
    if (fpid.empty())
        matches = allOf(library.faces);
    else if (const Face* face = library.faces.find(fpid))
        matches.push_back(face);
    Json::Value answer = okJson();
    addPage(answer, condition, matches, "MatchList", [&](const Face& face) {
        Json::Value match;
        match["FPID"] = face.fpid();
        match["faceURL"] = urlOf(call, library, face);
        return match;
    });
    return jsonReply(answer);
}

Reply putFaceUrl(const Call& call) {
    const std::string url = textIn(readObject(call.request.body), "faceURL");
    if (url.empty()) return refused(call, badParameter("faceURL"));
    call.state.access.faces.setUrl(query(call, "FDID"), query(call, "faceLibType"), query(call, "FPID"), url);
    return done(call);
}

Reply putFaceDelete(const Call& call) {
    const auto fpids = textsIn(readObject(call.request.body), "FPID", "value");
    call.state.access.faces.remove(query(call, "FDID"), query(call, "faceLibType"), fpids);
    return done(call);
}

Reply getFaceCount(const Call& call) {
    Json::Value answer = okJson();
    for (const FaceLibrary& library : call.state.access.faces.libraries()) {
        Json::Value info = toJson(library);
        info["recordDataNumber"] = Json::UInt64(library.faces.size());
        answer["FDRecordDataInfo"].append(info);
    }
    return jsonReply(answer);
}

Reply getFacePicture(const Call& call) {
    const FaceLibrary* library = call.state.access.faces.findLibrary(call.variables.at(0));
    const Face* face = library ? library->faces.find(percentDecoded(call.variables.at(1))) : nullptr;
    return face ? Reply{200, "image/jpeg", face->picture} : notFound(call);
}

}  // namespace veltasim
