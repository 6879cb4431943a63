#ifndef VELTA_DEVPLUS_CDEVCONNECT_V2_H
#define VELTA_DEVPLUS_CDEVCONNECT_V2_H

#include <velta/connect.h>

#include "DevPlus/CDevBase.h"

/* The connection interface. Operations that a device does not override answer VELTA_E_NOT_SUPPORTED. The
 * header of the contract, <velta/connect.h>, says what each does. The virtual operations stand in the order
 * of the table. */
class CDevConnect_V2 {
 public:
    static constexpr const char* kKey = VELTA_KEY_CONNECT;

    virtual ~CDevConnect_V2() = default;
    /* VELTA_E_NOT_BOUND when the interface belongs to no instance. */
    virtual int SetConnStatusCallBack(VELTA_ConnStatusCallBack callback, void* user);
    virtual int Connect(char* url);
    virtual int DisConnect();
    virtual int GetConnectStatus(int* status, char* info);
    virtual int SetDevRegisterCallBack(char* url, VELTA_DevRegisterCallBack callback, void* user);
    virtual int SetLoginResultCallBack(VELTA_LoginResultCallBack callback, void* user);
    virtual int Connect_V2(char* url, char* user, char* password);
    virtual int SetConnectParams(char* params);

    void Bind(CDevBase* base);

    /* Calls the stored callback with the instance's handle; nothing when unbound or without callback. */
    void InvokeConnStatusCallBack(int status, char* text);

 private:
    CDevBase* base_ = nullptr;
    VELTA_ConnStatusCallBack callback_ = nullptr;
    void* user_ = nullptr;
};

CDevConnect_V2* GetDevConnect_V2(void* handle);

#endif
