// The way of a host's request up to the exchange: forwarding is the most frequent request, and passes all routes.
#include <benchmark/benchmark.h>
#include <json/reader.h>

#include "device/CVeltaDevice.h"
#include "gateway/Envelope.h"
#include "gateway/Url.h"

namespace {

constexpr std::string_view kEnvelope =
    R"({"method":"GET","uri":"/VELTA/System/Video/inputs/channels/1?devIndex=1&format=json","body":""})";

void routeMiss(benchmark::State& state) {
    CVeltaDevice device;
    velta::HostRequest request{"GET", "/VELTA/System/Video/inputs/channels/1?devIndex=1&format=json", {}};
    std::string answer;
    for (auto _ : state) {  // NOLINT(clang-analyzer-deadcode.DeadStores)
        auto code = device.DealwithCommOpt(request, answer);
        benchmark::DoNotOptimize(code);
    }
}
BENCHMARK(routeMiss);

void envelopeAndRouteMiss(benchmark::State& state) {
    CVeltaDevice device;
    std::string answer;
    for (auto _ : state) {  // NOLINT(clang-analyzer-deadcode.DeadStores)
        velta::HostRequest request;
        std::string path;
        bool read = velta::readEnvelope(kEnvelope, request);
        auto code = device.DealwithCommOpt(request, answer);
        bool forwarded = velta::removeQueryFromUrl(path, request.uri.c_str(), "devIndex");
        benchmark::DoNotOptimize(read);
        benchmark::DoNotOptimize(code);
        benchmark::DoNotOptimize(forwarded);
    }
}
BENCHMARK(envelopeAndRouteMiss);

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
void envelopeBare(benchmark::State& state) {
    for (auto _ : state) {  // NOLINT(clang-analyzer-deadcode.DeadStores)
        Json::Value root;
        Json::Reader reader;
        benchmark::DoNotOptimize(reader.parse(kEnvelope.data(), kEnvelope.data() + kEnvelope.size(), root));
    }
}
#pragma GCC diagnostic pop
BENCHMARK(envelopeBare);

}  // namespace
