#include "person_row.h"

#include <algorithm>
#include <charconv>
#include <ctime>
#include <stdexcept>

#include "csv.h"
#include "site.h"
#include "text.h"

namespace host {
namespace {

constexpr const char* kNone = "none";
constexpr const char* kPlanColumn = "planTemplateNo";
constexpr const char* kDefaultPlan = "1";
constexpr const char* kDefaultCardType = "normalCard";
constexpr const char* kLastEnd = "2037-12-31T23:59:59";  // the last year of many devices
constexpr const char* kUserTypes[] = {"normal", "visitor", "blackList"};
constexpr const char* kCardTypes[] = {"normalCard", "patrolCard",     "hijackCard",
                                      "superCard",  "dismissingCard", "emergencyCard"};

[[noreturn]] void refuse(const char* column, const std::string& cell, const std::string& what) {
    throw std::invalid_argument(std::string(column) + " \"" + cell + "\": " + what);
}

template <size_t N>
void requireOneOf(const char* column, const std::string& cell, const char* const (&words)[N]) {
    if (std::find(std::begin(words), std::end(words), cell) != std::end(words)) return;
    refuse(column, cell, "one of " + joined({std::begin(words), std::end(words)}, ", ") + " is expected");
}

unsigned doorNumber(const char* column, const std::string& cell, const std::string& text) {
    unsigned number = 0;
    const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || stop != text.data() + text.size() || number == 0)
        refuse(column, cell, "door numbers are expected, from 1 on");
    return number;
}

std::string todayBegin() {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    std::string text(sizeof "2026-01-01T00:00:00", '\0');
    text.resize(std::strftime(text.data(), text.size(), "%Y-%m-%dT00:00:00", &local));
    return text;
}

Json::Value planOf(unsigned door, const std::string& plan) {
    Json::Value json;
    json["doorNo"] = door;
    json["planTemplateNo"] = plan;
    return json;
}

std::vector<unsigned> doorsOf(const PersonRow& row) {
    std::vector<unsigned> doors;
    if (row.doorRight == kNone) return doors;
    for (const std::string& door : split(row.doorRight, ','))
        doors.push_back(doorNumber("doorRight", row.doorRight, door));
    return doors;
}

// Doors without a plan open for nobody: where doors are given, each has one.
Json::Value plansJson(const PersonRow& row, const std::vector<unsigned>& doors) {
    const std::string& cell = row.planTemplateNo;
    Json::Value plans = Json::arrayValue;
    if (cell == kNone || (cell.empty() && doors.empty())) return plans;
    if (cell.find_first_not_of("0123456789,:;") != std::string::npos)
        refuse(kPlanColumn, cell, "a number is expected, or DOOR:NUMBER;DOOR:NUMBER");
    if (cell.find(':') == std::string::npos) {
        if (doors.empty()) refuse(kPlanColumn, cell, "doorRight has to say for which doors");
        for (const unsigned door : doors)
            plans.append(planOf(door, cell.empty() ? kDefaultPlan : cell));
        return plans;
    }
    for (const std::string& piece : split(cell, ';')) {
        const size_t colon = std::min(piece.find(':'), piece.size());
        if (colon + 1 >= piece.size()) refuse(kPlanColumn, cell, "each door needs a number behind \":\"");
        plans.append(planOf(doorNumber(kPlanColumn, cell, piece.substr(0, colon)), piece.substr(colon + 1)));
    }
    return plans;
}

Json::Value validJson(const PersonRow& row, Extent extent) {
    const bool isComplete = extent == Extent::Complete;
    Json::Value valid = Json::objectValue;
    if (!row.enable.empty() && row.enable != "true" && row.enable != "false")
        refuse("enable", row.enable, "true or false is expected");
    if (!row.enable.empty()) valid["enable"] = row.enable == "true";
    if (!row.timeType.empty()) valid["timeType"] = row.timeType;
    if (!row.beginTime.empty() || isComplete)
        valid["beginTime"] = row.beginTime.empty() ? todayBegin() : row.beginTime;
    if (!row.endTime.empty() || isComplete) valid["endTime"] = row.endTime.empty() ? kLastEnd : row.endTime;
    return valid;
}

std::string orNone(const std::string& text) {
    return text.empty() ? kNone : text;
}

}  // namespace

