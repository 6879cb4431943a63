// Comma-separated values with a quote as RFC 4180 has it, read and written record by record.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace host {

struct CsvRecord {
    size_t line = 0;  // where it begins, from 1 on
    std::vector<std::string> fields;
};

class CsvReader {
 public:
    using Source = std::function<std::string()>;  // the next bytes; empty: the end

    explicit CsvReader(Source source);

    // The next record that is no empty line; false at the end. Line ends may be LF, CR LF or CR, and a byte
    // order mark may stand at the beginning. Throws Failure with the line when the quotes are wrong.
    bool next(CsvRecord& record);
    uint64_t bytesRead() const { return before_ + at_; }

 private:
    int peek();
    int get();  // -1: the end; every line end is '\n'
    std::string quotedField(size_t line);
    std::string plainField();

    Source source_;
    std::string buffer_;
    size_t at_ = 0;        // in buffer_
    uint64_t before_ = 0;  // bytes before buffer_
    size_t line_ = 1;
    size_t recordBytes_ = 0;
};

// With CR LF at the end.
std::string csvLine(const std::vector<std::string>& fields);

bool isUtf8(std::string_view text);

}  // namespace host
