/* The short-link HTTP client: one client, one exchange with a device, nothing kept afterwards.
 *
 * HTTP/1.1 over TCP, with Basic and Digest authentication (MD5 and SHA-256, qop "auth" and none). The first
 * request goes out whole and without credentials; only a device that answers 401 gets a second one, with
 * Digest where it offers Digest, and with Basic, that is in clear, only where it offers nothing better. A
 * nonce that the device then calls stale is replaced once. No redirect is followed, no proxy of the
 * environment used, no cookie kept, no "Expect: 100-continue" sent. */
#ifndef NETUTILS_NETUTILS_H
#define NETUTILS_NETUTILS_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* A client; negative values are failures. Belongs to the caller until NET_HTTPCLIENT_Destroy. One thread at a
 * time may use a client; different clients are independent. */
typedef intptr_t NET_HTTPCLIENT_HANDLE;

/* Parameter codes of NET_HTTPCLIENT_SetParam. Lengths of header names and values count the terminating zero;
 * those of user name, password and body do not. */
enum {
    /* name: user, value: password; without a zero in them */
    NET_HTTPCLIENT_PARAM_CREDENTIALS = 1,
    /* value: request body, copied; any bytes */
    NET_HTTPCLIENT_PARAM_BODY = 2,
    /* One request header, in addition to those set before. Content-Length, Transfer-Encoding and Expect are
     * accepted but not sent: what frames the message follows from its body. */
    NET_HTTPCLIENT_PARAM_HEADER = 3,
    /* value: 4-byte integer, milliseconds that sending may stall, noticed within a second; 0, and as long as
     * it is not set: no limit. The connection must stand within this time or 2000 ms, whichever is longer. */
    NET_HTTPCLIENT_PARAM_SEND_TIMEOUT = 9,
    /* value: 4-byte integer, milliseconds for the whole exchange, with connecting and all requests of a
     * log-in; 0, and as long as it is not set: no limit */
    NET_HTTPCLIENT_PARAM_EXCHANGE_TIMEOUT = 11,
    /* value: extra text; accepted for hosts that set it, not used */
    NET_HTTPCLIENT_PARAM_EXTRA = 16
};

/* Method codes. Others are refused by the exchange. */
enum {
    NET_HTTPCLIENT_METHOD_GET = 0,
    NET_HTTPCLIENT_METHOD_PUT = 1,
    NET_HTTPCLIENT_METHOD_POST = 2,
    NET_HTTPCLIENT_METHOD_DELETE = 3
};

/* One exchange: what to send and where the answer goes. All pointers belong to the caller. */
typedef struct NET_HTTPCLIENT_EXCHANGE {
    const char* url; /* need not be terminated; refused with a blank or a control character in it */
    uint64_t urlLength;
    char* buffer;        /* receives the body of the answer, unterminated */
    uint32_t bufferSize; /* in: capacity; out: body bytes received. A longer body is cut at the capacity. */
    uint32_t httpStatus; /* out */
    uint8_t method;
    uint8_t reserved[31]; /* zero */
} NET_HTTPCLIENT_EXCHANGE;

/* Values of NET_UTILS_GetLastError; positive ones are libcurl's CURLcode. */
enum {
    NET_UTILS_OK = 0,
    NET_UTILS_ERROR_PARAMETER = -1,
    NET_UTILS_ERROR_OUT_OF_MEMORY = -2,
    NET_UTILS_ERROR_METHOD = -3
};

/* A new client, or a negative value. */
NET_HTTPCLIENT_HANDLE NET_HTTPCLIENT_Create(void);

/* Sets one parameter; everything is copied. Returns 0, or a negative NET_UTILS_ERROR: an unknown code, a
 * header with a line break or a control character in it, an integer of the wrong length or below 0. */
int NET_HTTPCLIENT_SetParam(NET_HTTPCLIENT_HANDLE client, int code, const void* name, uint32_t nameLength,
                            const void* value, uint32_t valueLength);

/* Sends the request and waits for the answer, at most as long as the time-outs allow. in and out may be the
 * same record. Returns 1 when an HTTP answer with a status arrived, also one that was cut at the capacity; 0
 * when none did, whose reason NET_UTILS_GetLastError tells and which leaves out untouched,
 * though not the buffer. */
int NET_HTTPCLIENT_ShortLinkExchange(NET_HTTPCLIENT_HANDLE client, const NET_HTTPCLIENT_EXCHANGE* in,
                                     NET_HTTPCLIENT_EXCHANGE* out);

/* Gives back the client and wipes its copy of the credentials. Negative handles are ignored. */
void NET_HTTPCLIENT_Destroy(NET_HTTPCLIENT_HANDLE client);

/* The error of the calling thread's last failing call. */
int NET_UTILS_GetLastError(void);

#ifdef __cplusplus
}
#endif

#endif
