/* Loading, starting and stopping the plug-in, its instances, and its configuration commands. */
#ifndef VELTA_PLUGIN_H
#define VELTA_PLUGIN_H

#include <velta/result.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Starts the plug-in: its threads, its timer and its HTTP library. Once in the life of a process; a second
 * Init without Uninit is refused, and after an Uninit the plug-in starts but serves no device any more.
 * VELTA_OK, VELTA_REFUSED. [serialised] */
typedef int (*VELTA_InitFunction)(void);
/* As Init, with a parameter text. This plug-in has no use for one. [serialised] */
typedef int (*VELTA_InitExFunction)(const char* param);
/* Stops the plug-in and ends its threads. VELTA_REFUSED while any instance is alive, or when not started.
 * Waits for what is going on in the plug-in's own threads, at most for the time-outs of a device that does
 * not answer. [serialised] */
typedef int (*VELTA_UninitFunction)(void);

/* Makes the session object of one device. *instance is the handle for everything else; it belongs to the
 * plug-in and lives until DestroyInstance. VELTA_OK; VELTA_REFUSED before Init, for a null argument and
 * without memory. [any thread, in event] */
typedef int (*VELTA_CreateInstanceFunction)(void** instance);
/* As CreateInstance, with a type text. Always VELTA_REFUSED in this plug-in. */
typedef int (*VELTA_CreateInstanceV2Function)(const char* type, void** instance);

/* Disarms, deregisters and frees a session. When it returns, no thread of the plug-in is inside the session
 * and no callback of it runs or will run; it waits for calls that are still going on, up to their time-outs.
 * From inside an event callback of this very session it does not wait for that callback. Null and unknown
 * handles are VELTA_OK and do nothing; VELTA_REFUSED before Init. [any thread, not in status, in event] */
typedef int (*VELTA_DestroyInstanceFunction)(void* instance);

/* Asks an instance for the function table of an interface key; the header of the interface gives its layout.
 * VELTA_OK; VELTA_NO_SUCH_INTERFACE with *table null for an unknown or null key; VELTA_OK with *table
 * untouched for a null instance; VELTA_REFUSED before Init and for a null table pointer. [any thread, in
 * event] */
typedef int (*VELTA_QueryInterfaceFunction)(void* instance, const char* key, void** table);

/* A null-terminated array of interface keys, valid while the library is loaded. "Device.IMediaStream" is
 * answered by QueryInterface without being listed. [any thread] */
typedef const char** (*VELTA_GetAllInterfaceIkeysFunction)(void);
/* "V1.0.0.0". [any thread] */
typedef const char* (*VELTA_GetFileVersionFunction)(void);
/* Not to be called: this plug-in has no such list. */
typedef int (*VELTA_GetPluginMapFkeysFunction)(char (*keys)[256], int* count);

/* The export records. The order of the members is the contract. */
typedef struct xplugin_export_interface_t {
    VELTA_InitFunction Init;
    VELTA_UninitFunction Uninit;
    VELTA_CreateInstanceFunction CreateInstance;
    VELTA_DestroyInstanceFunction DestroyInstance;
    VELTA_QueryInterfaceFunction QueryInterface;
    VELTA_GetAllInterfaceIkeysFunction GetAllInterfaceIkeys;
    VELTA_GetFileVersionFunction GetFileVersion;
} xplugin_export_interface_t;

typedef struct xplugin_export_interface_t_v2 {
    VELTA_InitFunction Init;
    VELTA_UninitFunction Uninit;
    VELTA_CreateInstanceV2Function CreateInstance_V2;
    VELTA_DestroyInstanceFunction DestroyInstance;
    VELTA_QueryInterfaceFunction QueryInterface;
    VELTA_GetAllInterfaceIkeysFunction GetAllInterfaceIkeys;
    VELTA_GetFileVersionFunction GetFileVersion;
    VELTA_GetPluginMapFkeysFunction GetPluginMapFkeys;
} xplugin_export_interface_t_v2;

typedef struct xplugin_export_interface_t_v3 {
    VELTA_InitExFunction InitEx;
    VELTA_UninitFunction Uninit;
    VELTA_CreateInstanceV2Function CreateInstance_V2;
    VELTA_DestroyInstanceFunction DestroyInstance;
    VELTA_QueryInterfaceFunction QueryInterface;
    VELTA_GetAllInterfaceIkeysFunction GetAllInterfaceIkeys;
    VELTA_GetFileVersionFunction GetFileVersion;
    VELTA_GetPluginMapFkeysFunction GetPluginMapFkeys;
} xplugin_export_interface_t_v3;

/* What a host resolves by name. */
#define VELTA_ENTRY_GET_PLUGIN_INTERFACE "XPLUGIN_GetPluginInterface"
#define VELTA_ENTRY_SET_CONFIG "Plugin_SetConfig"

/* XPLUGIN_GetPluginInterface: registers the plug-in's entries on the first call and returns a pointer to the
 * xplugin_export_interface_t, which lives as long as the library is loaded. [serialised] */
typedef void* (*VELTA_GetPluginInterfaceFunction)(void);

/* Plugin_SetConfig: one configuration command. head is compared exactly.
 *   "SetEventSub", "SetMarlListen"     message: an integer; other than 0 lets events through to the event
 *                                      callbacks. Off after Init. Both drive the same switch.
 *   "NetZoneTableNotify"               message: {"accessNetInfos":[{"protocolType":"VELTA","accessIp":TEXT,"id":INT}]}
 *                                      sets the network zone; without a "VELTA" entry it is cleared.
 *   "SetMARLSDKLog", "InitListenPort"  accepted and ignored.
 * VELTA_OK; VELTA_REFUSED for a null argument, an unknown head, an unreadable message.
 * [any thread after Init, in event] */
typedef int (*VELTA_SetConfigFunction)(const char* head, const char* message);

#ifdef __cplusplus
}
#endif

#endif
