// velta-check: loads a library from outside and looks whether it keeps the contract.

#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <exception>
#include <filesystem>
#include <iostream>
#include <thread>

#include "check.h"
#include "child.h"
#include "report.h"
#include "runner.h"

namespace {

constexpr const char* kFooter = R"(Examples:
  velta-check build/release/libveltadev.so              all checks, in less than a minute
  velta-check --list                                    what there is to be checked
  velta-check --only events --only 'gateway.*' PATH     some groups
  velta-check --only connection.refused-urls PATH       one check
  velta-check --json PATH > report.json

Exit codes:
  0  every check passed
  1  there are findings
  2  wrong usage, or the library can't be loaded)";

constexpr int kFindings = 1;
constexpr int kWrongUsage = 2;
constexpr unsigned kJobsPerProcessor = 16;  // most of them do nothing but wait
constexpr int kShortestLimit = 2;
constexpr int kLongestLimit = 3600;

struct Usage : std::runtime_error {
    using std::runtime_error::runtime_error;
};

struct Options {
    std::string library;
    std::vector<std::string> only;
    unsigned jobs = kJobsPerProcessor * std::max(1U, std::thread::hardware_concurrency());
    int timeLimit = 90;
    bool json = false;
    bool list = false;
    std::string runOne;
};

void addOptions(CLI::App& app, Options& options) {
    app.add_option("library", options.library, "The library")->type_name("PATH");
    app.add_option("--only", options.only,
                   "Just these: an id, a group, or a pattern with * and ?; may be repeated")
        ->type_name("PATTERN")
        ->allow_extra_args(false);
    app.add_option("--jobs", options.jobs,
                   "How many checks run at a time; most of them wait most of the time")
        ->type_name("N")
        ->check(CLI::Range(1, 1024).description(""))
        ->capture_default_str();
    app.add_option(check::kTimeLimitOption, options.timeLimit, "How long one check may take, in seconds")
        ->type_name("SECONDS")
        ->check(CLI::Range(kShortestLimit, kLongestLimit).description(""))
        ->capture_default_str();
    app.add_flag("--json", options.json, "Print one JSON document");
    app.add_flag("--list", options.list, "List the checks instead of running them");
    app.add_option(check::kRunOneOption, options.runOne)->group("");
}

std::vector<check::Check> chosen(const std::vector<std::string>& patterns) {
    std::vector<check::Check> all = check::allChecks();
    for (const std::string& pattern : patterns) {
        if (std::none_of(all.begin(), all.end(), [&](const auto& one) { return check::fits(one, pattern); }))
            throw Usage("no check fits \"" + pattern + "\"; --list shows them");
    }
    if (patterns.empty()) return all;
    std::erase_if(all, [&](const check::Check& one) {
        return std::none_of(patterns.begin(), patterns.end(),
                            [&](const std::string& pattern) { return check::fits(one, pattern); });
    });
    return all;
}

int runOne(const Options& options) {
    if (options.runOne == check::kJustLoad) return check::loadHere(options.library);
    const auto checks = chosen({options.runOne});
    return check::runHere(checks.front(), options.library, std::chrono::seconds(options.timeLimit));
}

int runAll(const Options& options) {
    if (options.library.empty()) throw Usage("which library? velta-check PATH");
    const auto checks = chosen(options.only);
    if (!std::filesystem::exists(options.library)) throw Usage(options.library + ": no such file");
    const std::string path = std::filesystem::absolute(options.library).string();
    if (const std::string error = check::loadError(path); !error.empty())
        throw Usage("the library can't be loaded: " + error);

    const bool showProgress = isatty(STDERR_FILENO) != 0;
    const auto outcomes = check::runChecks(
        checks, {path, options.jobs, std::chrono::seconds(options.timeLimit)}, [&](size_t ended) {
            if (showProgress)
                std::cerr << "\r" << ended << " of " << checks.size() << " checks" << std::flush;
        });
    if (showProgress) std::cerr << "\r\033[K";
    std::cout << (options.json ? check::jsonReport(path, outcomes) : check::textReport(path, outcomes));
    std::cout.flush();
    if (!std::cout) throw std::runtime_error("the report can't be written");
    return check::allPassed(outcomes) ? 0 : kFindings;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        CLI::App app(
            "Does a library keep the contract between plug-in and host? Checks it from outside, against "
            "a simulated device.",
            "velta-check");
        app.footer(kFooter);
        Options options;
        addOptions(app, options);
        try {
            app.parse(argc, argv);
        } catch (const CLI::ParseError& error) {
            return app.exit(error) == 0 ? 0 : kWrongUsage;
        }
        if (!options.runOne.empty()) return runOne(options);
        if (!options.list) return runAll(options);
        std::cout << check::listing(chosen(options.only));
        return 0;
    } catch (const std::exception& error) {
        std::cerr << "velta-check: " << error.what() << '\n';
        return kWrongUsage;
    }
}
