// What callbacks bring, copied byte by byte.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include <velta/velta.h>

namespace check {

struct Event {
    void* instance;
    std::string sourceId;
    std::string record;     // 10832 bytes
    std::string extension;  // 88 bytes; empty: none
    std::string item;       // 88 bytes, the first one
    std::string data;       // of that item, with the byte behind it
    pid_t thread;

    template <typename Integer>
    static Integer at(const std::string& bytes, size_t offset);
    std::string textAt(size_t offset, size_t width) const;
    bool names(const std::string& person) const;  // anywhere in the record
};

struct StatusReport {
    void* instance;
    int status;
    std::string info;
};

// The user pointer of callbacks. All member functions may be called from any thread.
class Inbox {
 public:
    // Called inside the event callback, before the event is kept. To be set before arming.
    std::function<void(const Event&)> onEvent;

    std::vector<Event> events() const;
    std::vector<StatusReport> statuses() const;

    static void onStatusCallBack(void* instance, int status, char* info, void* inbox);
    static void onEventCallBack(void* instance, char* sourceId, tagEVENT_BASE_INFO* base,
                                tagEVENT_EXT_INFO* extension, void* inbox);

 private:
    mutable std::mutex mutex_;
    std::vector<Event> events_;
    std::vector<StatusReport> statuses_;
};

template <typename Integer>
Integer Event::at(const std::string& bytes, size_t offset) {
    Integer value{};
    bytes.copy(reinterpret_cast<char*>(&value), sizeof value, offset);
    return value;
}

}  // namespace check
