#ifndef VELTA_TESTS_TEST_THREADS_H
#define VELTA_TESTS_TEST_THREADS_H

#include <thread>
#include <vector>

#include "../../wait.h"

using velta_test::waitUntil;

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
