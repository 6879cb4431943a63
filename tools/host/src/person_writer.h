// Persons on their way to a device.
#pragma once

#include <string>
#include <vector>

#include "exchange.h"
#include "person_row.h"
#include "site.h"

namespace host {

// The outcome for one person of a batch.
struct Written {
    enum class Outcome { Added, Modified, Failed } outcome = Outcome::Failed;
    std::string reason;  // of a failure
    Status status{};     // of a device's refusal
};

constexpr size_t kMostInBatch = 30;

// Adds the persons, at most kMostInBatch, and modifies those that the device has already; then their cards, which
// may be there already too. A failure of one person is told in its place. Throws Failure when the device does not
// answer any more, or when the user interrupts.
std::vector<Written> writePersons(const Site& site, const std::vector<PersonRow>& rows);

// One person. Throw Failure.
void addPerson(const Site& site, const PersonRow& row);
void modifyPerson(const Site& site, const PersonRow& row);

}  // namespace host
