/* The machine's network adapters with their addresses. */
#ifndef XPR_ADAPTER_H
#define XPR_ADAPTER_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef struct XPR_IPv4Address {
    char text[16]; /* dotted, zero-terminated */
    struct XPR_IPv4Address* next;
} XPR_IPv4Address;

typedef struct XPR_IPv6Address {
    uint8_t bytes[16]; /* network order */
    struct XPR_IPv6Address* next;
} XPR_IPv6Address;

typedef struct XPR_Adapter {
    char name[16];              /* the system's name of the adapter, zero-terminated */
    uint8_t hardwareAddress[8]; /* the first hardwareAddressLength bytes count */
    uint32_t hardwareAddressLength;
    XPR_IPv4Address* ipv4; /* null when it has none */
    XPR_IPv6Address* ipv6;
    struct XPR_Adapter* next;
} XPR_Adapter;

/* Lists the adapters that are up, loopback included, in the system's order. *first is null when there is
 * none; on failure it is untouched. The list belongs to the caller, who gives it back with
 * XPR_FreeAdapterInfo.
 * Returns XPR_OK, XPR_ERROR_PARAMETER, XPR_ERROR_OUT_OF_MEMORY or XPR_FAILED. [any thread] */
int XPR_GetAdapterInfo(XPR_Adapter** first);

/* Null is allowed. */
void XPR_FreeAdapterInfo(XPR_Adapter* first);

#ifdef __cplusplus
}
#endif

#endif
