// velta-host persons: who may pass.

#include <fcntl.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <stdexcept>

#include "access_searches.h"
#include "command_group.h"
#include "input.h"
#include "listing.h"
#include "person_export.h"
#include "person_import.h"
#include "text.h"

namespace host {
namespace {

constexpr const char* kListFooter = R"(
Examples:
  velta-host persons list --device 192.168.1.20
  velta-host persons list --device 192.168.1.20 --employee 1001
  velta-host persons list --device 192.168.1.20 --json | jq -r .person.name)";
constexpr const char* kAddFooter = R"(
Without --begin a person is valid from today on, without --end until the end of 2037, and without --doors for door 1.

Examples:
  velta-host persons add --device 192.168.1.20 --employee 1001 --name "Ada Example" --doors 1,2 --card 1234567890
  velta-host persons add --device 192.168.1.20 --employee V7 --name Guest --type visitor --end 2026-12-24T18:00:00)";
constexpr const char* kModifyFooter = R"(
What is not given stays as it is. Cards are added; velta-host cards takes them away.

Examples:
  velta-host persons modify --device 192.168.1.20 --employee 1001 --name "Ada Sample"
  velta-host persons modify --device 192.168.1.20 --employee 1001 --doors none)";
constexpr const char* kImportFooter = R"(
The first line names the columns, in any order: employeeNo and any of name, userType, enable, beginTime, endTime,
timeType, doorRight, planTemplateNo and cardNo. Fields stand between commas, in quotes where they hold commas themselves;
the text is UTF-8. doorRight is like 1,2 (in quotes) or none; planTemplateNo is one number for these doors, or 1:1;2:3 for
doors of their own, or none, and 1 unless given; cardNo is like 12345;67890:superCard. In an empty field a new person gets
a default (see persons add --help) and a known one keeps what it has.

A file can be imported again: a person that the device has already is modified, and a card that the person has already
stays. Cards that are not in the file stay too. After single failures the import goes on; at the end it lists them with
their lines, and the exit code is 1.

Examples:
  velta-host persons import --device 192.168.1.20 staff.csv
  velta-host persons import --device 192.168.1.20 --password-file ~/.velta - < staff.csv
  velta-host persons import --device 192.168.1.20 staff.csv --json | jq 'select(.type == "failure")')";
constexpr const char* kExportFooter = R"(
Import reads the file again, on this device or another one. Members of persons that are no column are left out.

Examples:
  velta-host persons export --device 192.168.1.20 staff.csv
  velta-host persons export --device 192.168.1.20 | grep visitor)";
constexpr const char* kDeleteFooter = R"(
The device deletes in the background: the command ends when it has finished. --all asks before it does so; --yes answers,
which is needed where there is no terminal.

Examples:
  velta-host persons delete --device 192.168.1.20 1001 1002
  velta-host persons delete --device 192.168.1.20 --all --yes)";

constexpr const char* kDelete = "/VELTA/AccessControl/UserInfoDetail/Delete";
constexpr const char* kDeleteProcess = "/VELTA/AccessControl/UserInfoDetail/DeleteProcess";
constexpr const char* kCount = "/VELTA/AccessControl/UserInfo/Count";

constexpr Column kColumns[] = {
    {"EMPLOYEE", "employeeNo"}, {"NAME", "name"},       {"TYPE", "userType"},    {"BEGIN", "Valid.beginTime"},
    {"END", "Valid.endTime"},   {"DOORS", "doorRight"}, {"PLAN", "", plansText},
};

struct ListOptions : DeviceOptions {
    std::vector<std::string> employees;
};
struct PersonOptions : DeviceOptions {
    PersonRow row;
};
struct FileOptions : DeviceOptions {
    std::string file;
};
struct DeleteOptions : DeviceOptions {
    std::vector<std::string> employees;
    bool all = false;
    bool yes = false;
};

ExitCode listPersons(const Site& site, const ListOptions& options) {
    Json::Value condition = Json::objectValue;
    if (!options.employees.empty()) condition["EmployeeNoList"] = objectsOf("employeeNo", options.employees);
    return listAll(site, "person", kColumns, kPersonSearch, condition);
}

using Write = void (*)(const Site&, const PersonRow&);

template <Write write>
ExitCode writeOne(const Site& site, const PersonOptions& options) {
    try {
        write(site, options.row);
    } catch (const std::invalid_argument& error) {
        throw Failure(ExitCode::WrongUsage, error.what());
    }
    Json::Value json;
    json["employeeNo"] = options.row.employeeNo;
    const char* const done = write == addPerson ? "added" : "modified";
    json["done"] = done;
    site.report("person", "employee " + options.row.employeeNo + " " + done, json);
    return ExitCode::Ok;
}

