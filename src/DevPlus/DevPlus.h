/* The plug-in frame: keeps whether the plug-in is started and which instances live, checks every call of the
 * host against that, and hands it on to the entries that a device family registers. Knows no device. */
#ifndef VELTA_DEVPLUS_DEVPLUS_H
#define VELTA_DEVPLUS_DEVPLUS_H

#include <velta/plugin.h>

class CDevBase;

#define VELTA_EXPORT __attribute__((visibility("default")))

/* What a device family registers. */
using DevPlusInit = int (*)();
using DevPlusInitEx = int (*)(const char* param);
using DevPlusUninit = int (*)();
using DevPlusCreateInstance = int (*)(CDevBase** instance);
using DevPlusCreateInstanceV2 = int (*)(const char* type, CDevBase** instance);
using DevPlusDestroyInstance = int (*)(CDevBase* instance);
using DevPlusQueryInterface = int (*)(CDevBase* instance, const char* key, CDevBase** interface);
using DevPlusGetAllInterfaceIkeys = const char** (*)();
using DevPlusGetFileVersion = const char* (*)();
using DevPlusGetPluginMapFkeys = int (*)(char (*keys)[256], int* count);

extern "C" {

/* Registers a device family. The first registration of a process wins, later ones are ignored. A null create,
 * getAllIkeys or getFileVersion aborts the process: such a family can't work. */
VELTA_EXPORT void DEVPLUS_SetInterface(DevPlusInit init, DevPlusUninit uninit,
                                       DevPlusCreateInstance pCreateInstance, DevPlusDestroyInstance destroy,
                                       DevPlusQueryInterface query,
                                       DevPlusGetAllInterfaceIkeys pGetAllInterfaceIkeys,
                                       DevPlusGetFileVersion pGetFileVersion);
VELTA_EXPORT void DEVPLUS_SetInterface_V2(DevPlusInit init, DevPlusUninit uninit,
                                          DevPlusCreateInstanceV2 pCreateInstance_v2,
                                          DevPlusDestroyInstance destroy,
                                          DevPlusGetAllInterfaceIkeys pGetAllInterfaceIkeys,
                                          DevPlusGetFileVersion pGetFileVersion,
                                          DevPlusGetPluginMapFkeys mapFkeys);
VELTA_EXPORT void DEVPLUS_SetInterface_V3(DevPlusInitEx initEx, DevPlusUninit uninit,
                                          DevPlusCreateInstanceV2 pCreateInstance_v2,
                                          DevPlusDestroyInstance destroy,
                                          DevPlusGetAllInterfaceIkeys pGetAllInterfaceIkeys,
                                          DevPlusGetFileVersion pGetFileVersion,
                                          DevPlusGetPluginMapFkeys mapFkeys);

/* The export record of a kind; null before any registration. Lives as long as the library is loaded. */
VELTA_EXPORT xplugin_export_interface_t* DEVPLUS_GetPluginInterface();
VELTA_EXPORT xplugin_export_interface_t_v2* DEVPLUS_GetPluginInterface_V2();
VELTA_EXPORT xplugin_export_interface_t_v3* DEVPLUS_GetPluginInterface_V3();

/* The members of the records; <velta/plugin.h> says what each does. */
VELTA_EXPORT int DevPlusPluginInit();
VELTA_EXPORT int DevPlusPluginInitEx(const char* param);
VELTA_EXPORT int DevPlusPluginUninit();
VELTA_EXPORT int DevPlusPluginCreateInstance(void** instance);
VELTA_EXPORT int DevPlusPluginCreateInstance_V2(const char* type, void** instance);
VELTA_EXPORT int DevPlusPluginDestroyInstance(void* instance);
VELTA_EXPORT int DevPlusPluginQueryInterface(void* instance, const char* key, void** table);
VELTA_EXPORT const char** DevPlusPluginGetAllInterfaceIkeys();
VELTA_EXPORT const char* DevPlusPluginGetFileVersion();
VELTA_EXPORT int DevPlusPluginGetPluginMapFkeys(char (*keys)[256], int* count);
}

#endif
