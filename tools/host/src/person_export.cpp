#include "person_export.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>

#include "access_searches.h"
#include "csv.h"
#include "person_row.h"
#include "progress_bar.h"
#include "text.h"

namespace host {
namespace {

std::string forTerminal(std::string text) {
    std::erase(text, '\r');
    return printable(text);
}

// Standard output, or a file under another name until it is complete.
class Output {
 public:
    Output(Console& console, const std::string& file) : console_(console), file_(file) {
        if (isStandard()) return;
        stream_.open(partName(), std::ios::binary | std::ios::trunc);
        check();
    }
    ~Output() {
        std::error_code ignored;
        if (!isStandard()) std::filesystem::remove(partName(), ignored);
    }
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    bool isStandard() const { return file_.empty() || file_ == "-"; }
    void write(const std::string& bytes) {
        if (isStandard()) return console_.raw(isatty(STDOUT_FILENO) == 1 ? forTerminal(bytes) : bytes);
        stream_ << bytes;
        check();
    }
    void complete() {
        if (isStandard()) return;
        stream_.close();
        check();
        std::error_code error;
        std::filesystem::rename(partName(), file_, error);
        if (error) throw Failure(ExitCode::Failed, file_ + ": " + error.message());
    }

 private:
    std::string partName() const { return file_ + ".part"; }
    void check() const {
        if (!stream_) throw Failure(ExitCode::Failed, partName() + ": " + std::strerror(errno));
    }

    Console& console_;
    const std::string file_;
    std::ofstream stream_;
};

std::vector<std::string> header() {
    std::vector<std::string> names;
    for (const PersonColumn& column : kPersonColumns)
        names.emplace_back(column.name);
    return names;
}

std::vector<Json::Value> cardsOf(const Site& site, const Json::Value& persons) {
    std::vector<std::string> numbers;
    for (const Json::Value& person : persons)
        numbers.push_back(member(person, "employeeNo"));
    std::vector<Json::Value> cards;
    if (numbers.empty()) return cards;
    Json::Value condition;
    condition["EmployeeNoList"] = objectsOf("employeeNo", numbers);
    Search search(site, kCardSearch, condition);
    while (const auto page = search.next())
        cards.insert(cards.end(), page->begin(), page->end());
    return cards;
}

std::string lineOf(const PersonRow& row) {
    std::vector<std::string> fields;
    for (const PersonColumn& column : kPersonColumns)
        fields.push_back(row.*column.cell);
    return csvLine(fields);
}

}  // namespace

ExitCode exportPersons(const Site& site, const std::string& file) {
    Console& console = site.host.console;
    Output output(console, file);
    if (console.isJson() && output.isStandard())
        throw Failure(ExitCode::WrongUsage, "standard output can't be JSON and CSV",
                      "name a file, or use persons list --json");
    output.write(csvLine(header()));
    Search search(site, kPersonSearch, Json::objectValue);
    uint64_t count = 0;
    while (const auto page = search.next()) {
        const std::vector<Json::Value> cards = cardsOf(site, *page);
        std::string lines;
        for (const Json::Value& person : *page)
            lines += lineOf(personRow(person, cards));
        output.write(lines);
        count += page->size();
        console.progress("Exporting  " + progressBar(count, search.total()) + "  " +
                         counted(count, "person"));
    }
    output.complete();
    console.endCountdown();
    if (output.isStandard()) return ExitCode::Ok;
    Json::Value json;
    json["persons"] = Json::UInt64(count);
    json["file"] = file;
    site.report("export", counted(count, "person") + " -> " + file, json);
    return ExitCode::Ok;
}

}  // namespace host