Json::Value personJson(const PersonRow& row, Extent extent) {
    for (const PersonColumn& column : kPersonColumns) {
        if (!isUtf8(row.*column.cell))
            throw std::invalid_argument(std::string(column.name) + " is not written in UTF-8");
    }
    if (row.employeeNo.empty()) throw std::invalid_argument("there is no employeeNo");
    if (!row.userType.empty()) requireOneOf("userType", row.userType, kUserTypes);
    Json::Value person;
    person["employeeNo"] = row.employeeNo;
    if (!row.name.empty()) person["name"] = row.name;
    if (!row.userType.empty()) person["userType"] = row.userType;
    const Json::Value valid = validJson(row, extent);
    if (!valid.empty()) person["Valid"] = valid;
    if (!row.doorRight.empty()) person["doorRight"] = row.doorRight == kNone ? "" : row.doorRight;
    const std::vector<unsigned> doors = doorsOf(row);
    if (!row.doorRight.empty() || !row.planTemplateNo.empty()) person["RightPlan"] = plansJson(row, doors);
    return person;
}

std::vector<Json::Value> cardsJson(const PersonRow& row) {
    std::vector<Json::Value> cards;
    for (const std::string& piece : split(row.cardNo, ';')) {
        const size_t colon = piece.find(':');
        const std::string type = colon == std::string::npos ? kDefaultCardType : piece.substr(colon + 1);
        if (piece.substr(0, colon).empty()) refuse("cardNo", row.cardNo, "a card has no number");
        requireOneOf("cardNo", type, kCardTypes);
        Json::Value& card = cards.emplace_back();
        card["employeeNo"] = row.employeeNo;
        card["cardNo"] = piece.substr(0, colon);
        card["cardType"] = type;
    }
    return cards;
}

std::string plansText(const Json::Value& person) {
    std::vector<std::string> doors;
    std::vector<std::string> plans;
    std::vector<std::string> both;
    const Json::Value& list = person.isObject() ? person["RightPlan"] : Json::Value::nullSingleton();
    for (const Json::Value& item : list.isArray() ? list : Json::Value(Json::arrayValue)) {
        doors.push_back(member(item, "doorNo"));
        plans.push_back(member(item, "planTemplateNo"));
        both.push_back(doors.back() + ":" + plans.back());
    }
    const bool isOnePlan =
        !plans.empty() && joined(doors, ",") == member(person, "doorRight") &&
        std::count(plans.begin(), plans.end(), plans.front()) == static_cast<std::ptrdiff_t>(plans.size());
    return isOnePlan ? plans.front() : joined(both, ";");
}

PersonRow personRow(const Json::Value& person, const std::vector<Json::Value>& cards) {
    const Json::Value valid = person.isObject() ? person["Valid"] : Json::Value();
    PersonRow row;
    row.employeeNo = member(person, "employeeNo");
    row.name = member(person, "name");
    row.userType = member(person, "userType");
    row.enable = member(valid, "enable");
    row.beginTime = member(valid, "beginTime");
    row.endTime = member(valid, "endTime");
    row.timeType = member(valid, "timeType");
    row.doorRight = orNone(member(person, "doorRight"));
    row.planTemplateNo = orNone(plansText(person));
    std::vector<std::string> texts;
    for (const Json::Value& card : cards) {
        if (member(card, "employeeNo") != row.employeeNo) continue;
        const std::string type = member(card, "cardType");
        texts.push_back(member(card, "cardNo") +
                        (type.empty() || type == kDefaultCardType ? "" : ":" + type));
    }
    row.cardNo = joined(texts, ";");
    return row;
}

}  // namespace host
