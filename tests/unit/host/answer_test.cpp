#include "answer.h"

#include <gtest/gtest.h>

#include <string>

using host::ExitCode;
using host::judgeAnswer;

TEST(Answer, Judge_documentsOfSuccess) {
    for (const char* answer : {
             "<DeviceInfo><deviceName>door</deviceName></DeviceInfo>",
             R"({"statusCode":1,"statusString":"OK","subStatusCode":"ok"})",
             R"({"statusCode":7,"statusString":"Reboot Required","subStatusCode":"rebootRequired"})",
             "",
         }) {
        EXPECT_EQ(judgeAnswer(answer).code, ExitCode::Ok) << answer;
    }
    EXPECT_NE(judgeAnswer(R"({"statusCode":7,"statusString":"Reboot Required"})").reason, "");
}

TEST(Answer, Judge_failures) {
    const host::Verdict json = judgeAnswer(
        R"({"statusCode":6,"statusString":"Content Error","subStatusCode":"badParameters","errorCode":1610612737,"errorMsg":"Incorrect parameter."})");
    EXPECT_EQ(json.code, ExitCode::Failed);
    EXPECT_FALSE(json.isConclusive);
    EXPECT_EQ(json.status.errorCode, 0x60000001);
    EXPECT_EQ(json.reason, "0x60000001 badParameters: Incorrect parameter.");
    EXPECT_EQ(judgeAnswer("<ResponseStatus version=\"2.0\"><statusCode>4</statusCode></ResponseStatus>").code,
              ExitCode::Failed);
    EXPECT_EQ(judgeAnswer(R"({"errorCode":1610637315})").code, ExitCode::Failed);
    EXPECT_TRUE(judgeAnswer(R"({"statusCode":6,"subStatusCode":"cardNoNotExist"})").isConclusive);
    EXPECT_FALSE(judgeAnswer(R"({"statusCode":4,"subStatusCode":"unKnownErrorCode"})").isConclusive);
}

TEST(Answer, Judge_refusedLogIn) {
    const std::string refused = "<userCheck version=\"2.0\"><httpStatus>401</httpStatus>";
    EXPECT_EQ(judgeAnswer(refused + "<lockStatus>unlock</lockStatus></userCheck>").code, ExitCode::Refused);
    EXPECT_EQ(judgeAnswer(refused + "<lockStatus>lock</lockStatus></userCheck>").code, ExitCode::Locked);
    EXPECT_EQ(judgeAnswer("<userCheck><httpStatus>200</httpStatus></userCheck>").code, ExitCode::Ok);
}
