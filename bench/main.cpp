// Measures the plug-in against the limits of what it stands on, and prints one table.
#include <benchmark/benchmark.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "rows.h"

namespace {

struct Part {
    const char* name;
    std::function<bench::Rows()> measure;
};

void append(bench::Rows& rows, bench::Rows more) {
    for (bench::Row& row : more)
        rows.push_back(std::move(row));
}

/* Options of the library for the parts that it measures. */
void initialise(std::vector<std::string> options) {
    options.insert(options.begin(), "velta-bench");
    std::vector<char*> arguments;
    arguments.reserve(options.size());
    for (std::string& option : options)
        arguments.push_back(option.data());
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
}

}  // namespace

int main(int argc, char** argv) {
    CLI::App app(
        "Measures the plug-in beside the limits of what it stands on, in one run, and prints a table.");
    std::vector<std::string> only;
    std::string single;
    int sessions = 2000;
    bool markdown = false;
    bool curve = false;
    app.add_option("--only", only, "Measure these parts: code, delivery, requests, sessions, loading")
        ->check(CLI::IsMember({"code", "delivery", "requests", "sessions", "loading"}));
    app.add_option("--sessions", sessions, "Number of armed sessions")
        ->check(CLI::Range(1, 20000))
        ->capture_default_str();
    app.add_flag("--markdown", markdown, "Print the table as Markdown");
    app.add_flag("--curve", curve,
                 "Measure by the number of sessions how long it takes until a device is looked at again (ten "
                 "minutes)");
    app.add_option(
        "--single", single,
        "Run the benchmarks whose names match this expression by themselves, without the table (\"hostile\": "
        "documents that are made to be slow)");
    CLI11_PARSE(app, argc, argv);

    if (!single.empty()) {
        initialise({"--benchmark_filter=" + single});
        benchmark::RunSpecifiedBenchmarks();
        return 0;
    }
    initialise({"--benchmark_repetitions=15", "--benchmark_min_time=0.05",
                "--benchmark_enable_random_interleaving=true"});

    bench::FastServer server;  // forks: before there are threads
    if (curve) {
        bench::printCheckCurve(server);
        return 0;
    }
    const Part parts[] = {
        {"code", bench::codeRows},
        {"delivery", [&] { return bench::deliveryRows(server); }},
        {"requests", [&] { return bench::requestRows(server); }},
        {"sessions", [&] { return bench::sessionRows(server, sessions); }},
        {"loading", bench::loadingRows},
    };
    bench::Rows rows;
    for (const Part& part : parts) {
        if (only.empty() || std::find(only.begin(), only.end(), part.name) != only.end())
            append(rows, part.measure());
    }
    (markdown ? bench::printMarkdown : bench::printTable)(rows);
    return 0;
}
