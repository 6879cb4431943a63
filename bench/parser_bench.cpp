// The alert stream parser: events with pictures of several sizes, cut into chunks of several sizes.
#include <benchmark/benchmark.h>

#include <random>
#include <string>

#include "device/AlertStreamParser.h"

namespace {

std::string eventWithPicture(size_t size) {
    std::mt19937 random(1);
    std::string picture(size, '\0');
    for (char& byte : picture)
        byte = static_cast<char>(random());
    const std::string json = R"({"ipAddress":"10.0.0.5","AccessControllerEvent":{"picturesNumber":1}})";
    return "--velta_events\r\nContent-Type: application/json\r\nContent-Length: " +
           std::to_string(json.size()) + "\r\n\r\n" + json +
           "\r\n--velta_events\r\nContent-Type: image/jpeg\r\nContent-Length: " + std::to_string(size) +
           "\r\n\r\n" + picture;
}

void parsePictures(benchmark::State& state) {
    const std::string event = eventWithPicture(static_cast<size_t>(state.range(0)));
    const size_t chunk = static_cast<size_t>(state.range(1));
    size_t messages = 0;
    velta::AlertStreamParser parser([&](std::string message) {
        benchmark::DoNotOptimize(message.data());
        ++messages;
    });
    for (const char* line :
         {"HTTP/1.1 200 OK\r\n", "Content-Type: multipart/mixed; boundary=velta_events\r\n", "\r\n"}) {
        parser.feed(line);
    }
    for (auto _ : state) {  // NOLINT(clang-analyzer-deadcode.DeadStores)
        for (size_t at = 0; at < event.size(); at += chunk)
            parser.feed(std::string_view(event).substr(at, chunk));
    }
    if (messages != static_cast<size_t>(state.iterations())) state.SkipWithError("a message is missing");
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * event.size()));
}
BENCHMARK(parsePictures)
    ->ArgNames({"picture", "chunk"})
    ->ArgsProduct({{10'000, 1'000'000, 10'000'000}, {256, 1024, 16384}})
    ->Unit(benchmark::kMicrosecond);

}  // namespace
