// What the device shows to whoever watches it.
#include <algorithm>

#include "access/person_rules.h"
#include "device_impl.h"
#include "json_values.h"

namespace veltasim {
namespace {

std::string_view stateOf(const Door& door, Door::Time now) {
    switch (door.mode) {
        case Door::Mode::Dormant:
            return "dormant";
        case Door::Mode::AlwaysOpen:
            return "heldOpen";
        case Door::Mode::AlwaysClosed:
            return "heldClosed";
        case Door::Mode::Normal:
            break;
    }
    return door.isOpen(now) ? "open" : "closed";
}

std::vector<DoorView> doorsOf(const Access& access, Door::Time now) {
    std::vector<DoorView> views;
    for (size_t i = 0; i < access.doors.size(); ++i) {
        const Door& door = access.doors[i];
        const std::string_view state = stateOf(door, now);
        views.push_back({door.name, state, state == "open" ? door.openUntil - now : std::chrono::seconds(0),
                         isTrue(access.readers[i], "enable")});
    }
    return views;
}

std::string lower(std::string text) {
    for (char& c : text)
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    return text;
}

bool matches(const Person& person, const std::string& wanted) {
    const auto has = [&](const std::string& text) { return lower(text).find(wanted) != std::string::npos; };
    return has(person.name()) || has(person.employeeNo()) || std::ranges::any_of(person.cards, has);
}

PersonView viewOf(const Person& person, const State& state) {
    const Json::Value& valid = memberOf(person.info, "Valid");
    const bool limited = validityOf(person.info, state.clock).isLimited();
    return {.employeeNo = person.employeeNo(),
            .name = person.name(),
            .userType = textOr(person.info, "userType", "normal"),
            .cards = person.cards,
            .faces = state.access.faces.of(person.employeeNo()).size(),
            .fingerprints = person.fingerprints.size(),
            .doors = numbersOf(memberOf(person.info, "doorRight")),
            .begin = limited ? textOr(valid, "beginTime") : "",
            .end = limited ? textOr(valid, "endTime") : "",
            .isValidNow = validityOf(person.info, state.clock).holds(state.clock.now())};
}

}  // namespace

Overview Device::overview() const {
    Overview view;
    view.isOn = isOn();
    view.isLocked = isLocked();
    view.subscribers = impl_->streams.subscribers();
    view.lostEvents = lostEvents();
    view.changes = impl_->changes;
    impl_->withState([&view](const State& state) {
        view.deviceName = state.deviceInfo.deviceName;
        view.model = state.deviceInfo.model;
        view.serialNumber = state.deviceInfo.serialNumber;
        view.firmwareVersion = state.deviceInfo.firmwareVersion;
        view.localTime = state.clock.localTime();
        view.doors = doorsOf(state.access, state.clock.now());
        view.persons = state.access.people.persons().size();
        view.cards = state.access.people.cards().size();
        view.faces = state.access.faces.count();
        view.fingerprints = state.access.people.fingerprintCount();
    });
    return view;
}

PersonPage Device::persons(const std::string& text, size_t first, size_t most) const {
    const std::string wanted = lower(text);
    return impl_->withState([&](const State& state) {
        PersonPage page;
        for (const Person& person : state.access.people.persons()) {
            if (!matches(person, wanted)) continue;
            if (page.matches >= first && page.persons.size() < most)
                page.persons.push_back(viewOf(person, state));
            ++page.matches;
        }
        return page;
    });
}

std::string Device::facePicture(const std::string& employeeNo) const {
    return impl_->withState([&](const State& state) {
        const std::vector<const Face*> faces = state.access.faces.of(employeeNo);
        return faces.empty() ? std::string() : faces.front()->picture;
    });
}

std::vector<Report> Device::reportsAfter(uint64_t number, size_t most) const {
    return impl_->journal.after(number, most);
}

std::vector<RequestRecord> Device::requestsAfter(uint64_t number, size_t most) const {
    return impl_->log.briefAfter(number, most);
}

std::optional<RequestRecord> Device::request(uint64_t number) const {
    return impl_->log.find(number);
}

}  // namespace veltasim
