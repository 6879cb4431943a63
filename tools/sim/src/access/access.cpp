#include "access/access.h"

#include <algorithm>

#include "access/person_rules.h"
#include "json_values.h"

namespace veltasim {
namespace {

constexpr std::array<std::pair<Outcome, std::string_view>, 10> kOutcomes{{
    {Outcome::CardGranted, "card granted"},
    {Outcome::UnknownCard, "unknown card"},
    {Outcome::ReaderDisabled, "reader disabled"},
    {Outcome::PersonBlocked, "person blocked"},
    {Outcome::NotValidNow, "outside the validity period"},
    {Outcome::NoDoorRight, "no right for the door"},
    {Outcome::OutsideSchedule, "outside the schedule"},
    {Outcome::DoorAlwaysClosed, "door stays closed"},
    {Outcome::FaceGranted, "face granted"},
    {Outcome::UnknownFace, "unknown face"},
}};

bool contains(const std::vector<unsigned>& numbers, unsigned number) {
    return std::find(numbers.begin(), numbers.end(), number) != numbers.end();
}

bool scheduleOpens(const Schedules& schedules, const Json::Value& person, unsigned door,
                   std::chrono::local_seconds now) {
    const Json::Value& plans = memberOf(person, "RightPlan");
    return plans.isArray() && std::any_of(plans.begin(), plans.end(), [&](const Json::Value& plan) {
               const auto templates = numbersOf(memberOf(plan, "planTemplateNo"));
               return contains(numbersOf(memberOf(plan, "doorNo")), door) &&
                      std::any_of(templates.begin(), templates.end(),
                                  [&](unsigned number) { return schedules.permits(number, now); });
           });
}

}  // namespace

std::string_view nameOf(Outcome outcome) {
    return std::find_if(kOutcomes.begin(), kOutcomes.end(),
                        [outcome](const auto& row) { return row.first == outcome; })
        ->second;
}

std::optional<Outcome> outcomeOf(int major, int minor) {
    const auto* found = std::find_if(kOutcomes.begin(), kOutcomes.end(), [minor](const auto& row) {
        return static_cast<int>(row.first) == minor;
    });
    return major != kMajorAccess || found == kOutcomes.end() ? std::nullopt : std::optional(found->first);
}

Access::Access(const Options& options)
    : capacity(options.capacity),
      backgroundTime(options.backgroundTime),
      people(options.capacity, options.doors),
      faces(options.capacity.faces),
      log(options.capacity.events) {
    for (unsigned number = 1; number <= options.doors; ++number) {
        doors.push_back({"Door " + std::to_string(number), options.doorOpenTime});
        readers.emplace_back()["enable"] = true;
    }
}

bool Access::removePerson(const std::string& employeeNo) {
    faces.removePerson(employeeNo);
    return people.removePerson(employeeNo);
}

void Access::removeAllPersons() {
    people.clear();
    faces.clear();
}

Outcome Access::judge(const Person& person, unsigned reader, const Clock& clock, Outcome granted) const {
    const std::chrono::sys_seconds now = clock.now();
    const std::chrono::local_seconds local((now + clock.offsetAt(now)).time_since_epoch());
    if (!isTrue(readers[reader - 1], "enable")) return Outcome::ReaderDisabled;
    if (doors[reader - 1].mode == Door::Mode::AlwaysClosed) return Outcome::DoorAlwaysClosed;
    if (textOr(person.info, "userType") == "blackList") return Outcome::PersonBlocked;
    if (!validityOf(person.info, clock).holds(now)) return Outcome::NotValidNow;
    if (!contains(numbersOf(memberOf(person.info, "doorRight")), reader)) return Outcome::NoDoorRight;
    if (!scheduleOpens(schedules, person.info, reader, local)) return Outcome::OutsideSchedule;
    return granted;
}

}  // namespace veltasim
