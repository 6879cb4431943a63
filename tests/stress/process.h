/* What this process holds at the moment. */
#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "../wait.h"

namespace stress {

using velta_test::waitUntil;

inline long entriesOf(const char* folder) {
    return std::distance(std::filesystem::directory_iterator(folder), {});
}
inline long threadCount() {
    return entriesOf("/proc/self/task");
}
inline long descriptorCount() {
    return entriesOf("/proc/self/fd");
}
inline long statusKiB(const std::string& name) {
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;) {
        if (word == name && status >> word) return std::stol(word);
    }
    return -1;
}
inline long residentKiB() {
    return statusKiB("VmRSS:");
}

}  // namespace stress
