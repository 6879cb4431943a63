/* Searching in a buffer that grows at its end: each byte is looked at once, however often the search is
 * repeated. */
#ifndef VELTA_DEVICE_OCCURRENCE_H
#define VELTA_DEVICE_OCCURRENCE_H

#include <cstddef>
#include <string>
#include <string_view>

namespace velta {

/* The first occurrence of a text at or behind a position. The text belongs to whoever gave it: starting anew must
 * not need memory. */
class FirstOccurrence {
 public:
    explicit FirstOccurrence(std::string_view text) : text_(text) {}

    void restart(size_t from) {
        next_ = from;
        found_ = std::string::npos;
    }
    void restart(size_t from, std::string_view text) {
        text_ = text;
        restart(from);
    }

    /* Its position, or npos. */
    size_t in(std::string_view buffer) {
        if (found_ == std::string::npos) {
            found_ = buffer.find(text_, next_);
            if (buffer.size() >= next_ + text_.size()) next_ = buffer.size() - text_.size() + 1;
        }
        return found_;
    }

 private:
    std::string_view text_;
    size_t next_ = 0;
    size_t found_ = std::string::npos;
};

/* The last occurrence of a text. */
class LastOccurrence {
 public:
    explicit LastOccurrence(std::string_view text) : first_(text) {}

    void forgetBefore(size_t position) {
        if (last_ < position) last_ = std::string::npos;
    }

    /* Its position so far, or npos. */
    size_t in(std::string_view buffer) {
        for (size_t at = first_.in(buffer); at != std::string::npos; at = first_.in(buffer)) {
            last_ = at;
            first_.restart(at + 1);
        }
        return last_;
    }

 private:
    FirstOccurrence first_;
    size_t last_ = std::string::npos;
};

/* The decimal number that starts at a position: 0 without digits, kLimit when larger. */
class DecimalNumber {
 public:
    static constexpr size_t kLimit = size_t{1} << 40;

    void restart(size_t from) {
        next_ = from;
        value_ = 0;
    }

    size_t in(std::string_view buffer) {
        for (; next_ < buffer.size() && buffer[next_] >= '0' && buffer[next_] <= '9'; ++next_) {
            value_ = value_ * 10 + static_cast<size_t>(buffer[next_] - '0');
            if (value_ > kLimit) value_ = kLimit;
        }
        return value_;
    }

 private:
    size_t next_ = 0;
    size_t value_ = 0;
};

}  // namespace velta

#endif
