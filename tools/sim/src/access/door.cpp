#include "access/door.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace veltasim {
namespace {

constexpr std::array<std::pair<std::string_view, DoorCommand>, 6> kCommands{{
    {"open", DoorCommand::Open},
    {"close", DoorCommand::Close},
    {"alwaysOpen", DoorCommand::AlwaysOpen},
    {"alwaysClose", DoorCommand::AlwaysClose},
    {"visitorCallLadder", DoorCommand::CallLift},
    {"householdCallLadder", DoorCommand::CallLift},
}};

}  // namespace

std::optional<DoorCommand> doorCommand(std::string_view text) {
    const auto* found =
        std::find_if(kCommands.begin(), kCommands.end(), [&](const auto& row) { return row.first == text; });
    return found == kCommands.end() ? std::nullopt : std::optional(found->second);
}

std::string doorCommands() {
    std::string all;
    for (const auto& [text, command] : kCommands)
        all.append(all.empty() ? "" : ",").append(text);
    return all;
}

// Opening and closing end what held the door open or closed. A lift leaves the door as it is.
void obey(Door& door, DoorCommand command, Door::Time now) {
    if (command == DoorCommand::CallLift) return;
    door.openUntil = {};
    door.mode = Door::Mode::Normal;
    if (command == DoorCommand::Open) door.openFor(now);
    if (command == DoorCommand::AlwaysOpen) door.mode = Door::Mode::AlwaysOpen;
    if (command == DoorCommand::AlwaysClose) door.mode = Door::Mode::AlwaysClosed;
}

}  // namespace veltasim
