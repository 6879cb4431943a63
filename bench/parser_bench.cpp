// The alert stream parser: events with pictures of several sizes, cut into chunks of several sizes.
#include <benchmark/benchmark.h>

#include <random>
#include <string>

#include "bare.h"
#include "device/AlertStreamParser.h"
#include "fast_server.h"

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

const std::string kEvent = bench::eventJson("10.0.0.5", 80, false);

void parseEvents(benchmark::State& state) {
    size_t bytes = 0;
    velta::AlertStreamParser parser([&](const std::string& message) { bytes += message.size(); });
    for (const char* line :
         {"HTTP/1.1 200 OK\r\n", "Content-Type: multipart/mixed; boundary=velta_events\r\n", "\r\n"}) {
        parser.feed(line);
    }
    const std::string part =
        "--velta_events\r\nContent-Type: application/json; charset=\"UTF-8\"\r\nContent-Length: " +
        std::to_string(kEvent.size()) + "\r\n\r\n" + kEvent + "\r\n";
    for (auto _ : state)  // NOLINT(clang-analyzer-deadcode.DeadStores)
        parser.feed(part);
    benchmark::DoNotOptimize(bytes);
}
BENCHMARK(parseEvents);

void eventsBare(benchmark::State& state) {
    for (auto _ : state)  // NOLINT(clang-analyzer-deadcode.DeadStores)
        benchmark::DoNotOptimize(bench::bareJson(kEvent));
}
BENCHMARK(eventsBare);

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

/* The same bytes in the same chunks, appended to a buffer that has room for them. */
void copyPictures(benchmark::State& state) {
    const std::string event = eventWithPicture(static_cast<size_t>(state.range(0)));
    const size_t chunk = static_cast<size_t>(state.range(1));
    std::string buffer;
    buffer.reserve(event.size());
    for (auto _ : state) {  // NOLINT(clang-analyzer-deadcode.DeadStores)
        buffer.clear();
        for (size_t at = 0; at < event.size(); at += chunk)
            buffer.append(std::string_view(event).substr(at, chunk));
        benchmark::DoNotOptimize(buffer.data());
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * event.size()));
}

void sizes(benchmark::internal::Benchmark* measured) {
    measured->ArgNames({"picture", "chunk"})
        ->ArgsProduct({{10'000, 1'000'000, 10'000'000}, {256, 1024, 16384}})
        ->Unit(benchmark::kMicrosecond);
}
BENCHMARK(parsePictures)->Apply(sizes);
BENCHMARK(copyPictures)->Apply(sizes);

}  // namespace
