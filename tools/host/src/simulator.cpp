#include "simulator.h"

#include <curl/curl.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>

#include "failure.h"
#include "input.h"
#include "text.h"

namespace host {
namespace {

constexpr long kControlTimeoutSeconds = 10;
constexpr const char* kScheme = "http://";

size_t append(char* data, size_t size, size_t count, void* text) {
    try {
        static_cast<std::string*>(text)->append(data, size * count);
        return size * count;
    } catch (const std::exception&) {
        return 0;
    }
}

// In the child: nothing that allocates or takes a lock.
[[noreturn]] void becomeProgram(int output, const char* program, char* const* arguments, pid_t parent) {
    prctl(PR_SET_PDEATHSIG, SIGTERM);  // ends with its parent, however that one ends
    if (getppid() != parent) _exit(1);
    setpgid(0, 0);  // Ctrl-C is the parent's business
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    signal(SIGPIPE, SIG_DFL);
    dup2(output, STDOUT_FILENO);
    execv(program, arguments);
    _exit(127);
}

}  // namespace

Simulator::Simulator(const std::string& program, unsigned count, const std::string& password,
                     Waiter& waiter) {
    if (access(program.c_str(), X_OK) != 0)
        throw Failure(ExitCode::Failed, program + ": " + std::strerror(errno),
                      "build the target velta-sim, or give the program's place with --sim PATH");
    start({program, "--count", std::to_string(count), "--user", "admin", "--password", password,
           "--control-port", "0", "--quiet", "--json"});
    try {
        readAddresses(count, waiter);
    } catch (const std::exception&) {
        end();
        throw;
    }
}

Simulator::~Simulator() {
    end();
}

void Simulator::start(const std::vector<std::string>& arguments) {
    std::array<int, 2> pipeEnds{};
    if (pipe2(pipeEnds.data(), O_CLOEXEC) != 0)
        throw Failure(ExitCode::Failed, "no pipe to the simulated devices");
    output_ = std::make_unique<Fd>(pipeEnds[0]);
    const Fd input(pipeEnds[1]);
    std::vector<char*> pointers;
    pointers.reserve(arguments.size() + 1);
    for (const std::string& argument : arguments)
        pointers.push_back(const_cast<char*>(argument.c_str()));  // execv takes, but does not change them
    pointers.push_back(nullptr);
    const pid_t parent = getpid();
    child_ = fork();
    if (child_ == 0) becomeProgram(input.get(), pointers[0], pointers.data(), parent);
    if (child_ < 0)
        throw Failure(ExitCode::Failed,
                      std::string("no process for the simulated devices: ") + std::strerror(errno));
}

void Simulator::readAddresses(unsigned count, Waiter& waiter) {
    while (control_.empty()) {
        const std::string line = readLine(output_->get(), waiter);
        if (line.empty()) throw Failure(ExitCode::Failed, "the simulated devices do not start");
        Json::Value json;
        parseJson(line, json);
        const std::string url = member(json, "url");
        if (url.starts_with(kScheme))
            devices_.push_back(parseDeviceAddress(url.substr(std::strlen(kScheme))));
        control_ = member(json, "control");
    }
    if (devices_.size() != count)
        throw Failure(ExitCode::Failed, "the simulated devices do not tell their addresses");
}

void Simulator::end() {
    if (child_ <= 0) return;
    kill(child_, SIGTERM);
    while (waitpid(child_, nullptr, 0) < 0 && errno == EINTR) {
    }
    child_ = -1;
}

Json::Value Simulator::control(const std::string& path, const Json::Value& body) const {
    const std::unique_ptr<CURL, decltype(&curl_easy_cleanup)> handle(curl_easy_init(), curl_easy_cleanup);
    const std::string url = control_ + path;
    const std::string sent = compactJson(body);
    std::string answer;
    curl_easy_setopt(handle.get(), CURLOPT_URL, url.c_str());
    curl_easy_setopt(handle.get(), CURLOPT_PROXY, "");
    curl_easy_setopt(handle.get(), CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(handle.get(), CURLOPT_TIMEOUT, kControlTimeoutSeconds);
    if (!body.isNull()) curl_easy_setopt(handle.get(), CURLOPT_POSTFIELDS, sent.c_str());
    curl_easy_setopt(handle.get(), CURLOPT_WRITEFUNCTION, append);
    curl_easy_setopt(handle.get(), CURLOPT_WRITEDATA, &answer);
    const CURLcode code = curl_easy_perform(handle.get());
    long status = 0;
    curl_easy_getinfo(handle.get(), CURLINFO_RESPONSE_CODE, &status);
    Json::Value json;
    if (code != CURLE_OK || status != 200 || !parseJson(answer, json))
        throw Failure(ExitCode::Failed, "the simulated devices do not obey " + path + ": " +
                                            (code != CURLE_OK ? curl_easy_strerror(code) : answer));
    return json;
}

}  // namespace host
