// One promise of the contract, and the function that looks whether a library keeps it.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace check {

class Trial;

enum class Pace {
    Quick,
    Waits,  // for the online check, which comes every 15 s
};

struct Check {
    std::string_view group;
    std::string_view name;
    std::string_view promise;  // what the contract says, one line
    void (*run)(Trial& trial);
    Pace pace = Pace::Quick;

    std::string id() const { return std::string(group) + "." + std::string(name); }
};

// One function for each file of checks.
std::span<const Check> exportChecks();
std::span<const Check> registrationChecks();
std::span<const Check> lifecycleChecks();
std::span<const Check> tableChecks();
std::span<const Check> configChecks();
std::span<const Check> connectionChecks();
std::span<const Check> statusChecks();
std::span<const Check> armingChecks();
std::span<const Check> eventChecks();
std::span<const Check> recordChecks();
std::span<const Check> gatewayChecks();
std::span<const Check> forwardingChecks();
std::span<const Check> inventoryChecks();
std::span<const Check> routeChecks();
std::span<const Check> systemChecks();
std::span<const Check> accessChecks();

std::vector<Check> allChecks();

// True for the id, the group, or a pattern with * and ? that fits the id.
bool fits(const Check& check, const std::string& pattern);

}  // namespace check
