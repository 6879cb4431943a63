// This process's connections as they are used: velta-host defines some of the C library's calls itself, and so sees
// what the plug-in's HTTP library does, before the C library does it. Addresses, bytes, errors and times stay as
// they are. Calls: connect, getsockopt (the outcome of a connection), send, recv, close.
#pragma once

#include <netinet/in.h>

#include <functional>
#include <memory>

#include "trace/connection_trace.h"

namespace host {

// Tells who follows a connection to that address; null: nobody.
using Follow = std::function<std::shared_ptr<ConnectionTrace>(const sockaddr_in& address)>;

// From here on new connections are asked for. [one at a time]
void watchWire(Follow follow);
// Ends it; connections that are open count as closed. No connection is being made meanwhile.
void leaveWire();

}  // namespace host
