// The library as a platform loads it, and a session with one device.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include <velta/velta.h>

#include "device_address.h"
#include "inbox.h"
#include "waiter.h"

namespace host {

struct Credentials {
    std::string user;
    std::string password;
};

// "0x40000001 (not supported)"
std::string resultText(int code);

// Loads and starts the library; stops and unloads it at the end, when no session is left.
class Plugin {
 public:
    // logLevel: one of logLevelNames(). Throws Failure (no library).
    Plugin(const std::string& path, const std::string& logLevel);
    ~Plugin();
    Plugin(const Plugin&) = delete;
    Plugin& operator=(const Plugin&) = delete;

    const xplugin_export_interface_t& entries() const { return *entries_; }
    std::string version() const;
    int setConfig(const std::string& head, const std::string& message) const;  // the plug-in's result code
    // The online check, which logs in to all devices, comes in this rhythm from the start on. The time of the
    // next one is good for a display: it is the plug-in's clock that counts.
    static constexpr std::chrono::seconds kCheckPeriod{15};
    Clock::time_point nextCheck() const;

 private:
    struct CloseLibrary {
        void operator()(void* library) const;
    };
    template <typename Function>
    Function find(const char* name) const;
    void setLogLevel(const std::string& level) const;

    const std::unique_ptr<void, CloseLibrary> library_;
    const xplugin_export_interface_t* entries_ = nullptr;
    VELTA_SetConfigFunction setConfig_ = nullptr;
    Clock::time_point started_;
};

std::vector<std::string> logLevelNames();

// One device. Reports to the inbox until it is destroyed.
class Session {
 public:
    // number: names the session in the inbox, and is its key in the plug-in. Throws Failure.
    Session(const Plugin& plugin, size_t number, DeviceAddress device, Inbox& inbox);
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    void connect(const Credentials& credentials);  // throws Failure
    void disconnect();                             // no further log-in is tried
    const DeviceAddress& device() const { return device_; }
    int status() const;
    // Opens the way for events; on a session that is armed already nothing changes. The result code of the
    // plug-in.
    int arm();
    // One request: {"method","uri","body"}; the answer as it came.
    std::string request(const std::string& envelope) const;
    // Throws Failure when the plug-in does not give it.
    std::string inventory() const;

 private:
    template <typename Table>
    const Table* table(const char* key) const;
    static void onStatus(void* instance, int status, char* info, void* session);
    static void onEvent(void* instance, char* sourceId, tagEVENT_BASE_INFO* base, tagEVENT_EXT_INFO* ext,
                        void* session);

    const xplugin_export_interface_t& entries_;
    const size_t number_;
    const DeviceAddress device_;
    Inbox& inbox_;
    void* instance_ = nullptr;
    const VELTA_ConnectTable* connect_ = nullptr;
    const VELTA_EventTable* event_ = nullptr;
    const VELTA_GatewayTable* gateway_ = nullptr;
};

}  // namespace host
