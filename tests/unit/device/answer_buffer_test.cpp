#include "device/AnswerBuffer.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

using velta::AnswerBuffer;

TEST(AnswerBuffer, isKeptWithoutWhatWasInIt) {
    const char* kept = nullptr;
    {
        AnswerBuffer first;
        const AnswerBuffer second;
        ASSERT_NE(first.data(), nullptr);
        ASSERT_NE(first.data(), second.data());
        std::memset(first.data(), 'x', 1000);
        first.setLength(1000);
        kept = first.data();
    }
    const AnswerBuffer next;
    ASSERT_EQ(next.data(), kept);
    EXPECT_EQ(std::strlen(next.data()), 0U);
    EXPECT_EQ(next.data()[999], '\0');
}

}  // namespace
