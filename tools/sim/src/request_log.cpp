#include "request_log.h"

#include <strings.h>

#include <algorithm>

namespace veltasim {

std::string_view RequestRecord::header(std::string_view name) const {
    const auto found = std::find_if(headers.begin(), headers.end(), [name](const auto& header) {
        return header.first.size() == name.size() &&
               strncasecmp(header.first.data(), name.data(), name.size()) == 0;
    });
    return found == headers.end() ? std::string_view() : std::string_view(found->second);
}

RequestRecord RequestLog::add(RequestRecord record) {
    if (record.body.size() > maxBody_) record.body.resize(maxBody_);
    const std::lock_guard lock(mutex_);
    record.number = ++count_;
    records_.push_back(record);
    if (records_.size() > maxRecords_) records_.pop_front();
    grown_.notify_all();
    return record;
}

std::vector<RequestRecord> RequestLog::all() const {
    const std::lock_guard lock(mutex_);
    return {records_.begin(), records_.end()};
}

std::vector<RequestRecord> RequestLog::briefAfter(uint64_t number, size_t most) const {
    const std::lock_guard lock(mutex_);
    const auto newer = std::partition_point(records_.begin(), records_.end(),
                                            [number](const auto& record) { return record.number <= number; });
    const auto skipped =
        std::max<std::ptrdiff_t>(records_.end() - newer - static_cast<std::ptrdiff_t>(most), 0);
    std::vector<RequestRecord> brief;
    for (auto record = newer + skipped; record != records_.end(); ++record)
        brief.push_back({.number = record->number,
                         .devicePort = record->devicePort,
                         .method = record->method,
                         .target = record->target,
                         .headers = {},
                         .body = {},
                         .status = record->status,
                         .user = record->user,
                         .duration = record->duration});
    return brief;
}

std::optional<RequestRecord> RequestLog::find(uint64_t number) const {
    const std::lock_guard lock(mutex_);
    const auto found = std::lower_bound(records_.begin(), records_.end(), number,
                                        [](const auto& record, uint64_t n) { return record.number < n; });
    return found == records_.end() || found->number != number ? std::nullopt : std::optional(*found);
}

void RequestLog::clear() {
    const std::lock_guard lock(mutex_);
    records_.clear();
}

std::optional<RequestRecord> RequestLog::waitFor(const std::function<bool(const RequestRecord&)>& fits,
                                                 std::chrono::milliseconds timeout) const {
    const auto deadline = std::chrono::steady_clock::now() + timeout;
    uint64_t seen = 0;
    std::unique_lock lock(mutex_);
    do {
        for (const RequestRecord& record : records_) {
            if (record.number > seen && fits(record)) return record;
        }
        seen = count_;
    } while (grown_.wait_until(lock, deadline, [&] { return count_ > seen; }));
    return std::nullopt;
}

}  // namespace veltasim
