// How long it takes until a device is looked at again, by the number of sessions in one process and the part of them
// whose devices are gone.
#include <chrono>
#include <cstdio>
#include <memory>
#include <thread>

#include "child.h"
#include "rows.h"

namespace bench {

namespace {

constexpr int kSessions[] = {10, 50, 100, 200, 500, 1000, 2000};
constexpr int kDeadPercent[] = {0, 1, 5, 10};

struct Point {
    int sessions;
    int dead;
    std::unique_ptr<Child> child;
};

}  // namespace

void printCheckCurve(const FastServer& server) {
    // All at once: the processes sleep most of the time.
    std::vector<Point> points;
    for (const int sessions : kSessions) {
        for (const int percent : kDeadPercent) {
            const int dead = sessions * percent / 100;
            const std::vector<std::string> arguments{"offline",
                                                     std::to_string(server.port()),
                                                     std::to_string(sessions),
                                                     std::to_string(server.deadPort()),
                                                     std::to_string(dead),
                                                     std::to_string(points.size())};
            points.push_back({sessions, dead, std::make_unique<Child>("velta-bench-hold", arguments)});
        }
    }
    std::printf("| sessions | without a device | seconds between two checks of a device |\n|---|---|---|\n");
    std::fflush(stdout);
    for (size_t i = 0; i < points.size(); ++i) {
        Point& point = points[i];
        progress(std::to_string(point.sessions) + " sessions, " + std::to_string(point.dead) +
                 " without a device");
        int64_t between = 0;
        while ((between = server.betweenChecks(static_cast<int>(i))) == 0)
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
        std::printf("| %d | %d | %.1f |\n", point.sessions, point.dead, static_cast<double>(between) / 1e9);
        std::fflush(stdout);
        point.child.reset();
    }
}

}  // namespace bench
