#include "csv.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "failure.h"

namespace {

using Rows = std::vector<std::vector<std::string>>;

// Fed piece by piece: a piece may end anywhere.
Rows read(const std::string& text, size_t pieceSize, std::vector<size_t>* lines = nullptr) {
    size_t at = 0;
    host::CsvReader reader([&] {
        std::string piece = text.substr(at, pieceSize);
        at += piece.size();
        return piece;
    });
    Rows rows;
    host::CsvRecord record;
    while (reader.next(record)) {
        rows.push_back(record.fields);
        if (lines != nullptr) lines->push_back(record.line);
    }
    return rows;
}

}  // namespace

TEST(Csv, Read_recordsHoweverTheyAreWritten) {
    const struct {
        std::string text;
        Rows rows;
    } cases[] = {
        {"", {}},
        {"\xEF\xBB\xBF"
         "a,b\r\n\r\n,\r\n",
         {{"a", "b"}, {"", ""}}},
        {"a\rb\r", {{"a"}, {"b"}}},
        {"\"x,\"\"y\"\"\n z\",\"\"\r\nlast", {{"x,\"y\"\n z", ""}, {"last"}}},
    };
    for (const auto& one : cases) {
        for (const size_t pieceSize : {1, 2, 1000})
            EXPECT_EQ(read(one.text, pieceSize), one.rows) << one.text << " by " << pieceSize;
    }
    std::vector<size_t> lines;
    read("h\r\n\r\n\"a\r\nb\"\r\nc\n", 3, &lines);
    EXPECT_EQ(lines, (std::vector<size_t>{1, 3, 5}));
}

TEST(Csv, Read_tellsTheLineOfWrongQuotes) {
    for (const std::string& text : {std::string("h\na\"b\n"), std::string("h\n\"a\"b\n"),
                                    std::string("h\n\"a\n"), "h\n" + std::string(100000, 'x')}) {
        try {
            read(text, 7);
            ADD_FAILURE() << text.substr(0, 20);
        } catch (const host::Failure& failure) {
            EXPECT_EQ(std::string(failure.what()).rfind("line 2: ", 0), 0U) << failure.what();
        }
    }
}

TEST(Csv, Write_isReadAgain) {
    const Rows rows{{"plain", "", "a,b", "say \"hi\"", "two\nlines", " blank "}, {"", "\xC3\xBC"}};
    EXPECT_EQ(read(host::csvLine(rows[0]) + host::csvLine(rows[1]), 1000), rows);
}

TEST(Csv, Utf8_refusesOtherEncodings) {
    for (const char* text : {"", "a", "\xC3\xBC", "\xE2\x82\xAC", "\xF0\x9F\x9A\xAA", "\xEF\xBF\xBF"})
        EXPECT_TRUE(host::isUtf8(text)) << text;
    for (const char* text : {"\xFC", "J\xFCrgen", "\xC3", "\xC0\x80", "\xED\xA0\x80", "\xE2\x82",
                             "\xF4\x90\x80\x80", "\xE2\x82\x41"})
        EXPECT_FALSE(host::isUtf8(text)) << text;
}
