/* "Device.IMediaStream": the place of live video, playback and talk. This plug-in carries no media: talk and
 * record download answer VELTA_OK and do nothing, everything else answers VELTA_E_NOT_SUPPORTED. */
#ifndef VELTA_STREAM_H
#define VELTA_STREAM_H

#include <velta/result.h>

#ifdef __cplusplus
extern "C" {
#endif

#define VELTA_KEY_STREAM "Device.IMediaStream"

/* Records of the host; only passed through. */
typedef struct DEVICE_T DEVICE_T;
typedef struct DEVICE_PALYBACK_T DEVICE_PALYBACK_T;
typedef struct PLUGIN_PACKET_T PLUGIN_PACKET_T;

typedef int (*VELTA_StreamCallBack)(long stream, int channel, int kind, PLUGIN_PACKET_T* packet, void* user);

/* The table of "Device.IMediaStream". The first argument of each function is the instance; a null one gives
 * VELTA_E_NO_INTERFACE. [any thread] */
typedef struct VELTA_StreamTable {
    int (*StartStream)(void* instance, DEVICE_T* device, VELTA_StreamCallBack callback, void* user,
                       void** stream);
    int (*StopStream)(void* instance, void* stream);
    int (*ForceIFrame)(void* instance, void* stream);
    int (*StartPlayBack)(void* instance, DEVICE_PALYBACK_T* device, VELTA_StreamCallBack callback, void* user,
                         void** stream);
    int (*StartRPlayBack)(void* instance, DEVICE_PALYBACK_T* device, VELTA_StreamCallBack callback,
                          void* user, void** stream);
    int (*StopPlayBack)(void* instance, void* stream);
    int (*Pause)(void* instance, void* stream);
    int (*Resume)(void* instance, void* stream);
    int (*SetScale)(void* instance, void* stream, double scale);
    int (*SeekByRelTime)(void* instance, void* stream, int from, int offset);
    int (*SeekByAbsTime)(void* instance, void* stream, const char* from, const char* to);
    int (*StartTalk)(void* instance, DEVICE_T* device, VELTA_StreamCallBack callback, void* user,
                     void** talk);
    int (*StopTalk)(void* instance, void* talk);
    int (*SendTalkData)(void* instance, void* talk, char* data, unsigned long length);
    int (*StartDownloadRecord)(void* instance, DEVICE_PALYBACK_T* device, VELTA_StreamCallBack callback,
                               void* user, void** download, unsigned long* length);
    int (*StopDownloadRecord)(void* instance, void** download);
} VELTA_StreamTable;

#ifdef __cplusplus
}
#endif

#endif
