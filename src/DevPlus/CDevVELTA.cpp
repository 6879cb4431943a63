#include "DevPlus/CDevVELTA.h"

#include "DevPlus/Facade.h"

using velta::callFacade;
using velta::result;

CDevVELTA* GetDevHandle(void* handle) {
    return velta::facadeOf<CDevVELTA>(handle);
}

namespace {

int VELTA_GetwayImpl(void* handle, char* request, char* response, unsigned int responseSize,
                     tagVELTA_INFO* info) {
    return callFacade(__func__, __LINE__, GetDevHandle(handle), &CDevVELTA::VELTA_Getway, request, response,
                      responseSize, info);
}

int DeviceLoopImpl(void* handle, char* buffer, unsigned int size) {
    return callFacade(__func__, __LINE__, GetDevHandle(handle), &CDevVELTA::DeviceLoop, buffer, size);
}

int ActiveDeviceImpl(void* handle, char* in, char* out, unsigned int outSize) {
    return callFacade(__func__, __LINE__, GetDevHandle(handle), &CDevVELTA::ActiveDevice, in, out, outSize);
}

constexpr VELTA_GatewayTable kTable = {VELTA_GetwayImpl, DeviceLoopImpl, ActiveDeviceImpl};

}  // namespace

void CDevVELTA::Bind(CDevBase* base) {
    base->AddImplement(kKey, this, &kTable);
}

int CDevVELTA::VELTA_Getway(char*, char*, unsigned int, tagVELTA_INFO*) {
    return result(VELTA_E_NOT_SUPPORTED);
}
int CDevVELTA::DeviceLoop(char*, unsigned int) {
    return result(VELTA_E_NOT_SUPPORTED);
}
int CDevVELTA::ActiveDevice(char*, char*, unsigned int) {
    return result(VELTA_E_NOT_SUPPORTED);
}
