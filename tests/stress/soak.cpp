// Many sessions for a long time: every event that is promised arrives, once and in order, while devices fail;
// and the process does not grow.
//
// An event is promised when its stream lives until it has arrived and nothing follows it too closely: of two events
// that are read at once the second is lost by contract. So a paced device sends its next event when the one before
// has arrived.
#include <malloc.h>
#include <veltasim/device.h>
#include <velta/velta.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <span>

#include "ledger.h"
#include "plugin.h"
#include "process.h"
#include "site.h"

using namespace stress;
using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using veltasim::Device;
using veltasim::FaultKind;

namespace {

const std::string kStreamPath = "/VELTA/Event/notification/alertStream";
constexpr Clock::duration kPaces[] = {200ms, 500ms, 1s, 3s, 10s};
constexpr double kByChance = 0.03; /* so far two figures of the process differ while it does not grow */
constexpr auto kLatest = 120s;     /* a promised event that takes longer is lost */

std::atomic<unsigned long> sent{0}, delivered{0}, cut{0}, faults{0};

/* A session and its device. */
class Pair {
 public:
    Pair(host::Library& library, size_t number)
        : pace_(kPaces[number % std::size(kPaces)]),
          device_({.identity = veltasim::Identity::numbered(static_cast<unsigned>(number)),
                   .capacity = {.events = 10},
                   .heartbeat = std::chrono::milliseconds(0),
                   .maxRecordedRequests = 4,
                   .maxReports = 4,
                   .onRequest = [this](const auto& request) { openings_ += request.path() == kStreamPath; }}),
          session_(library) {
        device_.start();
        session_.connectTo(device_.port());
    }

    /* What a host and its device do all the time: keep the stream open, and send events on it. */
    void drive(Random& random) {
        const auto now = Clock::now();
        settle();
        if (device_.streamCount() == 0) {
            if (now < armAgain_ || session_.status() != VELTA_STATUS_ONLINE) return;
            session_.cancel();  // a stream that the device has ended is not opened again otherwise
            session_.event->SetEventCallBack(session_.instance, onEvent, this);
            armAgain_ = now + 5s;
            return;
        }
        const std::lock_guard guard(mutex_);
        if (awaited_ != 0 || now < due_) return;
        due_ = now + pace_;
        since_ = now;
        openingsThen_ = openings_;
        const auto picture = oneIn(random, 3) ? veltasim::picture(veltasim::PictureSize::Small) : "";
        awaited_ = device_.sendAccessEvent({.picture = std::string(picture)});
        ++sent;
    }

