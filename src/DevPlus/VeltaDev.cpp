#include "DevPlus/VeltaDev.h"

#include <velta/connect.h>
#include <velta/event.h>
#include <velta/gateway.h>

#include <new>

#include "DevPlus/PluginConfig.h"
#include "device/CVeltaDevice.h"
#include "manager/CVeltaDevMgr.h"

int VeltaDev_Init() {
    return CVeltaDevMgr::instance().init();
}

int VeltaDev_Uninit() {
    return CVeltaDevMgr::instance().unInit();
}

int VeltaDev_CreateInstance(CDevBase** instance) {
    *instance = new (std::nothrow) CVeltaDevice;
    return *instance != nullptr ? VELTA_OK : VELTA_REFUSED;
}

int VeltaDev_DestroyInstance(CDevBase* instance) {
    delete instance;
    return VELTA_OK;
}

int VeltaDev_QueryInterface(CDevBase*, const char*, CDevBase**) {
    return VELTA_OK;
}

const char** VeltaDev_GetAllInterfaceIkeys() {
    static const char* keys[] = {VELTA_KEY_CONNECT, VELTA_KEY_EVENT, VELTA_KEY_GATEWAY, nullptr};
    return keys;
}

const char* VeltaDev_GetFileVersion() {
    return "V1.0.0.0";
}

void* XPLUGIN_GetPluginInterface() {
    DEVPLUS_SetInterface(VeltaDev_Init, VeltaDev_Uninit, VeltaDev_CreateInstance, VeltaDev_DestroyInstance,
                         VeltaDev_QueryInterface, VeltaDev_GetAllInterfaceIkeys, VeltaDev_GetFileVersion);
    return DEVPLUS_GetPluginInterface();
}

int Plugin_SetConfig(const char* head, const char* msg) {
    return SetConfigProcess(head, msg);
}
