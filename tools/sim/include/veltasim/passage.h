// Somebody at a reader, and what became of it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace veltasim {

// The numbers are those of "minor" in events and in the log; the major one is kMajorAccess.
enum class Outcome {
    CardGranted = 1,
    UnknownCard = 2,
    ReaderDisabled = 3,
    PersonBlocked = 4,     // its "userType" is "blackList"
    NotValidNow = 5,       // outside the validity period of the person
    NoDoorRight = 6,       // the door is not among those of the person
    OutsideSchedule = 7,   // no plan template of the person for this door permits it now
    DoorAlwaysClosed = 8,  // the door was told to stay closed
    FaceGranted = 9,
    UnknownFace = 10,  // no such person, or none with a face
};
constexpr int kMajorAccess = 1;

std::string_view nameOf(Outcome outcome);                // "card granted"
std::optional<Outcome> outcomeOf(int major, int minor);  // nothing: the numbers are those of another event
constexpr bool isGranted(Outcome outcome) {
    return outcome == Outcome::CardGranted || outcome == Outcome::FaceGranted;
}

struct Passage {
    Outcome outcome;
    unsigned doorNo;
    std::string employeeNo;  // empty: unknown
    uint64_t serialNo;       // of the event

    bool isGranted() const { return veltasim::isGranted(outcome); }
};

}  // namespace veltasim
