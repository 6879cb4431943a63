// Persons from a file of comma-separated values to a device.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "csv.h"
#include "person_writer.h"

namespace host {

class PersonImport {
 public:
    // fileSize: 0 when it is unknown.
    PersonImport(const Site& site, CsvReader& file, uint64_t fileSize)
        : site_(site), file_(file), fileSize_(fileSize) {}

    // Batch by batch, on after single failures; at the end what failed is listed. Throws Failure.
    ExitCode run();

 private:
    void importRows();
    void readHeader();
    bool readBatch();
    PersonRow rowOf(const CsvRecord& record) const;
    void writeBatch();
    void fail(size_t line, const PersonRow& row, const Written& written);
    void showProgress() const;
    void sumUp(bool isComplete) const;

    const Site& site_;
    CsvReader& file_;
    const uint64_t fileSize_;
    std::vector<std::string PersonRow::*> columns_;
    std::vector<PersonRow> rows_;  // the batch, with the lines of its rows
    std::vector<size_t> lines_;
    uint64_t added_ = 0;
    uint64_t modified_ = 0;
    std::map<size_t, Json::Value> failed_;  // by line
};

}  // namespace host
