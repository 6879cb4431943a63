/* Waiting for what some other thread or process brings about. */
#pragma once

#include <chrono>
#include <thread>

namespace velta_test {

/* Whether the condition came true; the limit is a time that only a fault can take. */
template <class Condition>
bool waitUntil(Condition condition, std::chrono::seconds limit = std::chrono::seconds(120)) {
    const auto end = std::chrono::steady_clock::now() + limit;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return true;
}

}  // namespace velta_test
