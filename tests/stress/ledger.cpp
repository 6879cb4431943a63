#include "ledger.h"

#include <sys/syscall.h>
#include <unistd.h>
#include <velta/velta.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <iterator>
#include <map>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

namespace stress {
namespace {

using Clock = std::chrono::steady_clock;
constexpr auto kLongestCall = std::chrono::minutes(2);

constexpr auto kRefused = static_cast<uint32_t>(VELTA_REFUSED);
constexpr auto kNoSuchInterface = static_cast<uint32_t>(VELTA_NO_SUCH_INTERFACE);

/* The results that the headers name. Calls that are made to be refused have names of their own. */
const std::map<std::string, std::vector<uint32_t>> kDocumented = {
    {"Init", {VELTA_OK}},
    {"Init, again", {kRefused}},
    {"Uninit", {VELTA_OK}},
    {"Uninit, sessions alive", {kRefused}},
    {"CreateInstance", {VELTA_OK}},
    {"DestroyInstance", {VELTA_OK}},
    {"DestroyInstance, in its event callback", {VELTA_OK}},
    {"DestroyInstance, under a request", {VELTA_OK}},
    {"QueryInterface", {VELTA_OK}},
    {"QueryInterface, unknown", {kNoSuchInterface}},
    {"SetConnStatusCallBack", {VELTA_OK}},
    {"Connect_V2", {VELTA_OK}},
    {"Connect_V2, bad value", {VELTA_E_BAD_PARAMETER}},
    {"Connect_V2, null", {VELTA_E_NULL_PARAMETER}},
    {"DisConnect", {VELTA_OK}},
    {"GetConnectStatus", {VELTA_OK}},
    {"SetEventCallBack", {VELTA_OK, VELTA_E_OFFLINE}},
    {"SetEventCallBack, null", {VELTA_OK, VELTA_E_OFFLINE, kRefused}},
    {"VELTA_Getway", {VELTA_OK}},
    {"DeviceLoop", {VELTA_OK, VELTA_E_BAD_PARAMETER}},
    {"not offered", {VELTA_E_NOT_SUPPORTED}},
    {"without an instance", {VELTA_E_NO_INTERFACE}},
    {"Plugin_SetConfig", {VELTA_OK}},
    {"Plugin_SetConfig, bad", {kRefused}},
    {"(event callback)", {VELTA_OK}},
    {"(status callback)", {VELTA_OK}},
    {"(device)", {VELTA_OK}},
};

struct Place {
    const long thread = syscall(SYS_gettid);
    std::atomic<const char*> call{nullptr};
    std::atomic<Clock::rep> since{0};
};

std::mutex mutex;  // guards what follows
std::map<std::pair<std::string, uint32_t>, uint64_t> calls;
std::deque<Place> places;  // of threads that have ended, too: those are in no call
std::atomic<uint64_t> total{0};
std::atomic<int> found{0};

Place& place() {
    thread_local Place* mine = nullptr;
    if (mine == nullptr) {
        const std::lock_guard guard(mutex);
        mine = &places.emplace_back();
    }
    return *mine;
}

void endIfOneHangs() {
    const std::lock_guard guard(mutex);
    const auto now = Clock::now().time_since_epoch();
    const auto lasts = [now](const Place& p) {
        return p.call.load() == nullptr ? Clock::duration(0) : now - Clock::duration(p.since);
    };
    if (std::ranges::none_of(places, [&](const Place& p) { return lasts(p) > kLongestCall; })) return;
    std::fprintf(stderr, "HANG; each thread, what it does, and for how long:\n");
    for (const Place& p : places) {
        const char* const call = p.call;
        if (call == nullptr) continue;
        std::fprintf(stderr, "%8ld  %-40s %8.1f s\n", p.thread, call,
                     std::chrono::duration<double>(lasts(p)).count());
    }
    std::abort();
}

}  // namespace

uint32_t note(const char* call, int result) {
    const auto code = static_cast<uint32_t>(result);
    ++total;
    const auto row = kDocumented.find(call);
    if (row == kDocumented.end() || std::ranges::find(row->second, code) == row->second.end()) {
        char text[32];
        std::snprintf(text, sizeof text, ": result 0x%08X", code);
        violation(std::string(call) + text);
    }
    const std::lock_guard guard(mutex);
    ++calls[{call, code}];
    return code;
}

uint64_t notedCalls() {
    return total;
}

void printCalls() {
    const std::lock_guard guard(mutex);
    for (const auto& [key, count] : calls)
        std::printf("%-40s 0x%08X %10llu\n", key.first.c_str(), key.second,
                    static_cast<unsigned long long>(count));
}

void violation(const std::string& what) {
    if (++found <= 50) std::fprintf(stderr, "VIOLATION: %s\n", what.c_str());
}

int violations() {
    return found;
}

Doing::Doing(const char* call) : call_(call), before_(place().call) {
    place().since = Clock::now().time_since_epoch().count();
    place().call = call;
}

Doing::~Doing() {
    place().since = Clock::now().time_since_epoch().count();
    place().call = before_;
}

std::jthread watchdog() {
    return std::jthread([](const std::stop_token& stop) {
        while (!stop.stop_requested()) {
            std::this_thread::sleep_for(std::chrono::milliseconds(200));
            endIfOneHangs();
        }
    });
}

}  // namespace stress
