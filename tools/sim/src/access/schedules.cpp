#include "access/schedules.h"

#include <strings.h>

#include <algorithm>
#include <optional>

#include "json_values.h"
#include "scanner.h"

namespace veltasim {
namespace {

using std::chrono::local_days;
using std::chrono::local_seconds;
using std::chrono::seconds;

constexpr std::array kDays{"Sunday", "Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday"};

struct KindRow {
    const char* name;
    unsigned count;
    const char* list;  // the member with the time segments, or nothing
    std::array<const char*, 3> texts;
};

constexpr std::array kRows{
    KindRow{"UserRightWeekPlanCfg", 128, "WeekPlanCfg", {}},
    KindRow{"UserRightHolidayPlanCfg", 1024, "HolidayPlanCfg", {"beginDate", "endDate"}},
    KindRow{"UserRightHolidayGroupCfg", 64, nullptr, {"groupName", "holidayPlanNo"}},
    KindRow{"UserRightPlanTemplate", 64, nullptr, {"templateName", "holidayGroupNo"}},
};

const KindRow& rowOf(Schedules::Kind kind) {
    return kRows[static_cast<size_t>(kind)];
}

Json::Value emptyDocument(Schedules::Kind kind) {
    const KindRow& row = rowOf(kind);
    Json::Value document;
    document["enable"] = false;
    if (row.list) document[row.list] = Json::arrayValue;
    for (const char* text : row.texts) {
        if (text) document[text] = "";
    }
    if (kind == Schedules::Kind::PlanTemplate) document["weekPlanNo"] = 0;
    return document;
}

Json::Value wholeWeek() {
    Json::Value plan;
    plan["enable"] = true;
    for (const char* day : kDays) {
        Json::Value segment;
        segment["id"] = 1;
        segment["enable"] = true;
        segment["week"] = day;
        segment["TimeSegment"]["beginTime"] = "00:00:00";
        segment["TimeSegment"]["endTime"] = "24:00:00";
        plan["WeekPlanCfg"].append(segment);
    }
    return plan;
}

// "2026-12-24", perhaps with a time behind it.
std::optional<local_days> dateIn(const Json::Value& object, const char* name) {
    const std::string text = textOr(object, name);
    Scanner scanner(std::string_view(text).substr(0, 10));
    const std::chrono::year year(scanner.number(4, 4));
    scanner.skip("-");
    const std::chrono::month month(static_cast<unsigned>(scanner.number(2, 2)));
    scanner.skip("-");
    const std::chrono::year_month_day date(year, month,
                                           std::chrono::day(static_cast<unsigned>(scanner.number(2, 2))));
    if (!scanner.isAtEnd() || !date.ok()) return std::nullopt;
    return local_days(date);
}

std::optional<seconds> timeIn(const Json::Value& segment, const char* name) {
    const std::string text = textOr(segment, name);
    Scanner scanner(text);
    const seconds time = scanner.time();
    return scanner.isAtEnd() ? std::optional(time) : std::nullopt;
}

bool covers(const Json::Value& item, seconds timeOfDay) {
    const Json::Value& segment = memberOf(item, "TimeSegment");
    const auto begin = timeIn(segment, "beginTime");
    const auto end = timeIn(segment, "endTime");
    return isTrue(item, "enable") && begin && end && *begin <= timeOfDay && timeOfDay <= *end;
}

bool isDay(const Json::Value& item, std::chrono::weekday day) {
    return strcasecmp(textOr(item, "week").c_str(), kDays[day.c_encoding()]) == 0;
}

template <typename Predicate>
bool anyItem(const Json::Value& list, Predicate predicate) {
    return list.isArray() && std::any_of(list.begin(), list.end(), predicate);
}

}  // namespace

const char* Schedules::nameOf(Kind kind) {
    return rowOf(kind).name;
}

unsigned Schedules::maxOf(Kind kind) {
    return rowOf(kind).count;
}

Schedules::Schedules() {
    set(Kind::WeekPlan, 1, wholeWeek());
    Json::Value always = emptyDocument(Kind::PlanTemplate);
    always["enable"] = true;
    always["templateName"] = "Always";
    always["weekPlanNo"] = 1;
    set(Kind::PlanTemplate, 1, always);
}

const std::map<unsigned, Json::Value>& Schedules::written(Kind kind) const {
    return documents_[static_cast<size_t>(kind)];
}

Json::Value Schedules::get(Kind kind, unsigned number) const {
    const auto found = written(kind).find(number);
    return found == written(kind).end() ? emptyDocument(kind) : found->second;
}

void Schedules::set(Kind kind, unsigned number, const Json::Value& document) {
    documents_[static_cast<size_t>(kind)][number] = document;
}

// On a holiday its plan counts instead of the week plan.
bool Schedules::permits(unsigned planTemplate, local_seconds time) const {
    const local_days day = std::chrono::floor<std::chrono::days>(time);
    const seconds timeOfDay = time - day;
    const Json::Value chosen = get(Kind::PlanTemplate, planTemplate);
    if (!isTrue(chosen, "enable")) return false;

    for (const unsigned groupNo : numbersOf(memberOf(chosen, "holidayGroupNo"))) {
        const Json::Value group = get(Kind::HolidayGroup, groupNo);
        if (!isTrue(group, "enable")) continue;
        for (const unsigned planNo : numbersOf(memberOf(group, "holidayPlanNo"))) {
            const Json::Value plan = get(Kind::HolidayPlan, planNo);
            const auto begin = dateIn(plan, "beginDate");
            const auto end = dateIn(plan, "endDate");
            if (!isTrue(plan, "enable") || !begin || !end || day < *begin || *end < day) continue;
            return anyItem(memberOf(plan, "HolidayPlanCfg"),
                           [&](const Json::Value& item) { return covers(item, timeOfDay); });
        }
    }
    for (const unsigned planNo : numbersOf(memberOf(chosen, "weekPlanNo"))) {
        const Json::Value plan = get(Kind::WeekPlan, planNo);
        if (!isTrue(plan, "enable")) continue;
        return anyItem(memberOf(plan, "WeekPlanCfg"), [&](const Json::Value& item) {
            return isDay(item, std::chrono::weekday(day)) && covers(item, timeOfDay);
        });
    }
    return false;
}

}  // namespace veltasim