    void fail(Random& random) {
        ++faults;
        switch (below(random, 4)) {
            case 0:
                return device_.powerOff(std::chrono::milliseconds(500 + below(random, 20'000)));
            case 1:
                return device_.setFault(
                    {.kind = FaultKind::SlowBytes, .amount = 2000, .path = kStreamPath, .count = 3});
            case 2:
                return device_.setFault({.kind = FaultKind::Drop, .path = kStreamPath, .count = 1});
            default:
                return device_.endStreams(Device::StreamEnd::AtOnce);
        }
    }
    void recover() {
        device_.clearFaults();
        device_.powerOn();
    }

    /* Whether nothing is awaited any more: the event has come, or is no longer promised since its stream has ended. */
    bool settle() {
        const std::lock_guard guard(mutex_);
        if (awaited_ == 0) return true;
        const bool streamLives = openings_ == openingsThen_ && device_.streamCount() == 1;
        if (streamLives && Clock::now() - since_ < kLatest) return false;
        if (streamLives) violation("event " + std::to_string(awaited_) + " of " + device_.url() + " is lost");
        if (!streamLives) ++cut;
        awaited_ = 0;
        return true;
    }
    host::Session& session() { return session_; }

 private:
    static void onEvent(void*, char*, tagEVENT_BASE_INFO* base, tagEVENT_EXT_INFO*, void* user) {
        Pair& self = *static_cast<Pair*>(user);
        const char* const mark = std::strstr(base->payload, "\"serialNo\":");
        const uint64_t serial = mark == nullptr ? 0 : std::strtoull(mark + 11, nullptr, 10);
        const std::lock_guard guard(self.mutex_);
        if (serial <= self.last_) violation("event " + std::to_string(serial) + " twice or too late");
        self.last_ = serial;
        if (serial != self.awaited_) return;
        self.awaited_ = 0;
        ++delivered;
    }

    const Clock::duration pace_;
    std::atomic<uint64_t> openings_{0};  // of the device's stream
    Device device_;
    std::mutex mutex_;           // guards what follows, up to the next empty line
    uint64_t awaited_ = 0;       // the event that is on its way; 0: none
    Clock::time_point since_{};  // when it was sent
    uint64_t openingsThen_ = 0;
    uint64_t last_ = 0;

    Clock::time_point due_{};
    Clock::time_point armAgain_{};
    host::Session session_;
};

struct Sample {
    long resident = residentKiB();
    long heap = static_cast<long>((mallinfo2().uordblks + mallinfo2().hblkhd) >> 10);
    long descriptors = descriptorCount();
    long threads = threadCount();
};

/* Compares the first and the last quarter of what came after the warm-up, the first third of all. */
void judge(std::vector<Sample> samples) {
    samples.erase(samples.begin(), samples.begin() + static_cast<long>(samples.size() / 3));
    const size_t quarter = samples.size() / 4;
    if (quarter < 3) return void(std::printf("too short for a verdict on growth\n"));
    const std::span first(samples.data(), quarter);
    const std::span last(samples.end() - static_cast<long>(quarter), samples.end());
    for (const auto& [name, figure] : {std::pair("resident KiB", &Sample::resident),
                                       {"heap KiB", &Sample::heap},
                                       {"descriptors", &Sample::descriptors},
                                       {"threads", &Sample::threads}}) {
        const long early = std::ranges::max(first, {}, figure).*figure;
        const long late = std::ranges::max(last, {}, figure).*figure;
        std::printf("%-14s at most %ld early, %ld late\n", name, early, late);
        if (static_cast<double>(late - early) > kByChance * static_cast<double>(early))
            violation(std::string(name) + " grows");
    }
}

}  // namespace

int main(int argc, char** argv) {
    unsigned sessions = 200;
    unsigned seconds = 1800;
    uint64_t events = 1;
    uint64_t seed = 1;
    CLI::App app{"Drives many sessions for long, counts their events and watches the size of the process"};
    app.add_option("--sessions", sessions, "sessions, each with a simulated device");
    app.add_option("--seconds", seconds, "how long, at least");
    app.add_option("--events", events, "promised events to deliver, at least");
    app.add_option("--seed", seed, "of everything that is random");
    CLI11_PARSE(app, argc, argv);

    veltasim::raiseOpenFileLimit();
    host::Library library;
    reinterpret_cast<void (*)(int)>(library.symbol("xlog_set_level"))(6);
    if (library.record->Init() != VELTA_OK) return 1;
    library.setConfig("SetEventSub", "1");
    std::deque<Pair> pairs;
    for (unsigned i = 0; i < sessions; ++i)
        pairs.emplace_back(library, i);

    Random random(seed);
    std::vector<Sample> samples;
    const auto start = Clock::now();
    auto nextSample = start;
    auto nextFault = start + 20s;
    const auto enough = [&] {
        return Clock::now() - start > std::chrono::seconds(seconds) && delivered >= events && cut > 0;
    };
    for (; !enough() && violations() == 0; std::this_thread::sleep_for(5ms)) {
        for (Pair& pair : pairs)
            pair.drive(random);
        if (Clock::now() >= nextFault) {
            nextFault += 1s;
            pairs[below(random, pairs.size())].fail(random);
        }
        if (Clock::now() >= nextSample) {
            nextSample += 10s;
            samples.emplace_back();
            const auto now = std::chrono::duration_cast<std::chrono::seconds>(Clock::now() - start);
            std::printf("%ld s: %lu events sent, %lu delivered, %lu cut with their streams, %lu faults\n",
                        static_cast<long>(now.count()), sent.load(), delivered.load(), cut.load(),
                        faults.load());
            std::fflush(stdout);
        }
    }
    for (Pair& pair : pairs)
        pair.recover();
    const bool settled = waitUntil(
        [&] { return std::ranges::all_of(pairs, [](Pair& p) { return p.settle(); }); }, kLatest * 2);
    if (!settled) violation("events are still awaited");
    judge(samples);
    for (Pair& pair : pairs)
        pair.session().destroy();
    if (library.record->Uninit() != VELTA_OK) violation("Uninit is refused");
    std::printf("%lu promised events delivered, %d violations\n", delivered.load(), violations());
    return violations() == 0 ? 0 : 1;
}
