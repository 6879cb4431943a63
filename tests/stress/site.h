/* The simulated devices of the stress program, and what befalls them. */
#pragma once

#include <veltasim/device.h>

#include <memory>
#include <mutex>
#include <random>
#include <set>
#include <string>
#include <vector>

namespace stress {

using Random = std::mt19937_64;

inline size_t below(Random& random, size_t end) {
    return std::uniform_int_distribution<size_t>(0, end - 1)(random);
}
inline bool oneIn(Random& random, size_t cases) {
    return below(random, cases) == 0;
}

/* One row of a table of things to do. */
template <class Function>
struct Chance {
    unsigned weight;
    Function* run;
};
template <class Function, size_t N>
Function* choose(const Chance<Function> (&rows)[N], Random& random) {
    size_t sum = 0;
    for (const auto& row : rows)
        sum += row.weight;
    size_t left = below(random, sum);
    const Chance<Function>* row = rows;
    for (; left >= row->weight; ++row)
        left -= row->weight;
    return row->run;
}

class Site {
 public:
    explicit Site(size_t devices);

    std::vector<std::unique_ptr<veltasim::Device>> devices;

    /* Lets something happen to one device: events, faults, loss of power. One thread. */
    void happen(Random& random);
    /* Ends all faults and locks. */
    void calm();
    size_t streams() const;

    /* Whether the request with this target is at its device, which has not answered yet. */
    bool arrived(const std::string& target) const;

 private:
    mutable std::mutex mutex_;
    std::set<std::string> marked_;
};

/* Paths that begin so are noted by arrived(). */
inline const std::string kMarkedPath = "/VELTA/Marked/";

}  // namespace stress
