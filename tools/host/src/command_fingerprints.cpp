// velta-host fingerprints: the fingers of persons, and the readers that know them.

#include <fcntl.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cerrno>
#include <cstring>
#include <random>

#include "command_group.h"
#include "input.h"
#include "listing.h"
#include "text.h"

namespace host {
namespace {

constexpr const char* kListFooter = R"(
A finger is listed once for every reader that knows it. --json shows the templates, too.

Examples:
  velta-host fingerprints list --device 192.168.1.20 --employee 1001
  velta-host fingerprints list --device 192.168.1.20 --employee 1001 --json | jq -r .fingerprint.fingerData)";
constexpr const char* kCaptureFooter = R"(
The person puts the finger on the reader while the command waits. The template goes to standard output, or into a file
that nobody else may read.

Examples:
  velta-host fingerprints capture --device 192.168.1.20 --finger 1 --save finger.txt
  velta-host fingerprints capture --device 192.168.1.20 --finger 1 |
    velta-host fingerprints add --device 192.168.1.20 --password-file ~/.velta --employee 1001 --id 1 --template -)";
constexpr const char* kAddFooter = R"(
The readers learn the finger in the background: the command ends when they know it.

Examples:
  velta-host fingerprints add --device 192.168.1.20 --employee 1001 --id 1 --template finger.txt
  velta-host fingerprints add --device 192.168.1.20 --employee 1001 --id 2 --template finger.txt --readers 1,2)";
constexpr const char* kDeleteFooter = R"(
Without --id all fingers of the person are deleted, without --readers at all readers. --reader deletes what all persons
have at one reader.

Examples:
  velta-host fingerprints delete --device 192.168.1.20 --employee 1001
  velta-host fingerprints delete --device 192.168.1.20 --employee 1001 --id 2 --readers 1
  velta-host fingerprints delete --device 192.168.1.20 --reader 2)";

constexpr const char* kReadBack = "/VELTA/AccessControl/FingerPrintUpload";
constexpr const char* kCapture = "/VELTA/AccessControl/CaptureFingerPrint";
constexpr const char* kDownload = "/VELTA/AccessControl/FingerPrintDownload";
constexpr const char* kProgress = "/VELTA/AccessControl/FingerPrintProgress";
constexpr const char* kDelete = "/VELTA/AccessControl/FingerPrint/Delete";
constexpr const char* kDeleteProcess = "/VELTA/AccessControl/FingerPrint/DeleteProcess";

constexpr Column kColumns[] = {{"ID", "fingerPrintID"}, {"READER", "cardReaderNo"}, {"TYPE", "fingerType"}};

struct PersonOptions : DeviceOptions {
    std::string employee;
};
struct CaptureOptions : DeviceOptions {
    unsigned finger = 0;
    std::string file;
};
struct AddOptions : PersonOptions {
    unsigned id = 0;
    std::string file;
    std::string type;
    std::vector<unsigned> readers;
};
struct DeleteOptions : PersonOptions {
    std::vector<unsigned> ids;
    std::vector<unsigned> readers;
    unsigned onlyReader = 0;
};

Json::Value arrayOf(const std::vector<unsigned>& numbers) {
    Json::Value array = Json::arrayValue;
    for (const unsigned number : numbers)
        array.append(number);
    return array;
}

// A template lets somebody through: the file is new, and nobody else's.
void save(const std::string& path, const std::string& text) {
    const Fd file(open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR));
    const bool isWritten =
        file.get() >= 0 && write(file.get(), text.data(), text.size()) == static_cast<ssize_t>(text.size());
    if (!isWritten) throw Failure(ExitCode::Failed, path + ": " + std::strerror(errno));
}

ExitCode listFingerprints(const Site& site, const PersonOptions& options) {
    Json::Value body;
    Json::Value& condition = body["FingerPrintCond"];
    condition["searchID"] = newSearchId();
    condition["employeeNo"] = options.employee;
    const Json::Value answer = site.ask("POST", kReadBack, body);
    const Json::Value info = answer.isObject() ? answer["FingerPrintInfo"] : Json::Value();
    const Json::Value list = info.isObject() ? info["FingerPrintList"] : Json::Value();
    Listing listing(site, "fingerprint", kColumns);
    if (list.isArray()) listing.page(list);
    listing.end();
    return ExitCode::Ok;
}

ExitCode capture(const Site& site, const CaptureOptions& options) {
    Json::Value body;
    body["CaptureFingerPrintCond"]["fingerNo"] = options.finger;
    const Json::Value answer = site.ask("POST", kCapture, body);
    const Json::Value taken = answer.isObject() ? answer["CaptureFingerPrint"] : Json::Value();
    const std::string data = member(taken, "fingerData");
    if (data.empty()) throw Failure(ExitCode::Failed, "the reader has taken no fingerprint");
    const std::string quality = "quality " + member(taken, "fingerPrintQuality");
    if (!options.file.empty()) save(options.file, data + "\n");
    Json::Value json;
    json["capture"] = taken;
    if (!options.file.empty()) {
        json["file"] = options.file;
        site.report("capture", quality + " -> " + options.file, json);
    } else {
        site.report("capture", data, json);
        site.host.console.note("velta-host: " + quality);
    }
    return ExitCode::Ok;
}

