// Thousands of armed sessions in one process, against as many streams that do nothing.
#include <cstdlib>
#include <stdexcept>
#include <thread>

#include "child.h"
#include "rows.h"

namespace bench {

namespace {

using namespace std::chrono_literals;

constexpr auto kWindow = 20s;
constexpr int kEvents = 5;

bool waitFor(const std::function<bool()>& condition, std::chrono::seconds limit) {
    const auto end = std::chrono::steady_clock::now() + limit;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::sleep_for(50ms);
    }
    return true;
}

double ask(Child& child, const std::string& order) {
    child.say(order);
    const std::vector<double> answer = child.hear();
    if (answer.empty()) throw std::runtime_error("the process that holds the sessions has ended");
    return answer.front();
}

/* KiB of memory for each stream that a child holds open. */
double memoryOfEach(FastServer& server, Child& child, int count) {
    const double before = child.hear().at(0);
    // Sessions open their streams when the online check has found them, 20 ms apart.
    if (!waitFor([&] { return server.streams() == static_cast<uint32_t>(count); },
                 std::chrono::seconds(60 + count / 20)))
        throw std::runtime_error("only " + std::to_string(server.streams()) + " streams were opened");
    std::this_thread::sleep_for(2s);
    return (ask(child, "resident") - before) / count;
}

/* Microseconds of processor time that a child uses while nothing is asked of it. */
double processorIn(Child& child) {
    const double before = ask(child, "processor");
    std::this_thread::sleep_for(kWindow);
    return ask(child, "processor") - before;
}

}  // namespace

Rows sessionRows(FastServer& server, int count) {
    const std::string number = std::to_string(count);
    const std::vector<std::string> arguments{std::to_string(server.port()), number};
    double idle = 0;
    Row memory{"armed session, memory (" + number + " sessions)", "KiB", {}, {}, 1.15};
    progress(number + " bare streams");
    {
        Child child("velta-bench-hold", {"bare", arguments[0], arguments[1]});
        memory.limit.values.push_back(memoryOfEach(server, child, count));
        idle = processorIn(child);
        child.say("end");
        child.hear();
    }
    waitFor([&] { return server.streams() == 0; }, 60s);

    progress(number + " armed sessions: the online checks come 20 ms after one another");
    Child child("velta-bench-hold", {"plugin", arguments[0], arguments[1]});
    memory.ours.values.push_back(memoryOfEach(server, child, count));

    progress("processor time of online checks");
    const uint32_t checksBefore = server.checks();
    const double used = processorIn(child);
    const uint32_t checks = server.checks() - checksBefore;
    // The HTTP library looks at each open stream once a second, whoever opened it.
    Row check{"online check of a device, processor time", "us", {{(used - idle) / checks}}, {}, 1000};

    progress("events from all of them");
    for (int i = 0; i < kEvents; ++i) {
        server.emit(0);
        std::this_thread::sleep_for(1s);
    }
    double arrived = 0;
    waitFor([&] { return (arrived = ask(child, "events")) >= static_cast<double>(kEvents) * count; }, 60s);
    Row events{"events that arrive of " + std::to_string(kEvents * count),
               "",
               {{arrived}},
               {},
               1.0 * kEvents * count,
               true};

    progress("the end of all");
    Row teardown{
        "destroying " + number + " armed sessions, and Uninit", "ms", {{ask(child, "end")}}, {}, 10000};
    return {memory, check, events, teardown};
}

}  // namespace bench
