#include "csv.h"

#include <utility>

#include "failure.h"

namespace host {
namespace {

constexpr int kEnd = -1;
constexpr size_t kMostRecordBytes = 65536;
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

Failure wrong(size_t line, const std::string& what) {
    return {ExitCode::WrongUsage, "line " + std::to_string(line) + ": " + what};
}

std::string csvField(const std::string& field) {
    const bool isPlain = field.find_first_of(",\"\r\n") == std::string::npos && !field.starts_with(' ') &&
                         !field.ends_with(' ');
    if (isPlain) return field;
    std::string quoted = "\"";
    for (const char c : field)
        quoted += c == '"' ? "\"\"" : std::string(1, c);
    return quoted + "\"";
}

}  // namespace

CsvReader::CsvReader(Source source) : source_(std::move(source)) {
    while (buffer_.size() < kByteOrderMark.size()) {
        const std::string more = source_();
        if (more.empty()) break;
        buffer_ += more;
    }
    if (buffer_.starts_with(kByteOrderMark)) at_ = kByteOrderMark.size();
}

int CsvReader::peek() {
    if (at_ == buffer_.size()) {
        before_ += buffer_.size();
        at_ = 0;
        buffer_ = source_();
    }
    return buffer_.empty() ? kEnd : static_cast<unsigned char>(buffer_[at_]);
}

int CsvReader::get() {
    const int c = peek();
    if (c == kEnd) return kEnd;
    ++at_;
    if (++recordBytes_ > kMostRecordBytes)
        throw wrong(line_, "the record is longer than any person's; is a quote missing?");
    if (c == '\r' && peek() == '\n') return get();
    if (c != '\n' && c != '\r') return c;
    ++line_;
    return '\n';
}

// Behind the opening quote.
std::string CsvReader::quotedField(size_t line) {
    std::string field;
    for (;;) {
        const int c = get();
        if (c == kEnd) throw wrong(line, "a quote is opened and never closed");
        if (c == '"' && peek() != '"') break;
        if (c == '"') get();
        field += static_cast<char>(c);
    }
    const int next = peek();
    if (next != kEnd && next != ',' && next != '\n' && next != '\r')
        throw wrong(line_, "text stands behind a closing quote; a quote within quotes is written twice");
    return field;
}

std::string CsvReader::plainField() {
    std::string field;
    for (int c = peek(); c != kEnd && c != ',' && c != '\n' && c != '\r'; c = peek()) {
        if (c == '"') throw wrong(line_, "a quote stands within a field that does not begin with one");
        field += static_cast<char>(get());
    }
    return field;
}

bool CsvReader::next(CsvRecord& record) {
    for (;;) {
        recordBytes_ = 0;
        record.fields.clear();
        record.line = line_;
        if (peek() == kEnd) return false;
        for (bool more = true; more;) {
            const bool isQuoted = peek() == '"';
            if (isQuoted) get();
            record.fields.push_back(isQuoted ? quotedField(line_) : plainField());
            more = get() == ',';
        }
        if (record.fields.size() > 1 || !record.fields.front().empty()) return true;
    }
}

std::string csvLine(const std::vector<std::string>& fields) {
    std::string line;
    for (const std::string& field : fields) {
        if (&field != &fields.front()) line += ',';
        line += csvField(field);
    }
    return line + "\r\n";
}

bool isUtf8(std::string_view text) {
    struct Lead {
        unsigned first, last;  // of the first byte
        unsigned low, high;    // of the second one
        size_t size;
    };
    constexpr Lead kLeads[] = {
        {0x00, 0x7F, 0, 0, 1},       {0xC2, 0xDF, 0x80, 0xBF, 2}, {0xE0, 0xE0, 0xA0, 0xBF, 3},
        {0xE1, 0xEC, 0x80, 0xBF, 3}, {0xED, 0xED, 0x80, 0x9F, 3}, {0xEE, 0xEF, 0x80, 0xBF, 3},
        {0xF0, 0xF0, 0x90, 0xBF, 4}, {0xF1, 0xF3, 0x80, 0xBF, 4}, {0xF4, 0xF4, 0x80, 0x8F, 4},
    };
    const auto byte = [&](size_t i) { return static_cast<unsigned char>(text[i]); };
    for (size_t i = 0; i < text.size();) {
        size_t size = 0;
        for (const Lead& lead : kLeads) {
            if (byte(i) < lead.first || byte(i) > lead.last || text.size() - i < lead.size) continue;
            if (lead.size == 1 || (byte(i + 1) >= lead.low && byte(i + 1) <= lead.high)) size = lead.size;
        }
        if (size == 0) return false;
        for (size_t next = 2; next < size; ++next) {
            if ((byte(i + next) & 0xC0U) != 0x80U) return false;
        }
        i += size;
    }
    return true;
}

}  // namespace host
