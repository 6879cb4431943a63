#include <veltasim/device.h>

#include <sys/resource.h>

#include <array>
#include <cstdio>

#include "device_impl.h"
#include "json_text.h"
#include "xml.h"

namespace veltasim {

Identity Identity::numbered(unsigned index) {
    Identity identity;
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "VA204-%06u", index + 1);
    identity.serialNumber = text.data();
    std::snprintf(text.data(), text.size(), "02:56:53:%02x:%02x:%02x", (index + 1) >> 16U & 0xFFU,
                  (index + 1) >> 8U & 0xFFU, (index + 1) & 0xFFU);
    identity.macAddress = text.data();
    identity.deviceName.append(" ").append(std::to_string(index + 1));
    return identity;
}

void raiseOpenFileLimit() {
    rlimit limit{};
    getrlimit(RLIMIT_NOFILE, &limit);
    limit.rlim_cur = limit.rlim_max;
    setrlimit(RLIMIT_NOFILE, &limit);
}

Device::Device(Options options) : impl_(std::make_unique<Impl>(std::move(options))) {}
Device::~Device() = default;

void Device::start() {
    impl_->start();
}
const Options& Device::options() const {
    return impl_->options;
}
uint16_t Device::port() const {
    return impl_->port();
}
std::string Device::url() const {
    return "http://" + impl_->options.bindAddress + ":" + std::to_string(port());
}

void Device::powerOff(std::optional<std::chrono::milliseconds> returnAfter) {
    impl_->powerOff(returnAfter);
}
void Device::powerOn() {
    impl_->powerOn();
}
bool Device::isOn() const {
    return impl_->isOn;
}

uint64_t Device::sendAccessEvent(const AccessEvent& event) {
    return impl_->report(event);
}
void Device::sendAlarm(const Alarm& alarm) {
    impl_->report(alarm);
}
void Device::sendHeartbeat() {
    impl_->streams.sendHeartbeat();
}
void Device::sendRaw(std::string bytes) {
    impl_->streams.sendRaw(std::move(bytes));
}

void Device::endStreams(StreamEnd how) {
    if (how == StreamEnd::AtOnce)
        impl_->cutStreams();
    else
        impl_->streams.endAfterQueue();
}

size_t Device::streamCount() const {
    return impl_->streams.count();
}
bool Device::waitForStreams(size_t count, std::chrono::milliseconds timeout) const {
    return impl_->streams.waitForCount(count, timeout);
}
bool Device::waitForDrained(std::chrono::milliseconds timeout) const {
    return impl_->outlets.waitForDrained(timeout);
}
uint64_t Device::lostEvents() const {
    return impl_->streams.lostEvents();
}

Passage Device::presentCard(const std::string& cardNo, unsigned reader) {
    return impl_->presentCard(cardNo, reader);
}
Passage Device::presentFace(const std::string& employeeNo, unsigned reader) {
    return impl_->presentFace(employeeNo, reader);
}
void Device::commandDoor(unsigned door, const std::string& command) {
    impl_->commandDoor(door, command);
}
bool Device::doorIsOpen(unsigned door) const {
    return impl_->withState([door](const State& state) {
        const std::vector<Door>& doors = state.access.doors;
        return door >= 1 && door <= doors.size() && doors[door - 1].isOpen(state.clock.now());
    });
}

void Device::setFault(const Fault& fault) {
    impl_->faults.add(fault);
}
void Device::clearFaults(std::optional<FaultKind> kind) {
    impl_->clearFaults(kind);
}
std::vector<Fault> Device::faults() const {
    return impl_->faults.all();
}

std::vector<RequestRecord> Device::requests() const {
    return impl_->log.all();
}
void Device::forgetRequests() {
    impl_->log.clear();
}
std::optional<RequestRecord> Device::waitForRequest(const RequestPredicate& fits,
                                                    std::chrono::milliseconds timeout) const {
    return impl_->log.waitFor(fits, timeout);
}

std::string Device::saveState() const {
    return impl_->saveState();
}
void Device::loadState(const std::string& json) {
    impl_->loadState(json);
}

std::string Device::deviceName() const {
    return impl_->withState([](const State& state) { return state.deviceInfo.deviceName; });
}
void Device::lockUser(std::chrono::seconds duration) {
    impl_->logIn.lock(duration);
}
void Device::unlockUser() {
    impl_->logIn.unlock();
}
bool Device::isLocked() const {
    return impl_->logIn.isLocked();
}

bool Device::outputIsHigh(int output) const {
    return impl_->withState([output](const State& state) {
        const std::vector<bool>& outputs = state.outputIsHigh;
        return output >= 1 && static_cast<size_t>(output) <= outputs.size() &&
               outputs[static_cast<size_t>(output) - 1];
    });
}
void Device::setProxyOnline(int channel, bool online) {
    impl_->withState([=](State& state) {
        if (online)
            state.offlineProxies.erase(channel);
        else
            state.offlineProxies.insert(channel);
    });
}

std::chrono::sys_seconds Device::deviceTime() const {
    return impl_->withState([](const State& state) { return state.clock.now(); });
}
void Device::setDeviceTime(std::chrono::sys_seconds time) {
    impl_->withState([time](State& state) { state.clock.set(time); });
}
std::string Device::timeZone() const {
    return impl_->withState([](const State& state) { return state.clock.zone(); });
}
void Device::setTimeZone(std::string zone) {
    impl_->withState([&zone](State& state) { state.clock.setZone(std::move(zone)); });
}

void Device::setAnswer(const std::string& method, const std::string& path, int httpStatus, std::string body) {
    const char* type = body.starts_with('{') ? kJsonType : kXmlType;
    Reply reply{httpStatus, type, std::move(body)};
    impl_->withState([&](State& state) { state.scripted[{method, path}] = std::move(reply); });
}
void Device::setDocument(const std::string& path, std::string body) {
    setAnswer("GET", path, MHD_HTTP_OK, std::move(body));
}
void Device::clearAnswers() {
    impl_->withState([](State& state) { state.scripted.clear(); });
}

}  // namespace veltasim
