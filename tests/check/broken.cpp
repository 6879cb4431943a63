/* The library under another name, broken in the way that BROKEN names: everything goes through to the real one, but for
   what stands under the variant. */
#include <dlfcn.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>

#include <velta/velta.h>

#define RESULT 1 /* an unknown key gives -1, and an export is missing */
#define RECORD \
    2 /* the size in the event record is wrong, and the port stands in bytes that ought to be zero */
#define CRASH 3 /* an unknown key is the end */
#define HANG 4  /* an unknown key takes for ever */

namespace {

void* real(const char* name) {
    static void* const library = dlopen(REAL_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    return dlsym(library, name);
}

#if BROKEN == RECORD
constexpr size_t kPortAt = 10760;
constexpr size_t kReservedAt = 10796;
VELTA_EventCallBack hostCallback;

void onEvent(void* instance, char* source, tagEVENT_BASE_INFO* base, tagEVENT_EXT_INFO* ext, void* user) {
    alignas(8) char record[sizeof *base];
    memcpy(record, base, sizeof record);
    record[0]--;
    memcpy(record + kReservedAt, record + kPortAt, 4);
    memset(record + kPortAt, 0, 4);
    hostCallback(instance, source, reinterpret_cast<tagEVENT_BASE_INFO*>(record), ext, user);
}

VELTA_EventTable realEvents;

/* The checker uses one callback function for all its sessions. */
int setEventCallBack(void* instance, VELTA_EventCallBack callback, void* user) {
    if (callback != nullptr) hostCallback = callback;
    return realEvents.SetEventCallBack(instance, callback != nullptr ? onEvent : nullptr, user);
}
#endif

const xplugin_export_interface_t* realRecord() {
    const auto get = reinterpret_cast<VELTA_GetPluginInterfaceFunction>(real("XPLUGIN_GetPluginInterface"));
    return static_cast<const xplugin_export_interface_t*>(get());
}

int query(void* instance, const char* key, void** table) {
    int result = realRecord()->QueryInterface(instance, key, table);
#if BROKEN == RESULT
    if (result == VELTA_NO_SUCH_INTERFACE) result = VELTA_REFUSED;
#elif BROKEN == RECORD
    if (table != nullptr && result == VELTA_OK && key != nullptr && strcmp(key, VELTA_KEY_EVENT) == 0 &&
        instance) {
        realEvents = *static_cast<VELTA_EventTable*>(*table);
        static VELTA_EventTable events = realEvents;
        events.SetEventCallBack = setEventCallBack;
        *table = &events;
    }
#elif BROKEN == CRASH
    if (result == VELTA_NO_SUCH_INTERFACE) abort();
#else
    if (result == VELTA_NO_SUCH_INTERFACE) {
        for (;;)
            pause();
    }
#endif
    return result;
}

}  // namespace

/* As many arguments as the longest of them has; the shorter ones do not look at the rest. */
using Word = void*;
using Any = Word (*)(Word, Word, Word, Word, Word, Word, Word);
#define FORWARD(name)                                                                                   \
    extern "C" __attribute__((visibility("default"))) Word name(Word a, Word b, Word c, Word d, Word e, \
                                                                Word f, Word g) {                       \
        return reinterpret_cast<Any>(real(#name))(a, b, c, d, e, f, g);                                 \
    }
FORWARD(Plugin_SetConfig)
FORWARD(DEVPLUS_SetInterface)
FORWARD(DEVPLUS_SetInterface_V2)
FORWARD(DEVPLUS_SetInterface_V3)
FORWARD(DEVPLUS_GetPluginInterface)
FORWARD(DEVPLUS_GetPluginInterface_V2)
#if BROKEN != RESULT
FORWARD(DEVPLUS_GetPluginInterface_V3)
#endif
FORWARD(DevPlusPluginInit)
FORWARD(DevPlusPluginInitEx)
FORWARD(DevPlusPluginUninit)
FORWARD(DevPlusPluginCreateInstance)
FORWARD(DevPlusPluginCreateInstance_V2)
FORWARD(DevPlusPluginDestroyInstance)
FORWARD(DevPlusPluginQueryInterface)
FORWARD(DevPlusPluginGetAllInterfaceIkeys)
FORWARD(DevPlusPluginGetFileVersion)
FORWARD(DevPlusPluginGetPluginMapFkeys)
FORWARD(VeltaDev_Init)
FORWARD(VeltaDev_Uninit)
FORWARD(VeltaDev_CreateInstance)
FORWARD(VeltaDev_DestroyInstance)
FORWARD(VeltaDev_QueryInterface)
FORWARD(VeltaDev_GetAllInterfaceIkeys)
FORWARD(VeltaDev_GetFileVersion)

extern "C" __attribute__((visibility("default"))) void* XPLUGIN_GetPluginInterface() {
    static xplugin_export_interface_t record = *realRecord();
    record.QueryInterface = query;
    return &record;
}
