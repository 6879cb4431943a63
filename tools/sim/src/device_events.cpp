// What happens at the readers, and how it is reported.
#include "device_impl.h"
#include "pictures.h"

namespace veltasim {

// Somebody comes to a reader.
struct Approach {
    unsigned reader;
    std::string cardNo;
    const char* verifyMode;
    Outcome granted;
    Outcome unknown;
    std::function<const Person*(const Access&)> recognize;
};

namespace {

LoggedEvent logged(const AccessEvent& event, uint64_t serialNo, const Clock& clock) {
    LoggedEvent entry{serialNo, clock.now(), event, builtInPicture(event.picture)};
    entry.event.picture.clear();
    if (event.dateTime.empty()) entry.event.dateTime = clock.localTime();
    entry.instant = clock.instantOf(entry.event.dateTime).value_or(entry.instant);
    return entry;
}

Report reportOf(const Alarm& alarm, const Clock& clock) {
    Alarm kept = alarm;
    kept.picture.clear();
    if (kept.dateTime.empty()) kept.dateTime = clock.localTime();
    return {.event = std::move(kept), .picture = builtInPicture(alarm.picture)};
}

}  // namespace

// It is in the log before anybody hears of it.
uint64_t Device::Impl::report(const AccessEvent& event) {
    requireJson(event.moreMembers);
    const std::lock_guard lock(reportMutex_);
    const uint64_t serialNo = streams.nextSerialNo();
    withState([&](State& state) {
        LoggedEvent entry = logged(event, serialNo, state.clock);
        journal.add({.serialNo = serialNo, .event = entry.event, .picture = entry.picture});
        state.access.log.add(std::move(entry));
    });
    streams.send(event, serialNo);
    postToHosts([&](const EventHost& host) { return host.takesAccessEvent(event.minor); },
                [&](const Sender& sender) { return accessEventPart(event, serialNo, sender); });
    return serialNo;
}

void Device::Impl::report(const Alarm& alarm) {
    requireJson(alarm.moreMembers);
    const std::lock_guard lock(reportMutex_);
    journal.add(withState([&](const State& state) { return reportOf(alarm, state.clock); }));
    streams.send(alarm);
    postToHosts([](const EventHost& host) { return host.takesAll; },
                [&](const Sender& sender) { return alarmPart(alarm, sender); });
}

template <typename Predicate>
void Device::Impl::postToHosts(Predicate takes, const std::function<Message(const Sender&)>& make) {
    std::vector<EventHost> hosts =
        withState([](const State& state) { return state.access.eventHosts.hosts(); });
    std::erase_if(hosts, [&](const EventHost& host) { return !takes(host); });
    if (hosts.empty()) return;
    const Message message = make(streams.sender(options.bindAddress, port()));
    for (const EventHost& host : hosts)
        poster.post(host.url, message);
}

void Device::Impl::followHosts() {
    poster.enable(isOn &&
                  withState([](const State& state) { return !state.access.eventHosts.hosts().empty(); }));
}

void Device::Impl::commandDoor(unsigned door, const std::string& command) {
    if (!isOn) throw std::invalid_argument("the device is off");
    const auto known = doorCommand(command);
    if (!known) throw std::invalid_argument("no such command: " + command);
    withState([&](State& state) {
        std::vector<Door>& doors = state.access.doors;
        if (door < 1 || door > doors.size())
            throw std::invalid_argument("no such door: " + std::to_string(door));
        obey(doors[door - 1], *known, state.clock.now());
    });
}

Passage Device::Impl::presentCard(const std::string& cardNo, unsigned reader) {
    return pass(
        {reader, cardNo, "card", Outcome::CardGranted, Outcome::UnknownCard, [&](const Access& access) {
             const Card* card = access.people.cards().find(cardNo);
             return card ? access.people.persons().find(card->employeeNo()) : nullptr;
         }});
}

Passage Device::Impl::presentFace(const std::string& employeeNo, unsigned reader) {
    return pass({reader, "", "face", Outcome::FaceGranted, Outcome::UnknownFace, [&](const Access& access) {
                     return access.faces.knows(employeeNo) ? access.people.persons().find(employeeNo)
                                                           : nullptr;
                 }});
}

Passage Device::Impl::pass(const Approach& approach) {
    if (!isOn) throw std::invalid_argument("the device is off");
    Passage passage{approach.unknown, approach.reader, "", 0};
    AccessEvent event{.name = "", .employeeNo = ""};
    withState([&](State& state) {
        Access& access = state.access;
        if (!access.hasReader(approach.reader))
            throw std::invalid_argument("no such reader: " + std::to_string(approach.reader));
        if (const Person* person = approach.recognize(access)) {
            passage.outcome = access.judge(*person, approach.reader, state.clock, approach.granted);
            passage.employeeNo = person->employeeNo();
            event.name = person->name();
        }
        if (passage.isGranted()) access.doors[approach.reader - 1].openFor(state.clock.now());
    });
    event.major = kMajorAccess;
    event.minor = static_cast<int>(passage.outcome);
    event.employeeNo = passage.employeeNo;
    event.cardNo = approach.cardNo;
    event.cardReaderNo = event.doorNo = static_cast<int>(approach.reader);
    event.verifyMode = approach.verifyMode;
    event.picture = picture(PictureSize::Medium);
    passage.serialNo = report(event);
    return passage;
}

}  // namespace veltasim
