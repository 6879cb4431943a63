// The way of a host's request up to the exchange: forwarding is the most frequent request, and passes all routes.
#include <benchmark/benchmark.h>

#include "device/CVeltaDevice.h"
#include "gateway/JsonText.h"

namespace {

void routeMiss(benchmark::State& state) {
    CVeltaDevice device;
    const velta::HostRequest request{
        "GET", "/VELTA/System/Video/inputs/channels/1?devIndex=1&format=json", {}};
    std::string answer;
    for (auto _ : state) {
        auto code = device.DealwithCommOpt(request, answer);
        benchmark::DoNotOptimize(code);
    }
}
BENCHMARK(routeMiss);

// An envelope that no route takes and that is not forwarded either, for want of the host's parameter.
void envelopeAndRouteMiss(benchmark::State& state) {
    CVeltaDevice device;
    std::string request =
        R"({"method":"GET","uri":"/VELTA/System/Video/inputs/channels/1?format=json","body":""})";
    std::string answer(1000, ' ');
    for (auto _ : state)
        device.VELTA_Getway(request.data(), answer.data(), static_cast<unsigned>(answer.size()), nullptr);
}
BENCHMARK(envelopeAndRouteMiss);

void parseOfTheEnvelope(benchmark::State& state) {
    const std::string request =
        R"({"method":"GET","uri":"/VELTA/System/Video/inputs/channels/1?format=json","body":""})";
    for (auto _ : state) {
        Json::Value root;
        benchmark::DoNotOptimize(velta::parseJson(request, root));
    }
}
BENCHMARK(parseOfTheEnvelope);

}  // namespace
