#include "trace/trace.h"

#include <arpa/inet.h>

#include "trace/har.h"
#include "trace/wire.h"

namespace host {

Trace::Trace(const std::string& path, Keep keep, Console& console)
    : keep_(keep), console_(console), file_(path) {
    watchWire([this](const sockaddr_in& address) -> std::shared_ptr<ConnectionTrace> {
        const std::lock_guard lock(mutex_);
        const auto found = devices_.find({address.sin_addr.s_addr, address.sin_port});
        if (found == devices_.end()) return nullptr;
        return std::make_shared<ConnectionTrace>(
            found->second, ++connections_, keep_,
            [this](const ExchangeRecord& exchange) { file_.add(harEntry(exchange, keep_)); });
    });
}

Trace::~Trace() {
    leaveWire();
    if (const std::string problem = file_.problem(); !problem.empty()) console_.note(problem);
}

void Trace::follow(const DeviceAddress& device) {
    in_addr address{};
    inet_pton(AF_INET, device.name.c_str(), &address);
    const std::lock_guard lock(mutex_);
    devices_[{address.s_addr, htons(device.port)}] = device.text();
}

}  // namespace host