ExitCode addFingerprint(const Site& site, const AddOptions& options) {
    std::string data = readInput(options.file, site.host.waiter);
    data.erase(data.find_last_not_of(" \t\r\n") + 1);
    Json::Value body;
    Json::Value& config = body["FingerPrintCfg"];
    config["employeeNo"] = options.employee;
    config["fingerPrintID"] = options.id;
    config["fingerData"] = data;
    if (!options.type.empty()) config["fingerType"] = options.type;
    if (!options.readers.empty()) config["enableCardReader"] = arrayOf(options.readers);
    site.ask("POST", kDownload, body);
    site.awaitWork("Adding the fingerprint", kProgress, "FingerPrintStatus");
    const std::string id = std::to_string(options.id);
    Json::Value json;
    json["employeeNo"] = options.employee;
    json["fingerPrintID"] = options.id;
    site.report("fingerprint", "fingerprint " + id + " of employee " + options.employee + " added", json);
    return ExitCode::Ok;
}

ExitCode deleteFingerprints(const Site& site, const DeleteOptions& options) {
    Json::Value body;
    Json::Value& condition = body["FingerPrintDelete"];
    if (options.onlyReader != 0) {
        condition["mode"] = "byCardReader";
        condition["cardReaderNo"] = options.onlyReader;
    } else {
        condition["mode"] = "byEmployeeNo";
        condition["employeeNo"] = options.employee;
        if (!options.ids.empty()) condition["fingerPrintID"] = arrayOf(options.ids);
        if (!options.readers.empty()) condition["enableCardReader"] = arrayOf(options.readers);
    }
    site.ask("PUT", kDelete, body);
    site.awaitWork("Deleting fingerprints", kDeleteProcess, "FingerPrintDeleteProcess");
    site.report("deletion", "fingerprints deleted", body);
    return ExitCode::Ok;
}

CLI::Option* addNumbers(CLI::App& command, const char* name, const char* help,
                        std::vector<unsigned>& numbers) {
    return command.add_option(name, numbers, help)
        ->type_name("LIST")
        ->delimiter(',')
        ->check(positiveNumber());
}

CLI::Option* addFinger(CLI::App& command, const char* name, const char* help, unsigned& number) {
    constexpr unsigned kFingers = 10;
    return command.add_option(name, number, help)
        ->required()
        ->type_name("N")
        ->check(CLI::Range(1U, kFingers).description(""));
}

}  // namespace

void addFingerprintsCommand(CLI::App& app, CommonOptions& common, Run& run) {
    CommandGroup group(app, "fingerprints", "List, capture, add and delete fingerprints", common, run);
    const auto list = std::make_shared<PersonOptions>();
    CLI::App& listCommand =
        group.add({"list", "List the fingerprints of a person", kListFooter}, list, listFingerprints);
    addTexts(listCommand, {{"--employee", "NO", "Employee number of the person", &list->employee, true}});

    const auto taking = std::make_shared<CaptureOptions>();
    CLI::App& captureCommand =
        group.add({"capture", "Have a reader take a finger", kCaptureFooter}, taking, capture);
    addFinger(captureCommand, "--finger", "Which finger, 1 to 10", taking->finger);
    addTexts(captureCommand, {{"--save", "FILE", "A new file for the template", &taking->file}});

    const auto add = std::make_shared<AddOptions>();
    CLI::App& addCommand = group.add({"add", "Give a person a fingerprint", kAddFooter}, add, addFingerprint);
    addTexts(addCommand, {{"--employee", "NO", "Employee number of the person", &add->employee, true}});
    addFinger(addCommand, "--id", "Number of the fingerprint, 1 to 10", add->id);
    addInputFile(addCommand, "--template", "The template, as capture gives it", add->file);
    addNumbers(addCommand, "--readers", "The readers that learn it, 1 otherwise", add->readers);
    addCommand.add_option("--type", add->type, "normalFP, hijackFP, patrolFP, superFP or dismissingFP")
        ->type_name("TYPE")
        ->check(
            CLI::IsMember({"normalFP", "hijackFP", "patrolFP", "superFP", "dismissingFP"}).description(""));

    const auto removal = std::make_shared<DeleteOptions>();
    CLI::App& deleteCommand =
        group.add({"delete", "Delete fingerprints", kDeleteFooter}, removal, deleteFingerprints);
    CLI::App& which = addChoice(deleteCommand, "Which", Choice::Required);
    addTexts(which, {{"--employee", "NO", "Those of this person", &removal->employee}});
    CLI::Option* reader =
        which.add_option("--reader", removal->onlyReader, "Those of all persons at this reader")
            ->type_name("N")
            ->check(positiveNumber());
    addNumbers(deleteCommand, "--id", "Only these numbers of the person's", removal->ids)->excludes(reader);
    addNumbers(deleteCommand, "--readers", "Only at these readers", removal->readers)->excludes(reader);
}

}  // namespace host
