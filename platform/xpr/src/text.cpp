#include <errno.h>
#include <stdlib.h>
#include <string.h>
#include <xpr/text.h>

#include <algorithm>
#include <limits>

int XPR_Strcmp(const char* a, const char* b) {
    if (a == nullptr || b == nullptr) return (a != nullptr) - (b != nullptr);
    return strcmp(a, b);
}

char* XPR_Strncpy(char* target, size_t capacity, const char* source, size_t count) {
    if (target == nullptr || capacity == 0) return target;
    const size_t length = source == nullptr ? 0 : strnlen(source, std::min(count, capacity - 1));
    if (length > 0) memcpy(target, source, length);
    target[length] = '\0';
    return target;
}

int32_t XPR_Atoi32(const char* text) {
    if (text == nullptr) return 0;
    const int savedErrno = errno;
    const long long value = strtoll(text, nullptr, 10);  // itself stops at the ends of its range
    errno = savedErrno;
    using Range = std::numeric_limits<int32_t>;
    return static_cast<int32_t>(std::clamp<long long>(value, Range::min(), Range::max()));
}
