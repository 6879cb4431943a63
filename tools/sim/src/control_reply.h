#pragma once

#include <optional>

#include "control_orders.h"
#include "http_server.h"
#include "reply.h"

namespace veltasim {

// Obeys a request that is one of the commands, or says why not.
Reply controlReply(const Devices& devices, const Exchange& exchange);
// The device that "?device=" names, the first one without it. Throws std::out_of_range, ControlRefused.
Device& deviceNamedBy(const Devices& devices, const RequestRecord& request);
// What a page of another site is told that a browser shows, be it under a name that leads here.
std::optional<Reply> refusalOfStrangers(const RequestRecord& request);

Reply errorReply(int status, const std::string& what);

}  // namespace veltasim
