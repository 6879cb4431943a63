#include "inbox.h"

#include <unistd.h>

#include <cstring>

namespace check {
namespace {

constexpr size_t kRecordSize = 10832;
constexpr size_t kExtensionSize = 88;
constexpr size_t kItemSize = 88;
constexpr size_t kItemsAt = 8;  // in the extension
constexpr size_t kDataAt = 8;   // in an item
constexpr size_t kLengthAt = 16;

}  // namespace

std::string Event::textAt(size_t offset, size_t width) const {
    const std::string field = record.substr(offset, width);
    return field.substr(0, field.find('\0'));
}

bool Event::names(const std::string& person) const {
    return record.find('"' + person + '"') != std::string::npos;
}

std::vector<Event> Inbox::events() const {
    const std::lock_guard guard(mutex_);
    return events_;
}

std::vector<StatusReport> Inbox::statuses() const {
    const std::lock_guard guard(mutex_);
    return statuses_;
}

void Inbox::onStatusCallBack(void* instance, int status, char* info, void* inbox) {
    Inbox& self = *static_cast<Inbox*>(inbox);
    const std::lock_guard guard(self.mutex_);
    self.statuses_.push_back({instance, status, info != nullptr ? info : "(null)"});
}

void Inbox::onEventCallBack(void* instance, char* sourceId, tagEVENT_BASE_INFO* base,
                            tagEVENT_EXT_INFO* extension, void* inbox) {
    Inbox& self = *static_cast<Inbox*>(inbox);
    Event event{instance, sourceId, std::string(reinterpret_cast<const char*>(base), kRecordSize), "", "",
                "",       gettid()};
    if (extension != nullptr) {
        event.extension.assign(reinterpret_cast<const char*>(extension), kExtensionSize);
        event.item.assign(Event::at<const char*>(event.extension, kItemsAt), kItemSize);
        const auto length = static_cast<size_t>(Event::at<int32_t>(event.item, kLengthAt));
        event.data.assign(Event::at<const char*>(event.item, kDataAt), length + 1);
    }
    if (self.onEvent) self.onEvent(event);
    const std::lock_guard guard(self.mutex_);
    self.events_.push_back(std::move(event));
}

}  // namespace check
