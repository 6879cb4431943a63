/* "Device.IConnect_V2": how a session learns of its device, and how the host learns of its state. */
#ifndef VELTA_CONNECT_H
#define VELTA_CONNECT_H

#include <velta/result.h>

#ifdef __cplusplus
extern "C" {
#endif

#define VELTA_KEY_CONNECT "Device.IConnect_V2"

/* Connection statuses. The text that a status callback gets with each stands behind it. */
enum {
    VELTA_STATUS_UNKNOWN = -1, /* "": not checked yet, or the last check failed otherwise than by a refusal */
    VELTA_STATUS_ONLINE = 0,   /* "": the last check succeeded */
    VELTA_STATUS_DISCONNECTED = 1, /* by DisConnect; never reported to the callback */
    VELTA_STATUS_REFUSED = 11,     /* "OfflineHint=4": the device refuses the credentials */
    VELTA_STATUS_LOCKED = 12 /* "OfflineHint=5": the device refuses the credentials and has locked the user */
};

/* Reports a change of status. instance is the handle of CreateInstance; info is valid during the call.
 *
 * Runs on the plug-in's timer thread, one call at a time for all sessions, while the session registry is
 * being read. From inside it a host must not call Connect_V2, DisConnect, DestroyInstance or Uninit, of this
 * or of any other session: they change the registry and would wait for the callback to return. Neither may it
 * wait for another thread that does. The new status is stored after the call: GetConnectStatus still gives
 * the old one, and SetEventCallBack still answers as in the old one; set the event callback from another
 * thread. */
typedef void (*VELTA_ConnStatusCallBack)(void* instance, int status, char* info, void* user);

struct tagDeviceInfo; /* the host's record of a device that registers itself; not used by this plug-in */
typedef void (*VELTA_DevRegisterCallBack)(void* instance, struct tagDeviceInfo device, void* user);
typedef void (*VELTA_LoginResultCallBack)(void* instance, int result, char* info, void* user);

/* The table of "Device.IConnect_V2". The first argument of each function is the instance; a null one gives
 * VELTA_E_NO_INTERFACE. */
typedef struct VELTA_ConnectTable {
    /* Sets or, with null, clears the status callback. When it returns, the callback set before is not running
     * and will not run again, unless it is called from inside that callback. VELTA_OK. [any thread] */
    int (*SetConnStatusCallBack)(void* instance, VELTA_ConnStatusCallBack callback, void* user);

    int (*Connect)(void* instance, char* url); /* VELTA_E_NOT_SUPPORTED */

    /* Disarms, takes the session out of the registry and sets its status to VELTA_STATUS_DISCONNECTED without
     * calling the status callback. VELTA_OK. [any thread, not in status, in event] */
    int (*DisConnect)(void* instance);

    /* Writes one of the statuses above to *status; info is not written and may be null.
     * VELTA_OK; VELTA_E_NULL_PARAMETER for a null status. [any thread] */
    int (*GetConnectStatus)(void* instance, int* status, char* info);

    /* Both VELTA_E_NOT_SUPPORTED. */
    int (*SetDevRegisterCallBack)(void* instance, char* url, VELTA_DevRegisterCallBack callback, void* user);
    int (*SetLoginResultCallBack)(void* instance, VELTA_LoginResultCallBack callback, void* user);

    /* Stores the connection parameters and registers the session for the online check, which comes every 15 s
     * on the plug-in's timer thread, session after session. Does not contact the device itself.
     *
     * url is a sequence of items "key=value;"; text after the last ";" is ignored, nothing is trimmed or unescaped:
     *   Connect=TCP/IP;   required as it stands
     *   Target=...;       the device's address, required; a host name serves for requests, but events find their
     *                     session by the address that the device writes into them
     *   Port=...;         its HTTP port, 1 to 65535, required
     *   DevIndex=...;     the host's key of the device: a later session with the same key takes its place in the
     *                     check, and disconnecting or destroying either of them takes the key out
     *   DeviceName=...;   written into the device's information once after each Connect_V2; empty: left alone
     *   ResType=...;      kept, not interpreted
     * user and password: required, together at most VELTA_MAX_CREDENTIALS bytes.
     *
     * VELTA_OK; VELTA_E_NULL_PARAMETER for a null argument; VELTA_E_BAD_PARAMETER for a wrong "Connect"
     * (nothing is stored), and for an empty or overlong value, a port out of range or a control character in
     * a value of the URL (stored, but not registered). May be called again: the parameters are replaced, requests under
     * way finish with the old ones. [any thread, not in status, in event] */
    int (*Connect_V2)(void* instance, char* url, char* user, char* password);

    int (*SetConnectParams)(void* instance, char* params); /* VELTA_E_NOT_SUPPORTED */
} VELTA_ConnectTable;

#define VELTA_MAX_CREDENTIALS 254

#ifdef __cplusplus
}
#endif

#endif
