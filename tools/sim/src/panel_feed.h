#pragma once

#include <json/json.h>

#include <map>
#include <optional>
#include <string>

#include "control_orders.h"
#include "outlets.h"

namespace veltasim {

// Those who watch devices on the panel, told of all that changes by server-sent events. The feed looks at the
// devices several times a second while somebody watches, and so no watcher ever keeps a device waiting: one who
// reads too slowly is cut off, comes back and starts anew. All on the loop's thread.
class PanelFeed {
 public:
    PanelFeed(const Devices& devices, Loop& loop)
        : devices_(devices), loop_(loop), outlets_(loop, kMostQueued, kMostQueuedBytes) {}

    // Makes the sender of the request a watcher of the device. False: there are too many.
    bool open(Exchange& exchange, const Device& device);
    void update();  // tells the watchers now what has changed
    void close() { outlets_.cutAll(); }

 private:
    struct Watcher {
        const Device* device;
        std::string overview;  // as told last
        uint64_t lastEvent = 0;
        uint64_t lastRequest = 0;
    };
    static constexpr size_t kMostQueued = 64;
    static constexpr size_t kMostQueuedBytes = 256U << 10U;

    void tick();
    std::string newsFor(Watcher& watcher) const;

    const Devices& devices_;
    Loop& loop_;
    Outlets outlets_;
    std::map<Outlets::Id, Watcher> watchers_;
    std::optional<Loop::TimerId> next_;
};

}  // namespace veltasim
