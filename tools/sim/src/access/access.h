#pragma once

#include <json/json.h>

#include <string>
#include <vector>

#include <veltasim/options.h>
#include <veltasim/passage.h>

#include "access/background.h"
#include "access/door.h"
#include "access/event_hosts.h"
#include "access/event_log.h"
#include "access/faces.h"
#include "access/people.h"
#include "access/schedules.h"
#include "clock.h"

namespace veltasim {

// All that makes the device an access controller.
struct Access {
    explicit Access(const Options& options);

    Capacity capacity;
    std::chrono::milliseconds backgroundTime;
    People people;
    Faces faces;
    Schedules schedules;
    std::vector<Door> doors;           // the first one is number 1
    std::vector<Json::Value> readers;  // "CardReaderCfg" of the reader at the door of the same number
    std::string faceRecognizeMode = "normalMode";
    EventLog log;
    EventHosts eventHosts;
    unsigned captured = 0;  // fingers

    Background personDeletion;
    Background fingerprintDownload;
    Background fingerprintDeletion;

    bool removePerson(const std::string& employeeNo);  // false: there is none
    void removeAllPersons();
    bool hasReader(unsigned number) const { return number >= 1 && number <= readers.size(); }

    // Whether a known person may pass at the reader now; granted is what it is called then.
    Outcome judge(const Person& person, unsigned reader, const Clock& clock, Outcome granted) const;
};

}  // namespace veltasim
