#include "access/faces.h"

#include <algorithm>
#include <numeric>

#include "json_values.h"
#include "status.h"

namespace veltasim {
namespace {

constexpr std::array<std::array<const char*, 3>, 3> kLibraries{
    {{"1", "blackFD", "Persons"}, {"2", "staticFD", "Strangers"}, {"3", "infraredFD", "Infrared"}}};

void checkPicture(const std::string& picture) {
    if (!picture.starts_with("\xff\xd8")) throw Refused(kPicFormatError);
}

}  // namespace

Faces::Faces(size_t capacity) : capacity_(capacity) {
    for (const auto& [fdid, type, name] : kLibraries)
        libraries_.push_back({fdid, type, name, {}});
}

const FaceLibrary* Faces::findLibrary(const std::string& fdid) const {
    const auto found = std::find_if(libraries_.begin(), libraries_.end(),
                                    [&](const FaceLibrary& library) { return library.fdid == fdid; });
    return found == libraries_.end() ? nullptr : &*found;
}

const FaceLibrary& Faces::library(const std::string& fdid, const std::string& type) const {
    const FaceLibrary* found = findLibrary(fdid);
    if (!found || (!type.empty() && found->type != type)) throw Refused(kFaceLibraryIdError);
    return *found;
}

FaceLibrary& Faces::libraryToChange(const std::string& fdid, const std::string& type) {
    return libraries_[static_cast<size_t>(&library(fdid, type) - libraries_.data())];
}

void Faces::add(const Json::Value& info, std::string picture) {
    const std::string fpid = textIn(info, "FPID");
    FaceLibrary& into = libraryToChange(textIn(info, "FDID"), textOr(info, "faceLibType"));
    checkPicture(picture);
    if (into.faces.find(fpid)) throw Refused(kAlreadyHasFace);
    if (count() >= capacity_) throw Refused(kDeviceFaceFull);
    into.faces.add(fpid, {info, std::move(picture), ""});
}

void Faces::addOrReplace(const Json::Value& info, std::string picture) {
    FaceLibrary& into = libraryToChange(textIn(info, "FDID"), textOr(info, "faceLibType"));
    Face* old = into.faces.find(textIn(info, "FPID"));
    if (!old) return add(info, std::move(picture));
    checkPicture(picture);
    mergeInto(old->info, info);
    old->picture = std::move(picture);
    old->url.clear();
}

void Faces::setUrl(const std::string& fdid, const std::string& type, const std::string& fpid,
                   std::string url) {
    Face* face = libraryToChange(fdid, type).faces.find(fpid);
    if (!face) throw Refused(kPictureNotExist);
    face->url = std::move(url);
}

void Faces::remove(const std::string& fdid, const std::string& type, const std::vector<std::string>& fpids) {
    Table<Face>& faces = libraryToChange(fdid, type).faces;
    if (!std::all_of(fpids.begin(), fpids.end(), [&](const std::string& fpid) { return faces.find(fpid); }))
        throw Refused(kDeleteNoExistFace);
    for (const std::string& fpid : fpids)
        faces.erase(fpid);
}

void Faces::removePerson(const std::string& employeeNo) {
    for (FaceLibrary& library : libraries_)
        library.faces.erase(employeeNo);
}

void Faces::clear() {
    for (FaceLibrary& library : libraries_)
        library.faces.clear();
}

bool Faces::knows(const std::string& employeeNo) const {
    return !of(employeeNo).empty();
}

std::vector<const Face*> Faces::of(const std::string& employeeNo) const {
    std::vector<const Face*> faces;
    for (const FaceLibrary& library : libraries_) {
        if (const Face* face = library.faces.find(employeeNo)) faces.push_back(face);
    }
    return faces;
}

size_t Faces::count() const {
    return std::accumulate(libraries_.begin(), libraries_.end(), size_t{0},
                           [](size_t sum, const FaceLibrary& library) { return sum + library.faces.size(); });
}

}  // namespace veltasim
