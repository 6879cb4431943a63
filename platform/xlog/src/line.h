/* One line of the log as it may be written: no control character in it, and not longer than XLOG_MAX_LINE. */
#ifndef XLOG_LINE_H
#define XLOG_LINE_H

#include <stdarg.h>
#include <xlog/xlog.h>

#include <string_view>

namespace xlog {

class Line {
 public:
    Line(const char* format, va_list arguments) noexcept __attribute__((format(printf, 2, 0)));

    const char* text() const { return text_; }
    std::string_view view() const { return {text_, length_}; }

 private:
    void escape(std::string_view raw) noexcept;

    char text_[XLOG_MAX_LINE + 1];
    size_t length_ = 0;
};

}  // namespace xlog

#endif
