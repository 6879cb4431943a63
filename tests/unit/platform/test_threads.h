#ifndef VELTA_TESTS_TEST_THREADS_H
#define VELTA_TESTS_TEST_THREADS_H

#include <chrono>
#include <thread>
#include <vector>

/* Waits until the condition holds; false when it still does not after a time that only a fault can take. */
template <typename Condition>
bool eventually(Condition condition) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

/* Threads that run the function, each with its number; they are joined with the vector. */
template <typename Function>
std::vector<std::jthread> startThreads(int count, Function run) {
    std::vector<std::jthread> threads;
    threads.reserve(static_cast<size_t>(count));
    for (int i = 0; i < count; ++i)
        threads.emplace_back(run, i);
    return threads;
}

#endif