uint64_t personCount(const Site& site) {
    return numberAt(site.ask("GET", kCount), ".UserInfoCount.personNumber");
}

ExitCode importPersons(const Site& site, const FileOptions& options) {
    personCount(
        site);  // a wrong password fails here once; a batch would fail so often that it locks the user
    const bool isStandard = options.file == "-";
    const Fd opened(isStandard ? -1 : open(options.file.c_str(), O_RDONLY | O_CLOEXEC));
    if (!isStandard && opened.get() < 0)
        throw Failure(ExitCode::WrongUsage, options.file + ": " + std::strerror(errno));
    std::error_code unknown;
    const uintmax_t size = isStandard ? 0 : std::filesystem::file_size(options.file, unknown);
    const int fd = isStandard ? STDIN_FILENO : opened.get();
    CsvReader file([&] { return readSome(fd, site.host.waiter); });
    return PersonImport(site, file, unknown ? 0 : size).run();
}

ExitCode exportToFile(const Site& site, const FileOptions& options) {
    return exportPersons(site, options.file);
}

void deleteSome(const Site& site, const std::string& what, const Json::Value& detail) {
    Json::Value body;
    body["UserInfoDetail"] = detail;
    site.ask("PUT", kDelete, body);
    site.awaitWork("Deleting " + what, kDeleteProcess, "UserInfoDetailDeleteProcess");
}

ExitCode deleteAll(const Site& site, const DeleteOptions& options) {
    const uint64_t count = personCount(site);
    const std::string what = counted(count, "person");
    if (!options.yes) confirm("Delete all persons of " + site.device + " (" + what + ")?", site.host.waiter);
    Json::Value detail;
    detail["mode"] = "all";
    deleteSome(site, what, detail);
    Json::Value json;
    json["deleted"] = Json::UInt64(count);
    site.report("deletion", what + " deleted", json);
    return ExitCode::Ok;
}

ExitCode deletePersons(const Site& site, const DeleteOptions& options) {
    if (options.all) return deleteAll(site, options);
    const std::string what = counted(options.employees.size(), "person");
    Json::Value detail;
    detail["mode"] = "byEmployeeNo";
    detail["EmployeeNoList"] = objectsOf("employeeNo", options.employees);
    try {
        deleteSome(site, what, detail);
    } catch (Failure& failure) {
        if (failure.hint.empty())
            failure.hint = "does the device have all of them? velta-host persons list tells";
        throw;
    }
    Json::Value json;
    json["deleted"] = Json::UInt64(options.employees.size());
    site.report("deletion", what + " deleted", json);
    return ExitCode::Ok;
}

void addPersonOptions(CLI::App& command, PersonRow& row) {
    for (const PersonColumn& column : kPersonColumns) {
        const bool isRequired = column.cell == &PersonRow::employeeNo;
        addTexts(command, {{column.option, column.typeName, column.help, &(row.*column.cell), isRequired}});
    }
}

}  // namespace

void addPersonsCommand(CLI::App& app, CommonOptions& common, Run& run) {
    CommandGroup group(app, "persons", "List, add, import, export and delete the persons of a device", common,
                       run);
    const auto list = std::make_shared<ListOptions>();
    CLI::App& listCommand = group.add({"list", "List persons", kListFooter}, list, listPersons);
    addList(listCommand, "--employee", "NO", "Only these employee numbers; may be repeated", list->employees);

    const auto add = std::make_shared<PersonOptions>();
    addPersonOptions(group.add({"add", "Add a person", kAddFooter}, add, writeOne<addPerson>), add->row);
    const auto modify = std::make_shared<PersonOptions>();
    addPersonOptions(group.add({"modify", "Change a person", kModifyFooter}, modify, writeOne<modifyPerson>),
                     modify->row);

    const auto input = std::make_shared<FileOptions>();
    CLI::App& importCommand =
        group.add({"import", "Add or modify the persons of a file", kImportFooter}, input, importPersons);
    addInputFile(importCommand, "FILE", "Comma-separated values", input->file);
    const auto output = std::make_shared<FileOptions>();
    CLI::App& exportCommand =
        group.add({"export", "Write all persons to a file", kExportFooter}, output, exportToFile);
    exportCommand.add_option("FILE", output->file, "The file; standard output otherwise")->type_name("");

    const auto removal = std::make_shared<DeleteOptions>();
    CLI::App& deleteCommand =
        group.add({"delete", "Delete persons with all they have", kDeleteFooter}, removal, deletePersons);
    CLI::App& which = addChoice(deleteCommand, "Which", Choice::Required);
    addList(which, "NO", "", "Employee numbers", removal->employees);
    which.add_flag("--all", removal->all, "All persons");
    deleteCommand.add_flag("--yes", removal->yes, "Do not ask");
}

}  // namespace host
