#include "access/event_log.h"

namespace veltasim {

void EventLog::add(LoggedEvent event) {
    events_.push_back(std::move(event));
    if (events_.size() > capacity_) events_.pop_front();
}

}  // namespace veltasim
