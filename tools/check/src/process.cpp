#include "process.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <system_error>
#include <utility>

#include "child.h"

namespace check {
namespace {

constexpr const char* kThisProgram = "/proc/self/exe";

// The descriptors of a child: nothing to read, its output, its report.
class FileActions {
 public:
    FileActions(int outputFd, int reportFd) {
        posix_spawn_file_actions_init(&actions_);
        posix_spawn_file_actions_addopen(&actions_, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        posix_spawn_file_actions_adddup2(&actions_, outputFd, STDOUT_FILENO);
        posix_spawn_file_actions_adddup2(&actions_, outputFd, STDERR_FILENO);
        posix_spawn_file_actions_adddup2(&actions_, reportFd, kReportFd);
    }
    ~FileActions() { posix_spawn_file_actions_destroy(&actions_); }
    FileActions(const FileActions&) = delete;
    FileActions& operator=(const FileActions&) = delete;
    const posix_spawn_file_actions_t* get() const { return &actions_; }

 private:
    posix_spawn_file_actions_t actions_;
};

}  // namespace

Process::Process(const std::vector<std::string>& arguments) {
    std::vector<char*> argv{const_cast<char*>("velta-check")};
    for (const std::string& argument : arguments)
        argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);
    const FileActions actions(output_.fd(), report_.fd());
    if (const int error = posix_spawn(&pid_, kThisProgram, actions.get(), nullptr, argv.data(), environ))
        throw std::system_error(error, std::generic_category(), "posix_spawn");
    // The C library's own declaration of it does not serve C++.
    endFd_ = static_cast<int>(syscall(SYS_pidfd_open, pid_, 0));
    if (endFd_ >= 0) return;
    const int error = errno;
    kill();
    wait();
    throw std::system_error(error, std::generic_category(), "pidfd_open");
}

Process::~Process() {
    if (pid_ > 0) {
        kill();
        wait();
    }
    if (endFd_ >= 0) close(endFd_);
}

Process::Process(Process&& other) noexcept
    : start_(other.start_),
      report_(std::move(other.report_)),
      output_(std::move(other.output_)),
      pid_(std::exchange(other.pid_, -1)),
      endFd_(std::exchange(other.endFd_, -1)) {}

void Process::kill() const {
    ::kill(pid_, SIGKILL);
}

int Process::wait() {
    int status = 0;
    while (waitpid(pid_, &status, 0) < 0 && errno == EINTR) {
    }
    pid_ = -1;
    return status;
}

}  // namespace check
