#pragma once

#include <chrono>
#include <string_view>

namespace veltasim {

// Reads a text from left to right. Once something is not there, nothing that follows is.
class Scanner {
 public:
    explicit Scanner(std::string_view text) : rest_(text) {}

    // Skips a text that may be there, and tells whether it was.
    bool skipIf(std::string_view text);
    // The rest must be there.
    void skip(std::string_view text) { good_ = skipIf(text) && good_; }
    int number(size_t fewestDigits, size_t mostDigits);
    std::chrono::seconds time();  // "7:30:00"

    bool isAtEnd() const { return good_ && rest_.empty(); }  // and found all

 private:
    std::string_view rest_;
    bool good_ = true;
};

}  // namespace veltasim
