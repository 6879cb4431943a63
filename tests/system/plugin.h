/* The built library as a host sees it: loaded by its path, driven through its tables. */
#pragma once

#include <velta/velta.h>

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

namespace host {

using namespace std::chrono_literals;

/* How long a test waits for what is to happen, on however slow a machine. */
constexpr auto kDeadline = 120s;

/* The library, loaded for its lifetime. */
class Library {
 public:
    Library();
    ~Library();
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;

    xplugin_export_interface_t* record = nullptr;
    VELTA_SetConfigFunction setConfig = nullptr;

    void* symbol(const char* name) const;

 private:
    void* handle_;
};

/* What the host copied out of one event. */
struct Event {
    tagEVENT_BASE_INFO base;
    std::string sourceId;
    std::string picture; /* the item's data; empty without extension */
    void* instance;

    /* The bytes of the JPEG in the picture part. */
    std::string jpeg() const;
};

/* One instance with its tables, and what its callbacks brought. */
class Session {
 public:
    explicit Session(Library& library);
    ~Session(); /* destroys the instance, unless that was done before */
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    void* instance = nullptr;
    VELTA_ConnectTable* connect = nullptr;
    VELTA_EventTable* event = nullptr;
    VELTA_GatewayTable* gateway = nullptr;

    uint32_t connectTo(uint16_t port, const std::string& user = "admin",
                       const std::string& password = "velta-sim-1", const std::string& more = "");
    int status() const;
    int destroy();
    uint32_t arm();
    uint32_t cancel();
    std::string request(const std::string& method, const std::string& uri, const std::string& body = "",
                        unsigned room = 2U << 20U);

    /* Called inside the event callback, before the event is kept. */
    std::function<void(const Event&)> onEvent;

    bool waitForStatus(int wanted);
    bool waitForEvents(size_t count);
    std::vector<Event> events() const;
    void forgetEvents();
    /* Statuses with their texts in the order of the callbacks: "11 OfflineHint=4". */
    std::vector<std::string> statusLog() const;

 private:
    static void onStatusCallBack(void* instance, int status, char* info, void* user);
    static void onEventCallBack(void* instance, char* sourceId, tagEVENT_BASE_INFO* base,
                                tagEVENT_EXT_INFO* ext, void* user);

    Library& library_;
    mutable std::mutex mutex_;
    std::condition_variable changed_;
    std::vector<Event> events_;
    std::vector<std::string> statusLog_;
};

}  // namespace host
