/* The contract between the plug-in and the host that loads it. Plain C99; a host needs nothing else.
 *
 * Where to look:
 *   plugin.h    loading, starting, stopping; instances; configuration commands
 *   connect.h   "Device.IConnect_V2": connection URL, credentials, connection status
 *   event.h     "Device.IEvent": event callback and event records
 *   gateway.h   "Device.IVELTA": requests to the device, inventory
 *   stream.h    "Device.IMediaStream": present, not served by this plug-in
 *   result.h    result codes
 *
 * The way through it: dlopen the library, dlsym XPLUGIN_GetPluginInterface, call it once, Init once,
 * CreateInstance for every device, QueryInterface for its tables, Connect_V2; at the end DestroyInstance for
 * every instance, Uninit.
 *
 * Words in square brackets at a function say when it may be called:
 *   any thread      on any thread of the host; calls for different instances and for the same one may overlap
 *   serialised      the host lets no other call into the library overlap it
 *   not in status   not from inside a connection-status callback: it would wait for that callback to end
 *   in event        also from inside an event callback
 *
 * All texts are UTF-8 and zero-terminated. Buffers belong to whoever allocated them: the plug-in keeps no
 * pointer into host memory after a call has returned, except the user pointers of callbacks. No function
 * throws. */
#ifndef VELTA_VELTA_H
#define VELTA_VELTA_H

#include <velta/connect.h>
#include <velta/event.h>
#include <velta/gateway.h>
#include <velta/plugin.h>
#include <velta/result.h>
#include <velta/stream.h>

#endif
