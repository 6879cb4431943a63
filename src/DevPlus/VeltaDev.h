/* What this plug-in registers with the frame, and the two entries that the host resolves by name. */
#ifndef VELTA_DEVPLUS_VELTADEV_H
#define VELTA_DEVPLUS_VELTADEV_H

#include "DevPlus/DevPlus.h"

extern "C" {

VELTA_EXPORT int VeltaDev_Init();
VELTA_EXPORT int VeltaDev_Uninit();
VELTA_EXPORT int VeltaDev_CreateInstance(CDevBase** instance);
VELTA_EXPORT int VeltaDev_DestroyInstance(CDevBase* instance);
VELTA_EXPORT int VeltaDev_QueryInterface(CDevBase* instance, const char* key, CDevBase** interface);
VELTA_EXPORT const char** VeltaDev_GetAllInterfaceIkeys();
VELTA_EXPORT const char* VeltaDev_GetFileVersion();

VELTA_EXPORT void* XPLUGIN_GetPluginInterface();
VELTA_EXPORT int Plugin_SetConfig(const char* head, const char* msg);
}

#endif
