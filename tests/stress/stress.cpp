// A host that does everything the headers allow, from many threads, with devices that fail in every way they can.
#include <CLI/CLI.hpp>

#include <cstdio>
#include <thread>

#include "ledger.h"
#include "process.h"
#include "round.h"

using namespace stress;
using Clock = std::chrono::steady_clock;

namespace {

struct Settings {
    unsigned seconds = 60;
    unsigned threads = 6;
    unsigned devices = 4;
    uint64_t seed = 1;
    uint64_t events = 200; /* a round goes on until the callbacks have seen as many */
};

constexpr auto kRound = std::chrono::seconds(60); /* sessions come online after a quarter of it */

void waitForFormer(const char* what, long before, long (*count)()) {
    if (waitUntil([&] { return count() <= before; })) return;
    violation(std::string(what) + " left behind: " + std::to_string(count() - before));
}

void play(Site& site, const Settings& settings, uint64_t seed, Clock::time_point end) {
    const long threadsBefore = threadCount();
    const long descriptorsBefore = descriptorCount();
    {
        Round round(site, settings.devices * size_t{3}, seed);
        std::atomic<bool> hostsStop{false};
        std::jthread world([&](const std::stop_token& stop) {
            for (Random random(seed); !stop.stop_requested();) {
                site.happen(random);
                std::this_thread::sleep_for(std::chrono::milliseconds(1 + below(random, 10)));
            }
        });
        std::vector<std::thread> hosts;
        for (unsigned i = 1; i <= settings.threads; ++i) {
            hosts.emplace_back([&, i] {
                for (Random random(seed + i); !hostsStop;) {
                    round.act(random);
                    std::this_thread::sleep_for(std::chrono::milliseconds(below(random, 10)));
                }
            });
        }
        waitUntil([&] { return Clock::now() >= end && round.events() >= settings.events; },
                  std::chrono::seconds(settings.seconds) + std::chrono::minutes(10));
        if (round.events() < settings.events) violation("hardly any events");
        hostsStop = true;
        for (std::thread& thread : hosts)
            thread.join();
        round.finish();
        world.request_stop();
        world.join();
    }
    site.calm();
    waitForFormer("threads", threadsBefore, threadCount);
    waitForFormer("descriptors", descriptorsBefore, descriptorCount);
}

}  // namespace

int main(int argc, char** argv) {
    Settings settings;
    CLI::App app{"Drives the built library from many threads while its devices fail"};
    app.add_option("--seconds", settings.seconds, "how long, at least");
    app.add_option("--threads", settings.threads, "threads of the host");
    app.add_option("--devices", settings.devices, "simulated devices, with three sessions each");
    app.add_option("--seed", settings.seed, "of everything that is random");
    app.add_option("--events", settings.events, "events in each round, at least");
    CLI11_PARSE(app, argc, argv);

    veltasim::raiseOpenFileLimit();
    Site site(settings.devices);
    const auto end = Clock::now() + std::chrono::seconds(settings.seconds);
    uint64_t rounds = 0;
    do {
        play(site, settings, settings.seed + 1000 * rounds++, std::min(end, Clock::now() + kRound));
        std::fprintf(stderr, "round %llu: %llu calls, %d violations\n",
                     static_cast<unsigned long long>(rounds), static_cast<unsigned long long>(notedCalls()),
                     violations());
    } while (Clock::now() < end);
    std::printf("%s\n", violations() == 0 ? "no violations" : "VIOLATIONS");
    return violations() == 0 ? 0 : 1;
}
