#pragma once

#include <array>
#include <chrono>
#include <optional>
#include <string>

namespace veltasim {

// A door and its lock; the times are those of the device's clock.
struct Door {
    // As devices number them.
    enum class Mode { Dormant = 1, AlwaysOpen = 2, AlwaysClosed = 3, Normal = 4 };
    using Time = std::chrono::sys_seconds;

    std::string name;
    std::chrono::seconds openTime;
    Mode mode = Mode::Normal;
    Time openUntil{};

    bool isOpen(Time now) const {
        return mode == Mode::AlwaysOpen || (mode == Mode::Normal && now < openUntil);
    }
    void openFor(Time now) { openUntil = now + openTime; }
};

enum class DoorCommand { Open, Close, AlwaysOpen, AlwaysClose, CallLift };
std::optional<DoorCommand> doorCommand(std::string_view text);  // "alwaysOpen"
std::string doorCommands();                                     // all of them, with commas in between
void obey(Door& door, DoorCommand command, Door::Time now);

}  // namespace veltasim
