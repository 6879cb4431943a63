#include "child.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <json/json.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <exception>
#include <memory>
#include <sstream>

namespace check {
namespace {

constexpr const char* kEnd = "end";

// Standard error, when somebody runs one check by hand.
int reportFd() {
    static const int fd = fcntl(kReportFd, F_GETFD) >= 0 ? kReportFd : STDERR_FILENO;
    return fd;
}

// One line of JSON for each finding, at once: the next step may crash.
void write(const Json::Value& line) {
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    const std::string text = Json::writeString(builder, line) + "\n";
    [[maybe_unused]] const ssize_t written = ::write(reportFd(), text.data(), text.size());
}

void report(const Finding& finding) {
    Json::Value line;
    line["what"] = finding.what;
    line["expected"] = finding.expected;
    line["found"] = finding.found;
    write(line);
}

// A crash here is a result and no accident; nor shall a child outlive whoever wants that result.
void prepareProcess() {
    reportFd();  // before the library opens a file of that number
    const rlimit none{0, 0};
    setrlimit(RLIMIT_CORE, &none);
    prctl(PR_SET_PDEATHSIG, SIGKILL);
}

void runCheck(const Check& check, Trial& trial) {
    try {
        check.run(trial);
    } catch (const Stop&) {  // the finding is reported
    } catch (const std::exception& error) {
        trial.holds(std::string("the check ends without an exception (") + error.what() + ")", false);
    }
}

}  // namespace

int runHere(const Check& check, const std::string& libraryPath, std::chrono::seconds timeLimit) {
    prepareProcess();
    // Waiting ends a little earlier than the process is killed, so that it can say what it waited for.
    const auto margin = std::max<std::chrono::milliseconds>(std::chrono::seconds(1), timeLimit / 6);
    Trial trial(libraryPath, Trial::Clock::now() + timeLimit - margin, report);
    runCheck(check, trial);
    Json::Value line;
    line[kEnd] = true;
    write(line);
    return 0;
}

int loadHere(const std::string& libraryPath) {
    prepareProcess();
    if (dlopen(libraryPath.c_str(), RTLD_NOW | RTLD_LOCAL) == nullptr) {
        report({dlerror(), "", ""});
        return 1;
    }
    return 0;
}

ChildReport parseReport(const std::string& text) {
    ChildReport result;
    const std::unique_ptr<Json::CharReader> reader(Json::CharReaderBuilder().newCharReader());
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        Json::Value value;
        if (!reader->parse(line.data(), line.data() + line.size(), &value, nullptr)) continue;
        if (value.isMember(kEnd)) {
            result.isComplete = true;
            continue;
        }
        // What is looked at in a loop is told once.
        const Finding finding{value["what"].asString(), value["expected"].asString(),
                              value["found"].asString()};
        if (std::find(result.findings.begin(), result.findings.end(), finding) == result.findings.end())
            result.findings.push_back(finding);
    }
    return result;
}

}  // namespace check
