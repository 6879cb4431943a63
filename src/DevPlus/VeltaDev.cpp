#include "DevPlus/VeltaDev.h"

#include <dlfcn.h>
#include <velta/connect.h>
#include <velta/event.h>
#include <velta/gateway.h>

#include <new>
#include <utility>

#include "DevPlus/PluginConfig.h"
#include "device/CVeltaDevice.h"
#include "manager/CVeltaDevMgr.h"

namespace {

// Between Init and Uninit the library holds itself loaded: a host that ends without Uninit, and drops the library
// while it does, must not take the code away from under threads that still run.
void* ownHandle = nullptr;

void holdLoaded() {
    Dl_info self;
    if (ownHandle == nullptr && dladdr(reinterpret_cast<void*>(&XPLUGIN_GetPluginInterface), &self) != 0) {
        ownHandle = dlopen(self.dli_fname, RTLD_NOW | RTLD_NOLOAD);
    }
}

void letGo() {
    if (void* const handle = std::exchange(ownHandle, nullptr)) dlclose(handle);
}

}  // namespace

int VeltaDev_Init() {
    const int result = CVeltaDevMgr::instance().init();
    if (result == VELTA_OK) holdLoaded();
    return result;
}

int VeltaDev_Uninit() {
    const int result = CVeltaDevMgr::instance().unInit();
    letGo();
    return result;
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
