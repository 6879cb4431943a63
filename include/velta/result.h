/* Result codes. Functions return int; codes of four bytes are compared as uint32_t:
 *     if ((uint32_t)table->Connect_V2(...) == VELTA_E_BAD_PARAMETER) ... */
#ifndef VELTA_RESULT_H
#define VELTA_RESULT_H

#include <stdint.h>

#define VELTA_OK 0
#define VELTA_REFUSED (-1)           /* refused in this state, or failed */
#define VELTA_NO_SUCH_INTERFACE (-2) /* QueryInterface: unknown interface key */

/* Error numbers: the top four bits are a status group (1 OK, 2 Device Busy, 3 Device Error, 4 Invalid
 * Operation, 5 Invalid Format, 6 Content Error, 7 Reboot Required). The gateway's answers carry the same
 * numbers. */
#define VELTA_E_OFFLINE UINT32_C(0x20000009) /* the device is not online */
#define VELTA_E_NOT_BOUND \
    UINT32_C(0x3000100C) /* callback set on an interface that belongs to no instance \
                                                */
#define VELTA_E_NOT_SUPPORTED UINT32_C(0x40000001)  /* this plug-in does not offer the operation */
#define VELTA_E_NULL_PARAMETER UINT32_C(0x4000000A) /* a required pointer is null */
#define VELTA_E_BAD_PARAMETER UINT32_C(0x60000001)  /* a value is malformed or out of range */
#define VELTA_E_OUT_OF_MEMORY UINT32_C(0x6000003F)
#define VELTA_E_NO_INTERFACE UINT32_C(0x82000005) /* null handle, or an instance without that interface */

#endif
