#include "answer.h"

#include <gtest/gtest.h>

#include <string>

using host::ExitCode;
using host::judgeAnswer;

TEST(Answer, Judge_documentsOfSuccess) {
    for (const char* answer : {
             "<DeviceInfo><deviceName>door</deviceName></DeviceInfo>",
             "<ResponseStatus><statusCode>1</statusCode><statusString>OK</statusString></ResponseStatus>",
             R"({"statusCode":1,"statusString":"OK","subStatusCode":"ok"})",
             R"({"statusCode":7,"statusString":"Reboot Required","subStatusCode":"rebootRequired"})",
             R"({"AccessControl":{}})",
             "[]",
             "",
         }) {
        EXPECT_EQ(judgeAnswer(answer).code, ExitCode::Ok) << answer;
    }
    EXPECT_NE(judgeAnswer(R"({"statusCode":7,"statusString":"Reboot Required"})").reason, "");
}

TEST(Answer, Judge_failures) {
    const host::Verdict json = judgeAnswer(
        R"({"statusCode":6,"statusString":"Content Error","subStatusCode":"badParameters","errorCode":1610612737})");
    EXPECT_EQ(json.code, ExitCode::Failed);
    EXPECT_TRUE(json.fromDevice);
    EXPECT_EQ(json.reason, "Content Error: badParameters (0x60000001)");
    EXPECT_EQ(judgeAnswer("<ResponseStatus version=\"2.0\"><statusCode>4</statusCode></ResponseStatus>").code,
              ExitCode::Failed);
    EXPECT_FALSE(judgeAnswer(R"({"statusCode":4,"subStatusCode":"unKnownErrorCode"})").fromDevice);
}

TEST(Answer, Judge_refusedLogIn) {
    const std::string refused = "<userCheck version=\"2.0\"><statusValue>401</statusValue>";
    EXPECT_EQ(judgeAnswer(refused + "<lockStatus>unlock</lockStatus></userCheck>").code, ExitCode::Refused);
    EXPECT_EQ(judgeAnswer(refused + "<lockStatus>lock</lockStatus></userCheck>").code, ExitCode::Locked);
    EXPECT_EQ(judgeAnswer("<userCheck><statusValue>200</statusValue></userCheck>").code, ExitCode::Ok);
}
