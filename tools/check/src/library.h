// The library under test: loaded, started, and driven as a host drives it.
#pragma once

#include <veltasim/device.h>

#include <string>
#include <vector>

#include <velta/velta.h>

#include "inbox.h"
#include "trial.h"

namespace check {

// Loaded for as long as this lives.
class Library {
 public:
    explicit Library(Trial& trial);
    ~Library();
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;

    void* find(const std::string& name) const;  // null when there is no such name
    // A missing name is a finding, and ends the check.
    template <typename Function>
    Function entry(const std::string& name) const {
        return reinterpret_cast<Function>(required(name));
    }
    const xplugin_export_interface_t& record() const;

 private:
    void* required(const std::string& name) const;

    Trial& trial_;
    void* const handle_;
};

// Loaded and started.
class Plugin {
 public:
    explicit Plugin(Trial& trial);
    ~Plugin();  // stops it, unless stop() was called
    Plugin(const Plugin&) = delete;
    Plugin& operator=(const Plugin&) = delete;

    const Library& library() const { return library_; }
    const xplugin_export_interface_t& record() const { return record_; }
    int setConfig(const char* head, const char* message) const;
    void passEvents() const;  // the switch that lets events through
    int stop();

 private:
    Trial& trial_;
    const Library library_;
    const xplugin_export_interface_t& record_;
    bool isRunning_ = false;
};

// Where Connect_V2 leads, and who logs in.
struct Target {
    uint16_t port = 0;
    std::string more = {};  // further items of the URL
    std::string user = "admin";
    std::string password = "velta-sim-1";
    std::string index = {};  // "DevIndex"; empty: one of its own
};

class Session {
 public:
    Session(Trial& trial, const Plugin& plugin);
    ~Session();  // destroys the instance, unless destroy() was called
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    void* instance() const { return instance_; }
    const VELTA_ConnectTable& connection() const { return *connect_; }
    const VELTA_EventTable& events() const { return *event_; }
    const VELTA_GatewayTable& gateway() const { return *gateway_; }

    int connect(const Target& target) const;
    int connectUrl(std::string url, std::string user = "admin", std::string password = "velta-sim-1") const;
    void mustConnect(const Target& target) const;
    int status() const;
    void mustReach(int status) const;  // waits for it
    int arm(Inbox& inbox) const;
    int cancel() const;
    int destroy();

    // The gateway's answer to a request, and to any envelope.
    std::string request(const std::string& method, const std::string& uri,
                        const std::string& body = "") const;
    std::string ask(std::string envelope) const;

    Inbox& inbox() { return inbox_; }  // of the status callback, and of whatever is armed with it

 private:
    Trial& trial_;
    const xplugin_export_interface_t& record_;
    void* instance_ = nullptr;
    const VELTA_ConnectTable* connect_ = nullptr;
    const VELTA_EventTable* event_ = nullptr;
    const VELTA_GatewayTable* gateway_ = nullptr;
    Inbox inbox_;
};

// A device with a session that was connected to it. The gateway does not wait for the online check.
struct Scene {
    explicit Scene(Trial& trial, veltasim::Options options = {});

    // What has come to the device, less the online check, which comes when it comes.
    std::vector<veltasim::RequestRecord> requests() const;
    veltasim::RequestRecord lastRequest() const;  // an empty one when there is none

    veltasim::Device device;
    Plugin plugin;
    Session session;
};

// The same when it is online, armed, and lets events through.
struct ArmedScene : Scene {
    explicit ArmedScene(Trial& trial);
    void receive(size_t count);  // waits until so many events have come in all; fewer end the check
    // Sends an event of this person until it has come; what is sent while another message is on its way may share
    // a chunk with that, and is lost then.
    void deliver(const std::string& person);

    Trial& trial;
    Inbox& inbox = session.inbox();
};

}  // namespace check
