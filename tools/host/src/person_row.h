// A person as a row of text, and as the JSON of devices.
#pragma once

#include <json/value.h>

#include <string>
#include <vector>

namespace host {

// An empty cell says nothing: a person that is added gets a default, one that is modified keeps what it has.
struct PersonRow {
    std::string employeeNo{};
    std::string name{};
    std::string userType{};
    std::string enable{};
    std::string beginTime{};
    std::string endTime{};
    std::string timeType{};
    std::string doorRight{};
    std::string planTemplateNo{};
    std::string cardNo{};
};

struct PersonColumn {
    const char* name;  // in the header line of a file
    const char* option;
    const char* typeName;
    const char* help;
    std::string PersonRow::*cell;
};

inline constexpr PersonColumn kPersonColumns[] = {
    {"employeeNo", "--employee", "NO", "Employee number, the person's identifier", &PersonRow::employeeNo},
    {"name", "--name", "NAME", "Name", &PersonRow::name},
    {"userType", "--type", "TYPE", "normal, visitor or blackList", &PersonRow::userType},
    {"enable", "--enable", "BOOL", "Whether the period of validity counts: true or false",
     &PersonRow::enable},
    {"beginTime", "--begin", "TIME", "Valid from, as in 2026-01-01T00:00:00", &PersonRow::beginTime},
    {"endTime", "--end", "TIME", "Valid until", &PersonRow::endTime},
    {"timeType", "--time-type", "TYPE", "What these times are: local or UTC", &PersonRow::timeType},
    {"doorRight", "--doors", "LIST", "Doors that open for the person, as in 1,2; none",
     &PersonRow::doorRight},
    {"planTemplateNo", "--plan", "N",
     "Plan template of these doors, or one for each, as in 1:1;2:3; none; 1 unless given",
     &PersonRow::planTemplateNo},
    {"cardNo", "--card", "LIST",
     "Cards with their types, as in 12345;67890:superCard; normalCard unless given", &PersonRow::cardNo},
};

// The request member "UserInfo". A complete one has all that devices insist on. Throws std::invalid_argument with
// a sentence for the user.
enum class Extent { Complete, Changes };
Json::Value personJson(const PersonRow& row, Extent extent);

// The cards of a row, each as the request member "CardInfo". Throws std::invalid_argument.
std::vector<Json::Value> cardsJson(const PersonRow& row);

// What a device has told. cards: {"employeeNo", "cardNo", "cardType"} each, of any person.
PersonRow personRow(const Json::Value& person, const std::vector<Json::Value>& cards);

// "1" or "1:1;2:3", as in a row.
std::string plansText(const Json::Value& person);

}  // namespace host
