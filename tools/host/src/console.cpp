#include "console.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iostream>

#include "failure.h"
#include "text.h"

namespace host {

Console::Console(Format format, bool mayAnimate)
    : format_(format), animates_(mayAnimate && isatty(STDERR_FILENO) == 1) {}
Console::~Console() {
    endCountdown();
}

void Console::write(const std::string& bytes) {
    endCountdown();
    errno = 0;
    std::cout.write(bytes.data(), static_cast<std::streamsize>(bytes.size())).flush();
    if (std::cout) return;
    // A reader that has seen enough is no news to anybody.
    const std::string reason = errno == EPIPE ? "" : std::string("standard output: ") + std::strerror(errno);
    throw Failure(ExitCode::Failed, reason);
}

void Console::result(const std::string& text, const Json::Value& json) {
    write((isJson() ? compactJson(json) : printable(text)) + "\n");
}

void Console::text(const std::string& text) {
    if (!isJson()) write(printable(text) + "\n");
}

void Console::raw(const std::string& bytes) {
    write(bytes);
}

void Console::note(const std::string& text) {
    endCountdown();
    std::cerr << printable(text) << std::endl;
}

void Console::countdown(const std::string& what, Clock::time_point until) {
    const auto left = std::chrono::ceil<std::chrono::seconds>(until - Clock::now()).count();
    const std::string line = what + " in " + std::to_string(std::max<int64_t>(left, 0)) + " s";
    progress(line);
    if (!animates_ && announced_ != what) std::cerr << line << std::endl;
    announced_ = what;
}

void Console::progress(const std::string& line) {
    if (!animates_ || line == standing_) return;
    std::cerr << "\r\033[K" << line << std::flush;
    standing_ = line;
}

void Console::endCountdown() {
    if (!standing_.empty()) std::cerr << "\r\033[K" << std::flush;
    standing_.clear();
}

}  // namespace host
