#include "input.h"

#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
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

Fd openTerminal() {
    return Fd(open("/dev/tty", O_RDWR | O_CLOEXEC));
}

void say(const Fd& terminal, std::string_view text) {
    [[maybe_unused]] const ssize_t written = write(terminal.get(), text.data(), text.size());
}

}  // namespace

std::string readSome(int fd, Waiter& waiter, size_t most) {
    std::array<char, 4096> buffer{};
    for (;;) {
        if (!waiter.waitForInput(fd)) waiter.throwIfInterrupted();
        const ssize_t count = read(fd, buffer.data(), std::min(most, buffer.size()));
        if (count >= 0) return {buffer.data(), static_cast<size_t>(count)};
        if (errno != EINTR && errno != EAGAIN)
            throw Failure(ExitCode::Failed, std::string("the input can't be read: ") + std::strerror(errno));
    }
}

// Byte by byte: what stands behind the line may be somebody else's.
std::string readLine(int fd, Waiter& waiter) {
    std::string line;
    for (;;) {
        const std::string next = readSome(fd, waiter, 1);
        if (next.empty() || next == "\n") break;
        line += next;
    }
    if (line.ends_with('\r')) line.pop_back();
    return line;
}

std::string readAll(int fd, Waiter& waiter) {
    std::string all;
    for (;;) {
        const std::string next = readSome(fd, waiter);
        if (next.empty()) return all;
        all += next;
    }
}

std::string readInput(const std::string& path, Waiter& waiter) {
    const bool isStandard = path == "-";
    const Fd file(isStandard ? -1 : open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (!isStandard && file.get() < 0)
        throw Failure(ExitCode::WrongUsage, path + ": " + std::strerror(errno));
    std::string all = readAll(isStandard ? STDIN_FILENO : file.get(), waiter);
    if (all.empty()) throw Failure(ExitCode::WrongUsage, path + ": there is nothing in it");
    return all;
}

void confirm(const std::string& question, Waiter& waiter) {
    const Fd terminal = openTerminal();
    if (terminal.get() < 0)
        throw Failure(ExitCode::WrongUsage, "there is no terminal to ask on: " + question,
                      "--yes goes on without the question");
    say(terminal, question + " [y/N] ");
    const std::string answer = readLine(terminal.get(), waiter);
    if (answer != "y" && answer != "Y" && answer != "yes")
        throw Failure(ExitCode::Failed, "not confirmed; nothing was done");
}

std::string askWithoutEcho(const std::string& question, Waiter& waiter) {
    const Fd terminal = openTerminal();
    if (terminal.get() < 0)
        throw Failure(ExitCode::WrongUsage, "no password given",
                      "use --password-file FILE, --password-stdin or --password TEXT");
    const EchoOff quiet(terminal.get());
    say(terminal, question);
    struct LineEnd {
        const Fd& terminal;
        ~LineEnd() { say(terminal, "\n"); }
    };
    const LineEnd lineEnd{terminal};
    return readLine(terminal.get(), waiter);
}

}  // namespace host
