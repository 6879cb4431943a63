#ifndef VELTA_DEVPLUS_CDEVSTREAM_H
#define VELTA_DEVPLUS_CDEVSTREAM_H

#include <velta/stream.h>

#include "DevPlus/CDevBase.h"

/* The media-stream interface; see <velta/stream.h>. The virtual operations stand in the order of the table.
 */
class CDevStream {
 public:
    static constexpr const char* kKey = VELTA_KEY_STREAM;

    virtual ~CDevStream() = default;
    virtual int StartStream(DEVICE_T* device, VELTA_StreamCallBack callback, void* user, void*& stream);
    virtual int StopStream(void* stream);
    virtual int ForceIFrame(void* stream);
    virtual int StartPlayBack(DEVICE_PALYBACK_T* device, VELTA_StreamCallBack callback, void* user,
                              void*& stream);
    virtual int StartRPlayBack(DEVICE_PALYBACK_T* device, VELTA_StreamCallBack callback, void* user,
                               void*& stream);
    virtual int StopPlayBack(void* stream);
    virtual int Pause(void* stream);
    virtual int Resume(void* stream);
    virtual int SetScale(void* stream, double scale);
    virtual int SeekByRelTime(void* stream, int from, int offset);
    virtual int SeekByAbsTime(void* stream, const char* from, const char* to);
    virtual int StartTalk(DEVICE_T* device, VELTA_StreamCallBack callback, void* user, void*& talk);
    virtual int StopTalk(void* talk);
    virtual int SendTalkData(void* talk, char* data, unsigned long length);
    virtual int StartDownloadRecord(DEVICE_PALYBACK_T* device, VELTA_StreamCallBack callback, void* user,
                                    void*& download, unsigned long* length);
    virtual int StopDownloadRecord(void*& download);

    void Bind(CDevBase* base);
};

CDevStream* GetDevMediaStream(void* handle);

#endif
