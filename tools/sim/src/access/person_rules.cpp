#include "access/person_rules.h"

#include <algorithm>

#include "json_values.h"
#include "status.h"

namespace veltasim {
namespace {

constexpr size_t kLongestNumber = 32;
constexpr size_t kLongestName = 128;

void checkNumber(const Json::Value& info, const char* name) {
    const std::string number = textIn(info, name);
    if (number.empty() || number.size() > kLongestNumber) throw Refused(badParameter(name));
}

std::optional<std::chrono::sys_seconds> instantIn(const Json::Value& valid, const char* name,
                                                  const Clock& clock) {
    std::string text = textOr(valid, name);
    const bool hasZone =
        text.find_first_of("Z+", 0) != std::string::npos || std::count(text.begin(), text.end(), '-') > 2;
    if (textOr(valid, "timeType") == "UTC" && !hasZone) text += 'Z';
    return clock.instantOf(text);
}

void checkValid(const Json::Value& valid, const Clock& clock) {
    if (!valid.isObject()) throw Refused(badParameter("Valid"));
    const Json::Value& enable = valid["enable"];
    if (!enable.isNull() && !enable.isBool()) throw Refused(badParameter("enable"));
    for (const char* name : {"beginTime", "endTime"}) {
        requireTextIfThere(valid, name);
        if (!textOr(valid, name).empty() && !instantIn(valid, name, clock)) throw Refused(kTimeFormatError);
    }
    const auto begin = instantIn(valid, "beginTime", clock);
    const auto end = instantIn(valid, "endTime", clock);
    if (begin && end && *end < *begin) throw Refused(kEndBeforeBegin);
}

void checkDoors(const std::vector<unsigned>& numbers, unsigned doors, const char* name) {
    if (std::any_of(numbers.begin(), numbers.end(),
                    [doors](unsigned door) { return door < 1 || door > doors; }))
        throw Refused(badParameter(name));
}

}  // namespace

bool isOneOf(const std::string& text, std::string_view list) {
    const std::string among = std::string(",").append(list).append(",");
    return text.find(',') == std::string::npos && among.find("," + text + ",") != std::string::npos;
}

void checkPerson(const Json::Value& info, unsigned doors, const Clock& clock) {
    checkNumber(info, "employeeNo");
    requireTextIfThere(info, "name");
    if (textOr(info, "name").size() > kLongestName) throw Refused(badParameter("name"));
    if (info.isMember("userType") && !isOneOf(textIn(info, "userType"), kUserTypes))
        throw Refused(badParameter("userType"));
    if (info.isMember("Valid")) checkValid(info["Valid"], clock);
    requireTextIfThere(info, "doorRight");
    checkDoors(numbersOf(info["doorRight"]), doors, "doorRight");
    if (!info.isMember("RightPlan")) return;
    for (const Json::Value& plan : arrayIn(info, "RightPlan")) {
        const auto door = numbersOf(memberOf(plan, "doorNo"));
        if (door.size() != 1) throw Refused(badParameter("RightPlan"));
        checkDoors(door, doors, "RightPlan");
    }
}

void checkCard(const Json::Value& info) {
    checkNumber(info, "employeeNo");
    checkNumber(info, "cardNo");
    if (info.isMember("cardType") && !isOneOf(textIn(info, "cardType"), kCardTypes))
        throw Refused(badParameter("cardType"));
}

Validity validityOf(const Json::Value& person, const Clock& clock) {
    const Json::Value& valid = memberOf(person, "Valid");
    if (memberOf(valid, "enable").isBool() && !isTrue(valid, "enable")) return {};
    return {instantIn(valid, "beginTime", clock), instantIn(valid, "endTime", clock)};
}

}  // namespace veltasim
