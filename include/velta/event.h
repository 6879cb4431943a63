/* "Device.IEvent": events of the device, delivered as fixed binary records. */
#ifndef VELTA_EVENT_H
#define VELTA_EVENT_H

#include <stddef.h>
#include <stdint.h>
#include <velta/result.h>

#ifdef __cplusplus
extern "C" {
#endif

#define VELTA_KEY_EVENT "Device.IEvent"

#define VELTA_EVENT_ACCESS_CONTROL UINT32_C(0xD0015) /* eventCode of an access-control event */
#define VELTA_EXT_PICTURE UINT64_C(8)                /* kind of an extension with pictures */

/* One event. Little-endian; texts are zero-terminated and cut to their field; unused bytes are zero. */
typedef struct tagEVENT_BASE_INFO {
    uint64_t size;       /* of this record: 10832 */
    uint32_t eventCode;  /* VELTA_EVENT_ACCESS_CONTROL, or 0 for a generic alarm */
    char payload[10240]; /* access control: ",\"AccessControllerEvent\":" and that member as compact JSON, at
                            most 2047 bytes in all; generic alarm: the whole alarm as compact JSON */
    uint8_t reserved1[48];
    int32_t channel;         /* "channelID", 1 when the device does not say */
    int32_t activePostCount; /* "activePostCount", 1 when the device does not say */
    int32_t activeState;     /* 1 active, 0 inactive */
    uint8_t reserved2[64];
    char dateTime[32]; /* as the device wrote it */
    uint8_t reserved3[64];
    char description[256];  /* generic alarms only */
    char deviceAddress[32]; /* "ipAddress" */
    int32_t devicePort;
    char deviceId[32];
    uint8_t reserved4[32];
    uint8_t genericAlarm; /* 1 for a generic alarm, 0 for an access-control event */
    uint8_t reserved5[3];
} tagEVENT_BASE_INFO;

/* One picture of an event. */
typedef struct tagEVENT_EXT_ITEM {
    uint8_t reserved1[8];
    char*
        data; /* the boundary line and MIME headers of the picture part, an empty line, the JPEG; a zero byte
                       follows. The headers' Content-Length is that of the JPEG: bytes behind it belong to the stream. */
    int32_t length; /* of data, without the zero byte */
    uint8_t reserved2[68];
} tagEVENT_EXT_ITEM;

/* What an event carries besides its record. */
typedef struct tagEVENT_EXT_INFO {
    uint64_t kind; /* VELTA_EXT_PICTURE */
    tagEVENT_EXT_ITEM* items;
    int32_t itemCount; /* 1 */
    uint8_t reserved[68];
} tagEVENT_EXT_INFO;

/* An event. instance is the handle of CreateInstance; sourceId is "D_" and the channel number; ext is null
 * for an event without picture. All of it is valid during the call only: copy what is needed.
 *
 * Runs on the plug-in's alarm thread, one event at a time for all sessions, in the order of their arrival: a
 * slow callback delays the events of every device. From inside it a host may call every function marked "in
 * event", also DestroyInstance of this very session. */
typedef void (*VELTA_EventCallBack)(void* instance, char* sourceId, tagEVENT_BASE_INFO* base,
                                    tagEVENT_EXT_INFO* ext, void* user);

/* The table of "Device.IEvent". The first argument of each function is the instance; a null one gives
 * VELTA_E_NO_INTERFACE. */
typedef struct VELTA_EventTable {
    /* With a callback: arms the session, that is, opens the device's alert stream on a thread of its own.
     * Only on an online session; losing the connection disarms, its return arms again with the same callback.
     * On a session that is armed already it is VELTA_OK and the first callback stays in force.
     * A stream that the device closes while it stays online is not opened again until the status changes, or until
     * the host cancels and sets its callback anew.
     * With null: disarms. When it returns VELTA_OK, the callback is not running and will not run again, unless it is
     * called from inside that callback.
     * Events reach the callback while the switch "SetEventSub" (plugin.h) is on.
     *
     * VELTA_OK; VELTA_E_OFFLINE when the session is not online (an open stream is closed, the callback that
     * was set stays); VELTA_REFUSED when the stream's thread could not be started, and for a cancel without
     * arming. [any thread, in event] */
    int (*SetEventCallBack)(void* instance, VELTA_EventCallBack callback, void* user);

    int (*GetArmingSchedule)(void* instance, char* in, char* out,
                             unsigned int* outSize); /* VELTA_E_NOT_SUPPORTED */
    int (*SetArmingSchedule)(void* instance, char* in, char* out, unsigned int outSize); /* likewise */
} VELTA_EventTable;

/* C99 has no static assertions: an array of a negative size does not compile. */
#define VELTA_ASSERT_AT(type, field, offset) \
    typedef char type##_##field##_stands_at_##offset[offsetof(type, field) == (offset) ? 1 : -1]
#define VELTA_ASSERT_SIZE(type, bytes) \
    typedef char type##_has_##bytes##_bytes[sizeof(type) == (bytes) ? 1 : -1]

VELTA_ASSERT_AT(tagEVENT_BASE_INFO, size, 0);
VELTA_ASSERT_AT(tagEVENT_BASE_INFO, eventCode, 8);
VELTA_ASSERT_AT(tagEVENT_BASE_INFO, payload, 12);
VELTA_ASSERT_AT(tagEVENT_BASE_INFO, reserved1, 10252);
VELTA_ASSERT_AT(tagEVENT_BASE_INFO, channel, 10300);
VELTA_ASSERT_AT(tagEVENT_BASE_INFO, activePostCount, 10304);
VELTA_ASSERT_AT(tagEVENT_BASE_INFO, activeState, 10308);
VELTA_ASSERT_AT(tagEVENT_BASE_INFO, reserved2, 10312);
VELTA_ASSERT_AT(tagEVENT_BASE_INFO, dateTime, 10376);
VELTA_ASSERT_AT(tagEVENT_BASE_INFO, reserved3, 10408);
VELTA_ASSERT_AT(tagEVENT_BASE_INFO, description, 10472);
VELTA_ASSERT_AT(tagEVENT_BASE_INFO, deviceAddress, 10728);
VELTA_ASSERT_AT(tagEVENT_BASE_INFO, devicePort, 10760);
VELTA_ASSERT_AT(tagEVENT_BASE_INFO, deviceId, 10764);
VELTA_ASSERT_AT(tagEVENT_BASE_INFO, reserved4, 10796);
VELTA_ASSERT_AT(tagEVENT_BASE_INFO, genericAlarm, 10828);
VELTA_ASSERT_AT(tagEVENT_BASE_INFO, reserved5, 10829);
VELTA_ASSERT_SIZE(tagEVENT_BASE_INFO, 10832);
VELTA_ASSERT_AT(tagEVENT_EXT_ITEM, data, 8);
VELTA_ASSERT_AT(tagEVENT_EXT_ITEM, length, 16);
VELTA_ASSERT_SIZE(tagEVENT_EXT_ITEM, 88);
VELTA_ASSERT_AT(tagEVENT_EXT_INFO, kind, 0);
VELTA_ASSERT_AT(tagEVENT_EXT_INFO, items, 8);
VELTA_ASSERT_AT(tagEVENT_EXT_INFO, itemCount, 16);
VELTA_ASSERT_AT(tagEVENT_EXT_INFO, reserved, 20);
VELTA_ASSERT_SIZE(tagEVENT_EXT_INFO, 88);

#ifdef __cplusplus
}
#endif

#endif
