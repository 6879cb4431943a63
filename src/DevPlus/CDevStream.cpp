#include "DevPlus/CDevStream.h"

#include "DevPlus/Facade.h"

using velta::callFacade;
using velta::result;

CDevStream* GetDevMediaStream(void* handle) {
    return velta::facadeOf<CDevStream>(handle);
}

namespace {

// The operations take a reference where the table has a pointer. No operation of this plug-in reads or writes
// it, so a host's null pointer gets a place of its own.
struct OutHandle {
    explicit OutHandle(void** host) : place(host != nullptr ? *host : unused) {}
    void* unused = nullptr;
    void*& place;
};

int StartStreamInterface(void* handle, DEVICE_T* device, VELTA_StreamCallBack callback, void* user,
                         void** stream) {
    return callFacade(__func__, __LINE__, GetDevMediaStream(handle), &CDevStream::StartStream, device,
                      callback, user, OutHandle(stream).place);
}

int StopStreamInterface(void* handle, void* stream) {
    return callFacade(__func__, __LINE__, GetDevMediaStream(handle), &CDevStream::StopStream, stream);
}

int ForceIFrameInterface(void* handle, void* stream) {
    return callFacade(__func__, __LINE__, GetDevMediaStream(handle), &CDevStream::ForceIFrame, stream);
}

int StartPlayBackInterface(void* handle, DEVICE_PALYBACK_T* device, VELTA_StreamCallBack callback, void* user,
                           void** stream) {
    return callFacade(__func__, __LINE__, GetDevMediaStream(handle), &CDevStream::StartPlayBack, device,
                      callback, user, OutHandle(stream).place);
}

int StartRPlayBackInterface(void* handle, DEVICE_PALYBACK_T* device, VELTA_StreamCallBack callback,
                            void* user, void** stream) {
    return callFacade(__func__, __LINE__, GetDevMediaStream(handle), &CDevStream::StartRPlayBack, device,
                      callback, user, OutHandle(stream).place);
}

int StopPlayBackInterface(void* handle, void* stream) {
    return callFacade(__func__, __LINE__, GetDevMediaStream(handle), &CDevStream::StopPlayBack, stream);
}

int PauseInterface(void* handle, void* stream) {
    return callFacade(__func__, __LINE__, GetDevMediaStream(handle), &CDevStream::Pause, stream);
}

int ResumeInterface(void* handle, void* stream) {
    return callFacade(__func__, __LINE__, GetDevMediaStream(handle), &CDevStream::Resume, stream);
}

int SetScaleInterface(void* handle, void* stream, double scale) {
    return callFacade(__func__, __LINE__, GetDevMediaStream(handle), &CDevStream::SetScale, stream, scale);
}

int SeekByRelTimeInterface(void* handle, void* stream, int from, int offset) {
    return callFacade(__func__, __LINE__, GetDevMediaStream(handle), &CDevStream::SeekByRelTime, stream, from,
                      offset);
}

int SeekByAbsTimeInterface(void* handle, void* stream, const char* from, const char* to) {
    return callFacade(__func__, __LINE__, GetDevMediaStream(handle), &CDevStream::SeekByAbsTime, stream, from,
                      to);
}

int StartTalkInterface(void* handle, DEVICE_T* device, VELTA_StreamCallBack callback, void* user,
                       void** talk) {
    return callFacade(__func__, __LINE__, GetDevMediaStream(handle), &CDevStream::StartTalk, device, callback,
                      user, OutHandle(talk).place);
}

int StopTalkInterface(void* handle, void* talk) {
    return callFacade(__func__, __LINE__, GetDevMediaStream(handle), &CDevStream::StopTalk, talk);
}

int SendTalkDataInterface(void* handle, void* talk, char* data, unsigned long length) {
    return callFacade(__func__, __LINE__, GetDevMediaStream(handle), &CDevStream::SendTalkData, talk, data,
                      length);
}

int StartDownloadRecordInterface(void* handle, DEVICE_PALYBACK_T* device, VELTA_StreamCallBack callback,
                                 void* user, void** download, unsigned long* length) {
    return callFacade(__func__, __LINE__, GetDevMediaStream(handle), &CDevStream::StartDownloadRecord, device,
                      callback, user, OutHandle(download).place, length);
}

int StopDownloadRecordInterface(void* handle, void** download) {
    return callFacade(__func__, __LINE__, GetDevMediaStream(handle), &CDevStream::StopDownloadRecord,
                      OutHandle(download).place);
}

constexpr VELTA_StreamTable kTable = {
    StartStreamInterface,
    StopStreamInterface,
    ForceIFrameInterface,
    StartPlayBackInterface,
    StartRPlayBackInterface,
    StopPlayBackInterface,
    PauseInterface,
    ResumeInterface,
    SetScaleInterface,
    SeekByRelTimeInterface,
    SeekByAbsTimeInterface,
    StartTalkInterface,
    StopTalkInterface,
    SendTalkDataInterface,
    StartDownloadRecordInterface,
    StopDownloadRecordInterface,
};

}  // namespace

void CDevStream::Bind(CDevBase* base) {
    base->AddImplement(kKey, this, &kTable);
}

int CDevStream::StartStream(DEVICE_T*, VELTA_StreamCallBack, void*, void*&) {
    return result(VELTA_E_NOT_SUPPORTED);
}
int CDevStream::StopStream(void*) {
    return result(VELTA_E_NOT_SUPPORTED);
}
int CDevStream::ForceIFrame(void*) {
    return result(VELTA_E_NOT_SUPPORTED);
}
int CDevStream::StartPlayBack(DEVICE_PALYBACK_T*, VELTA_StreamCallBack, void*, void*&) {
    return result(VELTA_E_NOT_SUPPORTED);
}
int CDevStream::StartRPlayBack(DEVICE_PALYBACK_T*, VELTA_StreamCallBack, void*, void*&) {
    return result(VELTA_E_NOT_SUPPORTED);
}
int CDevStream::StopPlayBack(void*) {
    return result(VELTA_E_NOT_SUPPORTED);
}
int CDevStream::Pause(void*) {
    return result(VELTA_E_NOT_SUPPORTED);
}
int CDevStream::Resume(void*) {
    return result(VELTA_E_NOT_SUPPORTED);
}
int CDevStream::SetScale(void*, double) {
    return result(VELTA_E_NOT_SUPPORTED);
}
int CDevStream::SeekByRelTime(void*, int, int) {
    return result(VELTA_E_NOT_SUPPORTED);
}
int CDevStream::SeekByAbsTime(void*, const char*, const char*) {
    return result(VELTA_E_NOT_SUPPORTED);
}
int CDevStream::StartTalk(DEVICE_T*, VELTA_StreamCallBack, void*, void*&) {
    return result(VELTA_E_NOT_SUPPORTED);
}
int CDevStream::StopTalk(void*) {
    return result(VELTA_E_NOT_SUPPORTED);
}
int CDevStream::SendTalkData(void*, char*, unsigned long) {
    return result(VELTA_E_NOT_SUPPORTED);
}
int CDevStream::StartDownloadRecord(DEVICE_PALYBACK_T*, VELTA_StreamCallBack, void*, void*&, unsigned long*) {
    return result(VELTA_E_NOT_SUPPORTED);
}
int CDevStream::StopDownloadRecord(void*&) {
    return result(VELTA_E_NOT_SUPPORTED);
}
