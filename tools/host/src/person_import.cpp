#include "person_import.h"

#include <algorithm>

#include "listing.h"
#include "progress_bar.h"

namespace host {
namespace {

using Outcome = Written::Outcome;

constexpr Column kFailureColumns[] = {{"LINE", "line"}, {"EMPLOYEE", "employeeNo"}, {"REASON", "reason"}};

Failure wrongHeader(size_t line, const std::string& what) {
    std::vector<std::string> names;
    for (const PersonColumn& column : kPersonColumns)
        names.emplace_back(column.name);
    return {ExitCode::WrongUsage, "line " + std::to_string(line) + ": " + what,
            "the first line names the columns, with commas between them: " + joined(names, ",")};
}

}  // namespace

ExitCode PersonImport::run() {
    readHeader();
    try {
        importRows();
    } catch (const Failure&) {
        sumUp(false);
        throw;
    }
    sumUp(true);
    return failed_.empty() ? ExitCode::Ok : ExitCode::Failed;
}

void PersonImport::importRows() {
    while (readBatch()) {
        showProgress();
        writeBatch();
    }
}

void PersonImport::readHeader() {
    CsvRecord header;
    if (!file_.next(header)) throw wrongHeader(1, "the file is empty");
    for (const std::string& name : header.fields) {
        const auto* const found =
            std::find_if(std::begin(kPersonColumns), std::end(kPersonColumns),
                         [&](const PersonColumn& column) { return column.name == name; });
        if (found == std::end(kPersonColumns))
            throw wrongHeader(header.line, "\"" + name + "\" is no column of persons");
        if (std::find(columns_.begin(), columns_.end(), found->cell) != columns_.end())
            throw wrongHeader(header.line, "the column " + name + " is there twice");
        columns_.push_back(found->cell);
    }
    if (std::find(columns_.begin(), columns_.end(), &PersonRow::employeeNo) == columns_.end())
        throw wrongHeader(header.line, "the column employeeNo is missing");
}

PersonRow PersonImport::rowOf(const CsvRecord& record) const {
    PersonRow row;
    for (size_t i = 0; i < std::min(columns_.size(), record.fields.size()); ++i)
        row.*columns_[i] = record.fields[i];
    return row;
}

bool PersonImport::readBatch() {
    rows_.clear();
    lines_.clear();
    CsvRecord record;
    while (rows_.size() < kMostInBatch && file_.next(record)) {
        const PersonRow row = rowOf(record);
        if (record.fields.size() != columns_.size()) {
            const std::string reason =
                counted(record.fields.size(), "field") + " for " + counted(columns_.size(), "column");
            fail(record.line, row, {Outcome::Failed, reason, {}});
            continue;
        }
        rows_.push_back(row);
        lines_.push_back(record.line);
    }
    return !rows_.empty();
}

void PersonImport::writeBatch() {
    const std::vector<Written> all = writePersons(site_, rows_);
    for (size_t i = 0; i < all.size(); ++i) {
        if (all[i].outcome == Outcome::Failed)
            fail(lines_[i], rows_[i], all[i]);
        else
            ++(all[i].outcome == Outcome::Added ? added_ : modified_);
    }
}

void PersonImport::fail(size_t line, const PersonRow& row, const Written& written) {
    Json::Value& failed = failed_[line];
    failed["line"] = Json::UInt64(line);
    failed["employeeNo"] = row.employeeNo;
    failed["reason"] = written.reason;
    failed["errorCode"] = written.status.errorCode;
    failed["errorName"] = written.status.name;
}

void PersonImport::showProgress() const {
    const std::string bar = progressBar(file_.bytesRead(), fileSize_);
    site_.host.console.progress("Importing  " + bar + (bar.empty() ? "" : "  ") +
                                counted(added_ + modified_ + failed_.size(), "person"));
}

void PersonImport::sumUp(bool isComplete) const {
    Json::Value json;
    json["complete"] = isComplete;
    json["added"] = Json::UInt64(added_);
    json["modified"] = Json::UInt64(modified_);
    json["failed"] = Json::UInt64(failed_.size());
    const std::string sum = std::to_string(added_) + " added, " + std::to_string(modified_) + " modified, " +
                            std::to_string(failed_.size()) + " failed";
    site_.report("import", isComplete ? sum : sum + "; not complete: import the file again", json);
    Listing listing(site_, "failure", kFailureColumns);
    Json::Value records = Json::arrayValue;
    for (const auto& [line, failed] : failed_)
        records.append(failed);
    listing.page(records);
}

}  // namespace host
