/* "Device.IVELTA": requests to the device, and its inventory. */
#ifndef VELTA_GATEWAY_H
#define VELTA_GATEWAY_H

#include <velta/result.h>

#ifdef __cplusplus
extern "C" {
#endif

#define VELTA_KEY_GATEWAY "Device.IVELTA"

struct tagVELTA_INFO; /* the host's record of a call; this plug-in neither reads nor writes it */

/* The table of "Device.IVELTA". The first argument of each function is the instance; a null one gives
 * VELTA_E_NO_INTERFACE. */
typedef struct VELTA_GatewayTable {
    /* One request to the device.
     *
     * request: {"method": "GET"|"PUT"|"POST"|"DELETE", "uri": TEXT, "body": TEXT}. A request goes to the
     * device as it stands, less the host's own parameter "devIndex", which the query of its uri must hold
     * ("/VELTA/System/deviceInfo?devIndex=1").
     *
     * A uri with "format=json" in it that names a common operation is translated: the body is the host's JSON,
     * which is checked, and the answer is JSON. The operations are listed in docs/requests.md: device
     * information, time, network, and all of access control. Another method than theirs is refused with
     * VELTA_E_NOT_SUPPORTED. So is, at /VELTA/System/IO/outputs/N/trigger, any method but PUT, whose body is
     * {"IOPortData":{"outputState":"high"|"low"}} and whose uri must have a query.
     *
     * Requests of one session that write persons, cards, faces or fingerprints, or read fingerprints back, are
     * carried out one after the other; each waits for those before it.
     *
     * response receives the device's answer, or the status of what went wrong,
     * {"statusCode","statusString","subStatusCode","errorCode","errorMsg"}: at most responseSize - 1 bytes
     * and a terminating zero; a longer answer is cut. A null response or a responseSize of 0 receives
     * nothing.
     *
     * Always VELTA_OK (0): the answer tells how it went. Blocks for the exchange, at most about 15 s for each
     * request that goes to the device: a batch of persons is one request for each. [any thread, in event] */
    int (*VELTA_Getway)(void* instance, char* request, char* response, unsigned int responseSize,
                        struct tagVELTA_INFO* info);

    /* The device's inventory as JSON: identity, online state, channels. At most size bytes with the
     * terminating zero; a text of exactly size bytes or less loses its last character. Blocks as VELTA_Getway
     * does, for up to seven requests. VELTA_OK, or VELTA_E_BAD_PARAMETER when the device's documents can't be
     * read. [any thread, in event] */
    int (*DeviceLoop)(void* instance, char* buffer, unsigned int size);

    int (*ActiveDevice)(void* instance, char* in, char* out,
                        unsigned int outSize); /* VELTA_E_NOT_SUPPORTED */
} VELTA_GatewayTable;

#ifdef __cplusplus
}
#endif

#endif
