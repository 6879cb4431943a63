#include "event_text.h"

#include <gtest/gtest.h>

#include <string>

#include "text.h"

namespace {

host::EventReport reportOf(const std::string& payload, bool isAlarm) {
    host::EventReport report;
    report.sourceId = "D_1";
    payload.copy(report.base.payload, sizeof report.base.payload - 1);
    std::string("2024-05-17T08:30:00+02:00").copy(report.base.dateTime, sizeof report.base.dateTime - 1);
    report.base.genericAlarm = isAlarm ? 1 : 0;
    report.base.activeState = 1;
    report.base.channel = 3;
    return report;
}

std::string lineOf(const host::EventReport& report) {
    return host::EventView({"10.0.0.5", 80}, report, "").line();
}

}  // namespace

TEST(EventText, Line_accessControlEvent) {
    const std::string line =
        lineOf(reportOf(R"(,"AccessControllerEvent":{"doorNo":2,"name":"Ada","major":1,"minor":9})", false));
    EXPECT_EQ(line, "2024-05-17T08:30:00+02:00  10.0.0.5:80  door 2  Ada  event 1/9  active");
}

TEST(EventText, Line_payloadThatWasCutOrIsOfAnotherShape) {
    const std::string cut = lineOf(reportOf(R"(,"AccessControllerEvent":{"doorNo":2,"name":"A)", false));
    EXPECT_NE(cut.find("10.0.0.5:80"), std::string::npos);
    EXPECT_NE(cut.find("details are missing"), std::string::npos);
    for (const char* payload :
         {"", ",", R"(,"AccessControllerEvent":[1])", R"(,"AccessControllerEvent":{"name":{}})"})
        EXPECT_NE(lineOf(reportOf(payload, false)).find("active"), std::string::npos) << payload;
}

TEST(EventText, Line_alarm) {
    EXPECT_EQ(lineOf(reportOf(R"({"eventType":"tamper"})", true)),
              "2024-05-17T08:30:00+02:00  10.0.0.5:80  channel 3  tamper  active");
}

// What a device sends must not steer the terminal of the one who reads it.
TEST(Text, Printable_disarmsControlCharacters) {
    EXPECT_EQ(host::printable("a\x1b[2Jb\x07\x7f\r\n\t"), "a?[2Jb???\n\t");
    EXPECT_EQ(host::printable("\xC2\x9B"
                              "2J \xC3\x9C \xC2\xB0"),
              "?2J \xC3\x9C \xC2\xB0");
}
