// The commands that only look.
#pragma once

#include "control_orders.h"

namespace veltasim {

Json::Value listDevices(const Order& order);
Json::Value showOverview(const Order& order);
Json::Value listPersons(const Order& order);
Json::Value listEvents(const Order& order);
Json::Value listRequests(const Order& order);
Json::Value showRequest(const Order& order);
Json::Value listFaults(const Order& order);

Json::Value overviewOf(const Device& device);
// What came after that number: the newest, as many as a watcher is shown at once, without bodies.
Json::Value eventsAfter(const Device& device, uint64_t number);
Json::Value requestsAfter(const Device& device, uint64_t number);

}  // namespace veltasim
