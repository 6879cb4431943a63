// What runs without the network, measured by Google Benchmark with the plug-in and its limit interleaved.
#include <benchmark/benchmark.h>

#include <map>

#include "rows.h"

namespace bench {

namespace {

/* Keeps the processor time of each repetition, in nanoseconds. */
class Collector : public benchmark::BenchmarkReporter {
 public:
    bool ReportContext(const Context&) override { return true; }
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.run_type != Run::RT_Iteration) continue;
            samples[run.run_name.function_name + "/" + run.run_name.args].values.push_back(
                run.cpu_accumulated_time / static_cast<double>(run.iterations) * 1e9);
        }
    }

    std::map<std::string, Samples> samples;
};

struct Pair {
    const char* what;
    const char* ours;
    const char* limit;
    double target;
};
constexpr Pair kPairs[] = {
    {"route miss and envelope of a forwarded request", "envelopeAndRouteMiss/", "envelopeBare/", 1.3},
    {"alert stream, event without picture in one chunk", "parseEvents/", "eventsBare/", 1.15},
};

Samples gigabytesPerSecond(const Samples& nanoseconds, double bytes) {
    Samples rates;
    for (const double time : nanoseconds.values)
        rates.values.push_back(bytes / time);
    return rates;
}

}  // namespace

Rows codeRows() {
    progress("code without the network");
    Collector collector;
    benchmark::RunSpecifiedBenchmarks(&collector, "envelope|[eE]vents|Pictures");
    Rows rows;
    for (const Pair& pair : kPairs)
        rows.push_back(
            {pair.what, "ns", collector.samples[pair.ours], collector.samples[pair.limit], pair.target});
    for (const int picture : {10'000, 1'000'000, 10'000'000}) {
        for (const int chunk : {256, 1024, 16384}) {
            const std::string arguments =
                "/picture:" + std::to_string(picture) + "/chunk:" + std::to_string(chunk);
            rows.push_back({"alert stream, picture of " + std::to_string(picture / 1000) +
                                " KB in chunks of " + std::to_string(chunk) + " B",
                            "GB/s",
                            gigabytesPerSecond(collector.samples["parsePictures" + arguments], picture),
                            gigabytesPerSecond(collector.samples["copyPictures" + arguments], picture),
                            chunk == 1024 ? std::optional(1.0) : std::nullopt, true});
        }
    }
    return rows;
}

}  // namespace bench
