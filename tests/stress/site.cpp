#include "site.h"

#include <chrono>

namespace stress {
namespace {

using std::chrono::milliseconds;
using veltasim::Device;
using veltasim::FaultKind;
using veltasim::PictureSize;

std::string anyPicture(Random& random) {
    constexpr PictureSize kSizes[] = {PictureSize::Small, PictureSize::Medium, PictureSize::Large};
    return oneIn(random, 3) ? "" : std::string(veltasim::picture(kSizes[below(random, 3)]));
}

void event(Device& device, Random& random) {
    device.sendAccessEvent({.picture = anyPicture(random)});
}
void burst(Device& device, Random& random) {
    for (size_t i = below(random, 30); i > 0; --i)
        event(device, random);
    device.sendHeartbeat();
}
void noise(Device& device, Random& random) {
    std::string bytes = "--velta_events\r\nContent-Type: application/json\r\n\r\n{\"ipAddress\":";
    for (size_t i = below(random, 3000); i > 0; --i)
        bytes += static_cast<char>(random());
    device.sendRaw(bytes);
}
void fault(Device& device, Random& random) {
    const char* const paths[] = {"", "/VELTA/Event", "/VELTA/Security", "/VELTA/System",
                                 "/VELTA/AccessControl"};
    const auto kind = static_cast<FaultKind>(below(random, static_cast<size_t>(FaultKind::StaleNonce) + 1));
    device.setFault({.kind = kind,
                     .amount = kind == FaultKind::SlowBytes ? 2000 : 0,
                     .path = paths[below(random, 5)],
                     .count = 1 + static_cast<unsigned>(below(random, 4))});
}
void nonsense(Device& device, Random& random) {
    const char* const bodies[] = {
        "", "<", "{", "<a><b/></a>", "{\"statusCode\":7}", "[[[[", "<DeviceInfo>%s</DeviceInfo>"};
    device.setDocument("/VELTA/System/deviceInfo", bodies[below(random, 7)]);
}

constexpr Chance<void(Device&, Random&)> kEvents[] = {
    {300, event},
    {60, [](Device& device, Random&) { device.sendAlarm(); }},
    {10, burst},
    {10, noise},
    {6, fault},
    {24, [](Device& device, Random&) { device.clearFaults(); }},
    {1, [](Device& device, Random& random) { device.powerOff(milliseconds(50 + below(random, 2000))); }},
    {1, [](Device& device, Random&) { device.endStreams(Device::StreamEnd::AtOnce); }},
    {1, [](Device& device, Random&) { device.endStreams(Device::StreamEnd::AfterQueue); }},
    {1, [](Device& device, Random&) { device.lockUser(std::chrono::seconds(20)); }},
    {40, [](Device& device, Random&) { device.unlockUser(); }},
    {2, nonsense},
    {4, [](Device& device, Random&) { device.clearAnswers(); }},
};

}  // namespace

Site::Site(size_t count) {
    for (size_t i = 0; i < count; ++i) {
        devices.push_back(std::make_unique<Device>(veltasim::Options{
            .rebootTime = milliseconds(300),
            .capacity = {.persons = 100, .events = 100},
            .maxFailedLogins = 50,
            .maxStreams = 4,
            .heartbeat = milliseconds(700),
            .maxRecordedRequests = 10,
            .onRequest =
                [this](const veltasim::RequestRecord& request) {
                    if (!request.target.starts_with(kMarkedPath)) return;
                    const std::lock_guard guard(mutex_);
                    marked_.insert(request.target);
                },
        }));
        devices.back()->start();
    }
}

void Site::happen(Random& random) {
    Device& device = *devices[below(random, devices.size())];
    choose(kEvents, random)(device, random);
}

void Site::calm() {
    for (const auto& device : devices) {
        device->clearFaults();
        device->clearAnswers();
        device->unlockUser();
        device->powerOn();
    }
}

size_t Site::streams() const {
    size_t sum = 0;
    for (const auto& device : devices)
        sum += device->streamCount();
    return sum;
}

bool Site::arrived(const std::string& target) const {
    const std::lock_guard guard(mutex_);
    return marked_.contains(target);
}

}  // namespace stress
