#include "check.h"

#include <fnmatch.h>

namespace check {

std::vector<Check> allChecks() {
    std::vector<Check> all;
    for (const auto group :
         {exportChecks, registrationChecks, lifecycleChecks, tableChecks, configChecks, connectionChecks,
          statusChecks, armingChecks, eventChecks, recordChecks, gatewayChecks, forwardingChecks,
          inventoryChecks, routeChecks, systemChecks, accessChecks}) {
        const std::span<const Check> checks = group();
        all.insert(all.end(), checks.begin(), checks.end());
    }
    return all;
}

bool fits(const Check& check, const std::string& pattern) {
    return pattern == check.group || fnmatch(pattern.c_str(), check.id().c_str(), 0) == 0;
}

}  // namespace check
