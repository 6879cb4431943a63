// A host process: the plug-in, its sessions, and the one who watches over them.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "console.h"
#include "inbox.h"
#include "options.h"
#include "plugin.h"
#include "trace/trace.h"
#include "waiter.h"

namespace host {

// Members go in the reverse order: the sessions are destroyed before the plug-in stops.
struct Host {
    explicit Host(const CommonOptions& options);

    // Makes a session without connecting it; its number is its place in sessions. Throws Failure.
    Session& add(const DeviceAddress& device);
    // Finds the devices' addresses and the password, loads the plug-in and connects a session for each
    // device.
    void connect(const std::vector<std::string>& devices, const LoginOptions& login);
    Session& connect(const DeviceOptions& device);
    void loadPlugin();

    // The status of a callback is stored after the callback: returns when it is, or when it never comes.
    void awaitStored(const Session& session, int status);
    // One request with the host's parameter added to its URI, as every request of a host has it.
    std::string request(const Session& session, const std::string& method, const std::string& uri,
                        const std::string& body = "");

    CommonOptions options;
    Console console;
    Waiter waiter;
    Inbox inbox{waiter};
    std::unique_ptr<Trace> trace;  // null: nobody has asked for one
    std::unique_ptr<Plugin> plugin;
    std::vector<std::unique_ptr<Session>> sessions;
};

}  // namespace host
