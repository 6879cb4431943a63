#include "scanner.h"

#include <algorithm>
#include <charconv>

namespace veltasim {

bool Scanner::skipIf(std::string_view text) {
    if (!good_ || !rest_.starts_with(text)) return false;
    rest_.remove_prefix(text.size());
    return true;
}

int Scanner::number(size_t fewestDigits, size_t mostDigits) {
    const size_t digits = std::min(rest_.find_first_not_of("0123456789"), rest_.size());
    good_ = good_ && digits >= fewestDigits && digits <= mostDigits;
    if (!good_) return 0;
    int value = 0;
    std::from_chars(rest_.data(), rest_.data() + digits, value);
    rest_.remove_prefix(digits);
    return value;
}

std::chrono::seconds Scanner::time() {
    const std::chrono::hours hours(number(1, 2));
    skip(":");
    const std::chrono::minutes minutes(number(2, 2));
    skip(":");
    const std::chrono::seconds seconds(number(2, 2));
    good_ = good_ && minutes < std::chrono::hours(1) && seconds < std::chrono::minutes(1);
    return hours + minutes + seconds;
}

}  // namespace veltasim
