#include "DevPlus/CDevEvent.h"

#include "DevPlus/Facade.h"

using velta::callFacade;
using velta::result;

CDevEvent* GetDevEvent(void* handle) {
    return velta::facadeOf<CDevEvent>(handle);
}

namespace {

int SetEventCallBackImpl(void* handle, VELTA_EventCallBack callback, void* user) {
    return callFacade(__func__, __LINE__, GetDevEvent(handle), &CDevEvent::SetEventCallBack, callback, user);
}

int GetArmingScheduleImpl(void* handle, char* in, char* out, unsigned int* outSize) {
    return callFacade(__func__, __LINE__, GetDevEvent(handle), &CDevEvent::GetArmingSchedule, in, out,
                      outSize);
}

int SetArmingScheduleImpl(void* handle, char* in, char* out, unsigned int outSize) {
    return callFacade(__func__, __LINE__, GetDevEvent(handle), &CDevEvent::SetArmingSchedule, in, out,
                      outSize);
}

constexpr VELTA_EventTable kTable = {SetEventCallBackImpl, GetArmingScheduleImpl, SetArmingScheduleImpl};

}  // namespace

void CDevEvent::Bind(CDevBase* base) {
    base_ = base;
    base->AddImplement(kKey, this, &kTable);
}

int CDevEvent::SetEventCallBack(VELTA_EventCallBack callback, void* user) {
    if (base_ == nullptr) return result(VELTA_E_NOT_BOUND);
    callback_ = callback;
    user_ = user;
    return VELTA_OK;
}

void CDevEvent::InvokeEventCallBack(char* text, tagEVENT_BASE_INFO* base, tagEVENT_EXT_INFO* ext) {
    if (base_ != nullptr && callback_ != nullptr) callback_(base_, text, base, ext, user_);
}

int CDevEvent::GetArmingSchedule(char*, char*, unsigned int*) {
    return result(VELTA_E_NOT_SUPPORTED);
}
int CDevEvent::SetArmingSchedule(char*, char*, unsigned int) {
    return result(VELTA_E_NOT_SUPPORTED);
}
