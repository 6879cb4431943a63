#include "DevPlus/CDevConnect_V2.h"

#include "DevPlus/Facade.h"

using velta::callFacade;
using velta::result;

CDevConnect_V2* GetDevConnect_V2(void* handle) {
    return velta::facadeOf<CDevConnect_V2>(handle);
}

namespace {

int SetConnStatusCallBackImpl_V2(void* handle, VELTA_ConnStatusCallBack callback, void* user) {
    return callFacade(__func__, __LINE__, GetDevConnect_V2(handle), &CDevConnect_V2::SetConnStatusCallBack,
                      callback, user);
}

int ConnectImpl_V1(void* handle, char* url) {
    return callFacade(__func__, __LINE__, GetDevConnect_V2(handle), &CDevConnect_V2::Connect, url);
}

int DisConnectImpl_V2(void* handle) {
    return callFacade(__func__, __LINE__, GetDevConnect_V2(handle), &CDevConnect_V2::DisConnect);
}

int GetConnectStatusImpl_V2(void* handle, int* status, char* info) {
    return callFacade(__func__, __LINE__, GetDevConnect_V2(handle), &CDevConnect_V2::GetConnectStatus, status,
                      info);
}

int SetDevRegisterCallBackImpl_V2(void* handle, char* url, VELTA_DevRegisterCallBack callback, void* user) {
    return callFacade(__func__, __LINE__, GetDevConnect_V2(handle), &CDevConnect_V2::SetDevRegisterCallBack,
                      url, callback, user);
}

int SetLoginResultCallBackImpl_V2(void* handle, VELTA_LoginResultCallBack callback, void* user) {
    return callFacade(__func__, __LINE__, GetDevConnect_V2(handle), &CDevConnect_V2::SetLoginResultCallBack,
                      callback, user);
}

int ConnectImpl_V2(void* handle, char* url, char* user, char* password) {
    return callFacade(__func__, __LINE__, GetDevConnect_V2(handle), &CDevConnect_V2::Connect_V2, url, user,
                      password);
}

int SetConnectParamsImpl_V2(void* handle, char* params) {
    return callFacade(__func__, __LINE__, GetDevConnect_V2(handle), &CDevConnect_V2::SetConnectParams,
                      params);
}

constexpr VELTA_ConnectTable kTable = {
    SetConnStatusCallBackImpl_V2,
    ConnectImpl_V1,
    DisConnectImpl_V2,
    GetConnectStatusImpl_V2,
    SetDevRegisterCallBackImpl_V2,
    SetLoginResultCallBackImpl_V2,
    ConnectImpl_V2,
    SetConnectParamsImpl_V2,
};

}  // namespace

void CDevConnect_V2::Bind(CDevBase* base) {
    base_ = base;
    base->AddImplement(kKey, this, &kTable);
}

int CDevConnect_V2::SetConnStatusCallBack(VELTA_ConnStatusCallBack callback, void* user) {
    if (base_ == nullptr) return result(VELTA_E_NOT_BOUND);
    callback_ = callback;
    user_ = user;
    return VELTA_OK;
}

void CDevConnect_V2::InvokeConnStatusCallBack(int status, char* text) {
    if (base_ != nullptr && callback_ != nullptr) callback_(base_, status, text, user_);
}

int CDevConnect_V2::Connect(char*) {
    return result(VELTA_E_NOT_SUPPORTED);
}
int CDevConnect_V2::DisConnect() {
    return result(VELTA_E_NOT_SUPPORTED);
}
int CDevConnect_V2::GetConnectStatus(int*, char*) {
    return result(VELTA_E_NOT_SUPPORTED);
}
int CDevConnect_V2::SetDevRegisterCallBack(char*, VELTA_DevRegisterCallBack, void*) {
    return result(VELTA_E_NOT_SUPPORTED);
}
int CDevConnect_V2::SetLoginResultCallBack(VELTA_LoginResultCallBack, void*) {
    return result(VELTA_E_NOT_SUPPORTED);
}
int CDevConnect_V2::Connect_V2(char*, char*, char*) {
    return result(VELTA_E_NOT_SUPPORTED);
}
int CDevConnect_V2::SetConnectParams(char*) {
    return result(VELTA_E_NOT_SUPPORTED);
}
