#include "person_row.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "text.h"

using host::Extent;
using host::PersonRow;

namespace {

std::string plans(const std::string& doors, const std::string& plan) {
    PersonRow row{.employeeNo = "1", .doorRight = doors, .planTemplateNo = plan};
    return host::compactJson(personJson(row, Extent::Changes)["RightPlan"]);
}

}  // namespace

// Every door that is given gets a plan, and nobody who has none gets one.
TEST(PersonRow, Json_plansOfDoors) {
    EXPECT_EQ(plans("", ""), "null");
    EXPECT_EQ(plans("none", ""), "[]");
    EXPECT_EQ(plans("2", "none"), "[]");
    EXPECT_EQ(plans("1,2", ""), R"([{"doorNo":1,"planTemplateNo":"1"},{"doorNo":2,"planTemplateNo":"1"}])");
    EXPECT_EQ(plans("2", "3,4"), R"([{"doorNo":2,"planTemplateNo":"3,4"}])");
    EXPECT_EQ(plans("", "2:7;3:8"),
              R"([{"doorNo":2,"planTemplateNo":"7"},{"doorNo":3,"planTemplateNo":"8"}])");
    for (const char* wrong : {"x", "1;2", "1:", ":1", "0:1", "1:2;3"})
        EXPECT_THROW(plans("", wrong), std::invalid_argument) << wrong;
    for (const char* wrong : {"0", "1,x", "1 2", "-1"})
        EXPECT_THROW(plans(wrong, "1"), std::invalid_argument) << wrong;
}

TEST(PersonRow, Json_changesHoldOnlyWhatIsGiven) {
    const PersonRow row{.employeeNo = "7", .endTime = "2030-01-01T00:00:00"};
    EXPECT_EQ(host::compactJson(personJson(row, Extent::Changes)),
              R"({"Valid":{"endTime":"2030-01-01T00:00:00"},"employeeNo":"7"})");
    EXPECT_TRUE(personJson(row, Extent::Complete)["Valid"].isMember("beginTime"));
    for (const PersonRow& wrong :
         {PersonRow{}, PersonRow{.employeeNo = "\xFC"}, PersonRow{.employeeNo = "1", .userType = "x"},
          PersonRow{.employeeNo = "1", .enable = "yes"}})
        EXPECT_THROW(personJson(wrong, Extent::Changes), std::invalid_argument) << wrong.employeeNo;
}

// What is exported means the same when it is imported.
TEST(PersonRow, Row_isTheSamePersonAgain) {
    for (
        const char* text :
        {R"({"Valid":{"beginTime":"b","enable":false,"endTime":"e","timeType":"UTC"},"doorRight":"1,2","employeeNo":"1",)"
         R"("name":"Ada","RightPlan":[{"doorNo":1,"planTemplateNo":"3"},{"doorNo":2,"planTemplateNo":"3"}],"userType":"visitor"})",
         R"({"Valid":{"beginTime":"b","endTime":"e"},"doorRight":"1,2","employeeNo":"1","RightPlan":[{"doorNo":1,"planTemplateNo":"3"}]})",
         R"({"Valid":{"beginTime":"b","endTime":"e"},"doorRight":"","employeeNo":"1","RightPlan":[]})"}) {
        Json::Value person;
        ASSERT_TRUE(host::parseJson(text, person));
        EXPECT_EQ(host::compactJson(personJson(host::personRow(person, {}), Extent::Complete)),
                  host::compactJson(person));
    }
    PersonRow row{.employeeNo = "1", .cardNo = "5;6:superCard"};
    EXPECT_EQ(host::personRow(personJson(row, Extent::Complete), cardsJson(row)).cardNo, row.cardNo);
    row.cardNo = "5:key";
    EXPECT_THROW(cardsJson(row), std::invalid_argument);
}
