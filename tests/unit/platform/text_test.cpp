#include <gtest/gtest.h>
#include <xpr/text.h>

#include <climits>
#include <utility>

TEST(Text, Strcmp_nullSortsFirst) {
    EXPECT_EQ(XPR_Strcmp(nullptr, nullptr), 0);
    EXPECT_LT(XPR_Strcmp(nullptr, ""), 0);
    EXPECT_GT(XPR_Strcmp("", nullptr), 0);
}

TEST(Text, Strncpy_alwaysTerminatesWithinCapacity) {
    const struct {
        const char* source;
        size_t capacity, count;
        const char* expected;
    } cases[] = {
        {"door", 8, 8, "door"}, {"door", 4, 8, "doo"}, {"door", 8, 2, "do"},
        {"door", 1, 8, ""},     {nullptr, 8, 8, ""},
    };
    for (const auto& c : cases) {
        char target[9] = "########";
        EXPECT_EQ(XPR_Strncpy(target, c.capacity, c.source, c.count), target);
        EXPECT_STREQ(target, c.expected);
        EXPECT_EQ(target[c.capacity], c.capacity == 8 ? '\0' : '#');
    }
    const char unterminated[] = {'a', 'b'};
    char target[8] = "";
    EXPECT_STREQ(XPR_Strncpy(target, sizeof target, unterminated, sizeof unterminated), "ab");
    EXPECT_EQ(XPR_Strncpy(nullptr, 8, "x", 1), nullptr);
    EXPECT_STREQ(XPR_Strncpy(target, 0, "x", 1), "ab");
}

TEST(Text, Atoi32_saturates) {
    EXPECT_EQ(XPR_Atoi32(nullptr), 0);
    for (const auto& [text, expected] :
         {std::pair("", 0), {" \t-17x", -17}, {"2147483648", INT_MAX}, {"99999999999999999999999", INT_MAX}})
        EXPECT_EQ(XPR_Atoi32(text), expected) << text;
}
