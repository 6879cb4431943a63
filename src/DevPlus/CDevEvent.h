#ifndef VELTA_DEVPLUS_CDEVEVENT_H
#define VELTA_DEVPLUS_CDEVEVENT_H

#include <velta/event.h>

#include "DevPlus/CDevBase.h"

/* The event interface; see <velta/event.h>. The virtual operations stand in the order of the table. */
class CDevEvent {
 public:
    static constexpr const char* kKey = VELTA_KEY_EVENT;

    virtual ~CDevEvent() = default;
    /* VELTA_E_NOT_BOUND when the interface belongs to no instance. */
    virtual int SetEventCallBack(VELTA_EventCallBack callback, void* user);
    virtual int GetArmingSchedule(char* in, char* out, unsigned int* outSize);
    virtual int SetArmingSchedule(char* in, char* out, unsigned int outSize);

    void Bind(CDevBase* base);

    /* Calls the stored callback with the instance's handle; nothing when unbound or without callback. */
    void InvokeEventCallBack(char* text, tagEVENT_BASE_INFO* base, tagEVENT_EXT_INFO* ext);

 private:
    CDevBase* base_ = nullptr;
    VELTA_EventCallBack callback_ = nullptr;
    void* user_ = nullptr;
};

CDevEvent* GetDevEvent(void* handle);

#endif
