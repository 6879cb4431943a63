#pragma once

#include <json/json.h>

#include <chrono>
#include <optional>

#include "clock.h"

namespace veltasim {

constexpr const char* kUserTypes = "normal,visitor,blackList";
constexpr const char* kCardTypes = "normalCard,patrolCard,hijackCard,superCard,dismissingCard,emergencyCard";
constexpr const char* kFingerTypes = "normalFP,hijackFP,patrolFP,superFP,dismissingFP";

// Whether the text is one of the list.
bool isOneOf(const std::string& text, std::string_view list);

// These throw Refused if something is wrong with a person or card.
void checkPerson(const Json::Value& info, unsigned doors, const Clock& clock);
void checkCard(const Json::Value& info);

// When a person may come and go; nothing: no limit.
struct Validity {
    std::optional<std::chrono::sys_seconds> begin;
    std::optional<std::chrono::sys_seconds> end;

    bool isLimited() const { return begin || end; }
    bool holds(std::chrono::sys_seconds time) const {
        return (!begin || *begin <= time) && (!end || time <= *end);
    }
};
Validity validityOf(const Json::Value& person, const Clock& clock);

}  // namespace veltasim
