/* What this process holds at the moment. */
#pragma once

#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>

namespace stress {

inline long entriesOf(const char* folder) {
    return std::distance(std::filesystem::directory_iterator(folder), {});
}
inline long threadCount() {
    return entriesOf("/proc/self/task");
}
inline long descriptorCount() {
    return entriesOf("/proc/self/fd");
}
inline long residentKiB() {
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;) {
        if (word == "VmRSS:" && status >> word) return std::stol(word);
    }
    return -1;
}

/* Waits for a condition that some other thread brings about. */
template <class Condition>
bool waitUntil(Condition condition, std::chrono::seconds limit = std::chrono::seconds(120)) {
    const auto end = std::chrono::steady_clock::now() + limit;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return true;
}

}  // namespace stress
