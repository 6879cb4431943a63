// What a device shows of itself to whoever watches it: Device::overview(), persons() and reports().
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include <veltasim/event.h>

namespace veltasim {

struct DoorView {
    std::string name;
    std::string_view state;        // "open", "closed", "heldOpen", "heldClosed" or "dormant"
    std::chrono::seconds openFor;  // until it closes by itself; 0 unless it is "open"
    bool readerEnabled;
};

struct SubscriberView {
    std::string address;  // "127.0.0.1:40124"
    std::string path;
    std::chrono::seconds connected;
};

struct Overview {
    std::string deviceName;
    std::string model;
    std::string serialNumber;
    std::string firmwareVersion;
    std::string localTime;  // "2024-05-17T08:30:00+02:00"
    bool isOn = false;
    bool isLocked = false;
    std::vector<DoorView> doors;  // the first one is number 1
    std::vector<SubscriberView> subscribers;
    uint64_t lostEvents = 0;
    size_t persons = 0;
    size_t cards = 0;
    size_t faces = 0;
    size_t fingerprints = 0;
    uint64_t changes = 0;  // grows whenever persons or anything else may have been changed over the network
};

struct PersonView {
    std::string employeeNo;
    std::string name;
    std::string userType;
    std::vector<std::string> cards;
    size_t faces;
    size_t fingerprints;
    std::vector<unsigned> doors;
    std::string begin;  // of the validity, as it came; empty: no limit
    std::string end;
    bool isValidNow;
};

struct PersonPage {
    size_t matches = 0;  // of which the page shows some
    std::vector<PersonView> persons;
};

// An event that went out, whoever listened.
struct Report {
    uint64_t number = 0;                     // 1, 2, 3, ... over the life of the device
    uint64_t serialNo = 0;                   // 0: an alarm, which has none
    std::variant<AccessEvent, Alarm> event;  // with its time, without its picture
    std::string_view picture;  // a built-in one; empty: none or one of its own, which is not kept
};

}  // namespace veltasim
