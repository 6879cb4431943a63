// Loading the library, in fresh processes, against loading the HTTP library that it needs; and its size.
#include <sys/stat.h>

#include "child.h"
#include "rows.h"

namespace bench {

namespace {

constexpr int kTimes = 25;

}  // namespace

Rows loadingRows() {
    progress("loading");
    Row time{"load, Init, first instance", "ms", {}, {}, 1.2};
    Row threads{"threads before Init, besides the host's own", "", {}, {}, 0};
    Row sockets{"sockets before Init", "", {}, {}, 0};
    takeTurns(
        kTimes, time.ours,
        [&] {
            const std::vector<double> heard = Child("velta-bench-load", {"plugin", VELTADEV_PATH}).hear();
            threads.ours.values = {heard.at(1) - 1};
            sockets.ours.values = {heard.at(2)};
            return heard.at(0);
        },
        time.limit,
        [] {
            return Child("velta-bench-load", {"bare", "libcurl.so.4"}).hear().at(0);
        });
    struct stat file {};
    stat(VELTADEV_PATH, &file);
    Row size{"library, stripped", "KB", {{static_cast<double>(file.st_size) / 1000}}, {}, 1000};
    return {time, threads, sockets, size};
}

}  // namespace bench
