#include "gateway/ResponseStatus.h"

#include <gtest/gtest.h>

#include "gateway/JsonText.h"

namespace {

TEST(ResponseStatus, findsCataloguedNumbers) {
    struct Case {
        uint32_t errorNo;
        int statusCode;
        const char* statusString;
        const char* subStatusCode;
        uint32_t httpStatus;
    };
    const Case cases[] = {
        {1, 1, "OK", "ok", 200},
        {0x10000002, 1, "OK", "riskPassword", 200},
        {0x20000009, 2, "Device Busy", "networkError", 503},
        {0x30000014, 3, "Device Error", "internalError", 403},
        {0x40001005, 4, "Invalid Operation", "importError", 403},
        {0x4000102D, 4, "Invalid Operation", "getAddedNodeInformationFailed", 403},
        {0x4000110D, 4, "Invalid Operation", "cloudAnalysisExtractFeaturePointsFailed", 403},
        {0x50000002, 5, "Invalid Format", "badJsonFormat", 400},
        {0x60000053, 6, "Content Error", "WANNotSupport", 400},
        {0x70000001, 7, "Reboot Required", "rebootRequired", 200},
    };
    for (const Case& c : cases) {
        Json::Value status;
        uint32_t httpStatus = 0;
        ASSERT_TRUE(getResponseStatusByErrorNo(c.errorNo, status, httpStatus)) << std::hex << c.errorNo;
        EXPECT_EQ(status["statusCode"].asInt(), c.statusCode);
        EXPECT_EQ(status["statusString"].asString(), c.statusString);
        EXPECT_EQ(status["subStatusCode"].asString(), c.subStatusCode);
        EXPECT_EQ(status["errorCode"].asUInt(), c.errorNo);
        EXPECT_EQ(httpStatus, c.httpStatus);
    }
    EXPECT_EQ(velta::writeJson(velta::hostStatus(0x60000001)),
              "{\"errorCode\":1610612737,\"errorMsg\":\"Incorrect parameter.\",\"statusCode\":6,"
              "\"statusString\":\"Content Error\",\"subStatusCode\":\"badParameters\"}\n");
}

TEST(ResponseStatus, leavesUnknownNumbersAlone) {
    for (const uint32_t errorNo : {0U, 2U, 0x80000001U, 0xFFFFFFFFU, 0x6FFFFFFFU, 0x20000001U}) {
        Json::Value status("untouched");
        uint32_t httpStatus = 7;
        EXPECT_FALSE(getResponseStatusByErrorNo(errorNo, status, httpStatus)) << std::hex << errorNo;
        EXPECT_EQ(status.asString(), "untouched");
        EXPECT_EQ(httpStatus, 7U);
        EXPECT_EQ(velta::hostStatus(errorNo)["subStatusCode"].asString(), "unKnownErrorCode");
    }
}

TEST(ResponseStatus, groupsHaveHttpStatuses) {
    EXPECT_EQ(getHttpStatusCodeByErrorNo(0), 200U);
    EXPECT_EQ(getHttpStatusCodeByErrorNo(0x40000003), 401U);
    EXPECT_EQ(getHttpStatusCodeByErrorNo(0x40000002), 403U);
    EXPECT_EQ(getHttpStatusCodeByErrorNo(0x20000001), 503U);
    EXPECT_EQ(getHttpStatusCodeByErrorNo(0x70000001), 200U);
    uint32_t httpStatus = 7;
    EXPECT_FALSE(getHttpStatusCodeByErrorNo(0x80000001, httpStatus));
    EXPECT_EQ(httpStatus, 7U);
    EXPECT_EQ(getHttpStatusCodeByErrorNo(0xFFFFFFFF), 200U);
}

TEST(ErrorCatalogue, isSortedAndComplete) {
    const size_t sizes[] = {2, 1, 4, 232, 3, 234, 2};
    for (uint32_t group = 1; group <= 7; ++group) {
        const auto entries = velta::errorGroup(group)->entries;
        EXPECT_EQ(entries.size(), sizes[group - 1]) << group;
        for (size_t i = 1; i < entries.size(); ++i)
            EXPECT_LT(entries[i - 1].errorNo, entries[i].errorNo);
    }
    EXPECT_EQ(velta::errorGroup(0), nullptr);
    EXPECT_EQ(velta::errorGroup(8), nullptr);
    EXPECT_STREQ(velta::errorGroup(6)->entries.front().subStatusCode,
                 "importErrorData");  // misfiled, and never found
}

}  // namespace
