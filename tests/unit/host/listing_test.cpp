#include <gtest/gtest.h>

#include "pager.h"
#include "table.h"
#include "text.h"

namespace {

host::Pager after(host::Pager pager, const char* page) {
    Json::Value json;
    host::parseJson(page, json);
    pager.advance(json);
    return pager;
}

}  // namespace

TEST(Pager, Advance_untilTheDeviceHasNoMore) {
    const host::Pager first =
        after(host::Pager(), R"({"numOfMatches":30,"totalMatches":40,"responseStatusStrg":"MORE"})");
    EXPECT_EQ(first.position(), 30U);
    EXPECT_FALSE(first.isAtEnd());
    for (const char* last :
         {R"({"numOfMatches":10,"totalMatches":40,"responseStatusStrg":"OK"})",
          R"({"numOfMatches":10,"totalMatches":40})",
          R"({"numOfMatches":0,"totalMatches":40,"responseStatusStrg":"MORE"})", "{}", "[]"})
        EXPECT_TRUE(after(first, last).isAtEnd()) << last;
    EXPECT_FALSE(after(first, R"({"numOfMatches":9,"totalMatches":40})").isAtEnd());
}

TEST(Pager, Limit_asksForNoMoreThanIsWanted) {
    const host::Pager pager =
        after(host::Pager(5, 40), R"({"numOfMatches":30,"totalMatches":99,"responseStatusStrg":"MORE"})");
    EXPECT_EQ(pager.position(), 35U);
    EXPECT_EQ(pager.pageSize(), 10U);
    EXPECT_TRUE(after(pager, R"({"numOfMatches":12,"responseStatusStrg":"MORE"})").isAtEnd());
}

TEST(Table, Widths_areKeptFromPieceToPiece) {
    std::vector<size_t> widths;
    EXPECT_EQ(host::table({{"NAME", "N"},
                           {"\xC3\x84"
                            "da L.",
                            "1"}},
                          widths),
              "NAME    N\n\xC3\x84"
              "da L.  1");
    EXPECT_EQ(host::table({{"Bo", "2"}}, widths), "Bo      2");
}
