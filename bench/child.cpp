#include "child.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <sstream>
#include <stdexcept>

namespace bench {

Child::Child(const std::string& name, const std::vector<std::string>& arguments) {
    const std::string path = std::filesystem::read_symlink("/proc/self/exe").parent_path() / name;
    std::vector<char*> argv{const_cast<char*>(path.c_str())};
    for (const std::string& argument : arguments)
        argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);
    int input[2];
    int output[2];
    if (pipe2(input, O_CLOEXEC) != 0 || pipe2(output, O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, input[0], STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, output[1], STDOUT_FILENO);
    const int started = posix_spawn(&pid_, path.c_str(), &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    close(input[0]);
    close(output[1]);
    if (started != 0) throw std::runtime_error("cannot start " + path);
    to_ = fdopen(input[1], "w");
    from_ = fdopen(output[0], "r");
}

Child::~Child() {
    fclose(to_);
    fclose(from_);
    waitpid(pid_, nullptr, 0);
}

void Child::say(const std::string& line) {
    std::fprintf(to_, "%s\n", line.c_str());
    std::fflush(to_);
}

std::vector<double> Child::hear() {
    char line[256];
    if (std::fgets(line, sizeof line, from_) == nullptr) return {};
    std::istringstream text(line);
    std::vector<double> numbers;
    for (double number = 0; text >> number;)
        numbers.push_back(number);
    return numbers;
}

}  // namespace bench
