#include <gmock/gmock.h>
#include <xpr/xpr.h>

#include <string>
#include <vector>

using testing::Contains;
using testing::ElementsAreArray;

TEST(Adapter, GetAdapterInfo_listsLoopbackOnceWithItsAddress) {
    XPR_Adapter* first = nullptr;
    ASSERT_EQ(XPR_GetAdapterInfo(&first), XPR_OK);
    std::vector<std::string> loopbackAddresses;
    int loopbacks = 0;
    for (const XPR_Adapter* adapter = first; adapter != nullptr; adapter = adapter->next) {
        if (std::string(adapter->name) != "lo") continue;
        ++loopbacks;
        EXPECT_EQ(adapter->hardwareAddressLength, 6U);
        EXPECT_THAT(adapter->hardwareAddress, ElementsAreArray({0, 0, 0, 0, 0, 0, 0, 0}));
        for (const auto* address = adapter->ipv4; address != nullptr; address = address->next) {
            loopbackAddresses.emplace_back(address->text);
        }
    }
    EXPECT_EQ(loopbacks, 1);
    EXPECT_THAT(loopbackAddresses, Contains("127.0.0.1"));
    XPR_FreeAdapterInfo(first);
    EXPECT_EQ(XPR_GetAdapterInfo(nullptr), XPR_ERROR_PARAMETER);
}
