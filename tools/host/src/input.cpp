#include "input.h"

#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <string_view>

#include "failure.h"

namespace host {
namespace {

class EchoOff {
 public:
    explicit EchoOff(int terminal) : terminal_(terminal) {
        tcgetattr(terminal_, &before_);
        termios quiet = before_;
        quiet.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        tcsetattr(terminal_, TCSAFLUSH, &quiet);
    }
    ~EchoOff() { tcsetattr(terminal_, TCSAFLUSH, &before_); }
    EchoOff(const EchoOff&) = delete;
    EchoOff& operator=(const EchoOff&) = delete;

 private:
    const int terminal_;
    termios before_{};
};

// Nothing at the end of the input.
std::string readSome(int fd, size_t most, Waiter& waiter) {
    std::array<char, 4096> buffer{};
    for (;;) {
        if (!waiter.waitForInput(fd)) waiter.throwIfInterrupted();
        const ssize_t count = read(fd, buffer.data(), std::min(most, buffer.size()));
        if (count >= 0) return {buffer.data(), static_cast<size_t>(count)};
        if (errno != EINTR && errno != EAGAIN)
            throw Failure(ExitCode::Failed, "standard input can't be read");
    }
}

}  // namespace

// Byte by byte: what stands behind the line may be somebody else's.
std::string readLine(int fd, Waiter& waiter) {
    std::string line;
    for (;;) {
        const std::string next = readSome(fd, 1, waiter);
        if (next.empty() || next == "\n") break;
        line += next;
    }
    if (line.ends_with('\r')) line.pop_back();
    return line;
}

std::string readAll(int fd, Waiter& waiter) {
    std::string all;
    for (;;) {
        const std::string next = readSome(fd, std::string::npos, waiter);
        if (next.empty()) return all;
        all += next;
    }
}

std::string askWithoutEcho(const std::string& question, Waiter& waiter) {
    const Fd terminal(open("/dev/tty", O_RDWR | O_CLOEXEC));
    if (terminal.get() < 0)
        throw Failure(ExitCode::WrongUsage, "no password given",
                      "use --password-file FILE, --password-stdin or --password TEXT");
    const EchoOff quiet(terminal.get());
    const auto say = [&](std::string_view text) {
        [[maybe_unused]] const ssize_t written = write(terminal.get(), text.data(), text.size());
    };
    say(question);
    struct LineEnd {
        const decltype(say)& write;
        ~LineEnd() { write("\n"); }
    };
    const LineEnd lineEnd{say};
    return readLine(terminal.get(), waiter);
}

}  // namespace host
