#pragma once

#include <json/json.h>

#include <array>
#include <string>
#include <vector>

#include "access/table.h"

namespace veltasim {

struct Face {
    Json::Value info;     // "FaceDataRecord" as it came
    std::string picture;  // JPEG
    std::string url;      // where a host says that the picture is; empty: on the device

    std::string fpid() const { return info["FPID"].asString(); }
};

struct FaceLibrary {
    std::string fdid;
    std::string type;
    std::string name;
    Table<Face> faces;
};

// The pictures of persons, by libraries. What cannot be done is refused, by throwing Refused.
class Faces {
 public:
    explicit Faces(size_t capacity);

    const std::vector<FaceLibrary>& libraries() const { return libraries_; }
    // The library of that number, and of that type unless it is empty.
    const FaceLibrary& library(const std::string& fdid, const std::string& type) const;
    const FaceLibrary* findLibrary(const std::string& fdid) const;

    void add(const Json::Value& info, std::string picture);
    void addOrReplace(const Json::Value& info, std::string picture);
    void setUrl(const std::string& fdid, const std::string& type, const std::string& fpid, std::string url);
    void remove(const std::string& fdid, const std::string& type, const std::vector<std::string>& fpids);
    void removePerson(const std::string& employeeNo);
    void clear();
    bool knows(const std::string& employeeNo) const;  // in any library
    std::vector<const Face*> of(const std::string& employeeNo) const;
    size_t count() const;

 private:
    FaceLibrary& libraryToChange(const std::string& fdid, const std::string& type);

    size_t capacity_;
    std::vector<FaceLibrary> libraries_;
};

}  // namespace veltasim
