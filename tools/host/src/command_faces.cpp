// velta-host faces: the pictures that a device recognises persons by.

#include <CLI/CLI.hpp>

#include "access_searches.h"
#include "command_group.h"
#include "exchange.h"
#include "input.h"
#include "listing.h"
#include "text.h"

namespace host {
namespace {

constexpr const char* kListFooter = R"(
Examples:
  velta-host faces list --device 192.168.1.20
  velta-host faces list --device 192.168.1.20 --face-library infraredFD --employee 1001)";
constexpr const char* kAddFooter = R"(
The person has to be there already. A person that has a face in the library already is refused; --replace puts the new
picture in its place.

Examples:
  velta-host faces add --device 192.168.1.20 --employee 1001 --picture ada.jpg
  velta-host faces add --device 192.168.1.20 --employee 1001 --picture ada.jpg --replace --face-library infraredFD)";
constexpr const char* kDeleteFooter = R"(
Examples:
  velta-host faces delete --device 192.168.1.20 1001 1002)";
constexpr const char* kCountFooter = R"(
Examples:
  velta-host faces count --device 192.168.1.20)";
constexpr const char* kModeFooter = R"(
Examples:
  velta-host faces mode --device 192.168.1.20
  velta-host faces mode --device 192.168.1.20 deepMode)";

constexpr const char* kRecord = "/VELTA/Intelligent/FDLib/FaceDataRecord";
constexpr const char* kSetUp = "/VELTA/Intelligent/FDLib/FDSetUp";
constexpr const char* kDelete = "/VELTA/Intelligent/FDLib/FDSearch/Delete";
constexpr const char* kCount = "/VELTA/Intelligent/FDLib/Count";
constexpr const char* kMode = "/VELTA/AccessControl/FaceRecognizeMode";
constexpr const char* kFaceExists = "deviceUserAlreadyExistFace";

constexpr Column kColumns[] = {{"EMPLOYEE", "employeeNo"}};

struct LibraryOptions : DeviceOptions {
    std::string library = "blackFD";
    std::vector<std::string> employees;
};
struct AddOptions : LibraryOptions {
    std::string employee;
    std::string picture;
    bool replace = false;
};
struct ModeOptions : DeviceOptions {
    std::string mode;
};

std::string hexOf(const std::string& bytes) {
    constexpr const char* kDigits = "0123456789ABCDEF";
    std::string hex;
    hex.reserve(bytes.size() * 2);
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        hex += kDigits[byte >> 4U];
        hex += kDigits[byte & 0xFU];
    }
    return hex;
}

std::string readJpeg(const std::string& path, Waiter& waiter) {
    std::string bytes = readInput(path, waiter);
    if (!bytes.starts_with("\xFF\xD8\xFF"))
        throw Failure(ExitCode::WrongUsage, path + " is no JPEG", "devices take no other pictures of faces");
    return bytes;
}

ExitCode listFaces(const Site& site, const LibraryOptions& options) {
    Json::Value condition;
    condition["faceLibType"] = options.library;
    if (!options.employees.empty()) condition["employeeNo"] = options.employees.front();
    return listAll(site, "face", kColumns, kFaceSearch, condition);
}

ExitCode addFace(const Site& site, const AddOptions& options) {
    const std::string picture = readJpeg(options.picture, site.host.waiter);
    Json::Value face;
    face[options.replace ? "FPID" : "employeeNo"] = options.employee;
    face["hexImg"] = hexOf(picture);
    face["faceLibType"] = options.library;
    Json::Value body;
    body["FaceInfo"] = face;
    try {
        options.replace ? site.ask("PUT", kSetUp, face) : site.ask("POST", kRecord, body);
    } catch (DeviceError& error) {
        if (error.status.name == kFaceExists) error.hint = "--replace puts the picture in its place";
        throw;
    }
    Json::Value json;
    json["employeeNo"] = options.employee;
    json["library"] = options.library;
    json["pictureBytes"] = Json::UInt64(picture.size());
    site.report("face", "face of employee " + options.employee + " stored, " + sizeText(picture.size()),
                json);
    return ExitCode::Ok;
}

ExitCode deleteFaces(const Site& site, const LibraryOptions& options) {
    Json::Value body;
    Json::Value& condition = body["FaceInfoDelCond"];
    condition["faceLibType"] = options.library;
    condition["EmployeeNoList"] = objectsOf("employeeNo", options.employees);
    site.ask("PUT", kDelete, body);
    site.report("deletion", counted(options.employees.size(), "face") + " deleted", body);
    return ExitCode::Ok;
}

ExitCode countFaces(const Site& site, const DeviceOptions&) {
    const Json::Value answer = site.ask("GET", kCount);
    const uint64_t count = numberAt(answer, ".FaceInfoCount.faceNumber");
    Json::Value json;
    json["faces"] = Json::UInt64(count);
    site.report("count", counted(count, "face") + " in all libraries", json);
    return ExitCode::Ok;
}

ExitCode faceMode(const Site& site, const ModeOptions& options) {
    if (!options.mode.empty()) {
        Json::Value body;
        body["FaceRecognizeMode"]["mode"] = options.mode;
        site.ask("PUT", kMode, body);
    }
    const Json::Value answer = site.ask("GET", kMode);
    Json::Value json;
    json["mode"] = answer.isObject() ? member(answer["FaceRecognizeMode"], "mode") : "";
    site.report("mode", json["mode"].asString(), json);
    return ExitCode::Ok;
}

void addLibrary(CLI::App& command, LibraryOptions& options) {
    command.add_option("--face-library", options.library, "blackFD, infraredFD or staticFD")
        ->type_name("TYPE")
        ->capture_default_str()
        ->check(CLI::IsMember({"blackFD", "infraredFD", "staticFD"}).description(""));
}

}  // namespace

void addFacesCommand(CLI::App& app, CommonOptions& common, Run& run) {
    CommandGroup group(app, "faces", "List, add, count and delete faces, and how they are recognised", common,
                       run);
    const auto list = std::make_shared<LibraryOptions>();
    CLI::App& listCommand = group.add({"list", "List the persons with a face", kListFooter}, list, listFaces);
    addLibrary(listCommand, *list);
    addList(listCommand, "--employee", "NO", "Only this employee number", list->employees)->expected(1);

    const auto add = std::make_shared<AddOptions>();
    CLI::App& addCommand = group.add({"add", "Store a person's face", kAddFooter}, add, addFace);
    addTexts(addCommand, {{"--employee", "NO", "Employee number of the person", &add->employee, true}});
    addInputFile(addCommand, "--picture", "The picture, a JPEG", add->picture);
    addLibrary(addCommand, *add);
    addCommand.add_flag("--replace", add->replace, "Replace a face that the person has already");

    const auto removal = std::make_shared<LibraryOptions>();
    CLI::App& deleteCommand = group.add({"delete", "Delete faces", kDeleteFooter}, removal, deleteFaces);
    addList(deleteCommand, "NO", "", "Employee numbers", removal->employees)->required();
    addLibrary(deleteCommand, *removal);

    group.add({"count", "Count the faces of all libraries", kCountFooter}, std::make_shared<DeviceOptions>(),
              countFaces);
    const auto mode = std::make_shared<ModeOptions>();
    CLI::App& modeCommand =
        group.add({"mode", "Show or set the mode of face recognition", kModeFooter}, mode, faceMode);
    modeCommand.add_option("MODE", mode->mode, "normalMode or deepMode; shown only without it")
        ->type_name("")
        ->check(CLI::IsMember({"normalMode", "deepMode"}).description(""));
}

}  // namespace host
