#ifndef VELTA_DEVPLUS_CDEVVELTA_H
#define VELTA_DEVPLUS_CDEVVELTA_H

#include <velta/gateway.h>

#include "DevPlus/CDevBase.h"

/* The gateway interface; see <velta/gateway.h>. The virtual operations stand in the order of the table. */
class CDevVELTA {
 public:
    static constexpr const char* kKey = VELTA_KEY_GATEWAY;

    virtual ~CDevVELTA() = default;
    virtual int VELTA_Getway(char* request, char* response, unsigned int responseSize, tagVELTA_INFO* info);
    virtual int DeviceLoop(char* buffer, unsigned int size);
    virtual int ActiveDevice(char* in, char* out, unsigned int outSize);

    void Bind(CDevBase* base);
};

CDevVELTA* GetDevHandle(void* handle);

#endif
