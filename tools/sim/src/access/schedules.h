#pragma once

#include <json/json.h>

#include <array>
#include <chrono>
#include <map>
#include <string>

namespace veltasim {

// When doors may be passed: plan templates, each with a week plan and groups of holidays.
class Schedules {
 public:
    enum class Kind { WeekPlan, HolidayPlan, HolidayGroup, PlanTemplate };
    static constexpr std::array kKinds{Kind::WeekPlan, Kind::HolidayPlan, Kind::HolidayGroup,
                                       Kind::PlanTemplate};
    static const char* nameOf(Kind kind);  // of the JSON object, "UserRightWeekPlanCfg"
    static unsigned maxOf(Kind kind);      // how many there are, from 1 on

    Schedules();  // template 1 with week plan 1 permits everything, the others nothing

    // The document as it was written, or the empty one of the factory. The number must be one of 1..maxOf().
    Json::Value get(Kind kind, unsigned number) const;
    void set(Kind kind, unsigned number, const Json::Value& document);
    const std::map<unsigned, Json::Value>& written(Kind kind) const;

    bool permits(unsigned planTemplate, std::chrono::local_seconds time) const;

 private:
    std::array<std::map<unsigned, Json::Value>, kKinds.size()> documents_;
};

}  // namespace veltasim
