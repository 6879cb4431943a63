#include "DevPlus/DevPlus.h"

#include <xlog/xlog.h>
#include <xpr/xpr.h>

#include <atomic>
#include <exception>
#include <set>

#include "DevPlus/CDevBase.h"

// Registration is checked in release builds too.
#undef NDEBUG
#include <assert.h>

namespace {

struct Entries {
    DevPlusInit init = nullptr;
    DevPlusInitEx initEx = nullptr;
    DevPlusUninit uninit = nullptr;
    DevPlusCreateInstance createInstance = nullptr;
    DevPlusCreateInstanceV2 createInstanceV2 = nullptr;
    DevPlusDestroyInstance destroyInstance = nullptr;
    DevPlusQueryInterface queryInterface = nullptr;  // kept for completeness: instances are asked directly
    DevPlusGetAllInterfaceIkeys getAllInterfaceIkeys = nullptr;
    DevPlusGetFileVersion getFileVersion = nullptr;
    DevPlusGetPluginMapFkeys getPluginMapFkeys = nullptr;
};

Entries entries;
std::atomic<bool> interfaceSet{false};
std::atomic<bool> initialised{false};

xpr::xpr_mutex instanceLock;
std::set<void*> instances XPR_GUARDED_BY(instanceLock);
// Instances whose destruction is under way. They count as alive until it is over, but can't be destroyed
// twice.
std::set<void*> dying XPR_GUARDED_BY(instanceLock);

#define DEVPLUS_REQUIRE(entry)                                                  \
    do {                                                                        \
        if ((entry) == nullptr)                                                 \
            __assert_fail("__null != " #entry, "src/DevPlus/DevPlus", __LINE__, \
                          __extension__ __PRETTY_FUNCTION__);                   \
    } while (false)

// Runs an entry of the device family and lets no exception out to the host.
template <class Entry, class... Arguments>
int callEntry(const char* name, Entry entry, Arguments... arguments) noexcept {
    if (entry == nullptr) return VELTA_OK;
    try {
        return entry(arguments...);
    } catch (const std::exception& error) {
        xlog_format(XLOG_ERROR, "PLUGIN", "[%s(%d)] %s: %s", __func__, __LINE__, name, error.what());
    } catch (...) {
        xlog_format(XLOG_ERROR, "PLUGIN", "[%s(%d)] %s: unknown exception", __func__, __LINE__, name);
    }
    return VELTA_REFUSED;
}

template <class Entry, class... Arguments>
int initialise(Entry entry, Arguments... arguments) noexcept {
    if (initialised) return VELTA_REFUSED;
    const int result = callEntry("Init", entry, arguments...);
    if (result == VELTA_OK) initialised = true;
    return result;
}

template <class Create, class... Arguments>
int createInstance(Create create, void** instance, Arguments... arguments) noexcept {
    if (create == nullptr || !initialised || instance == nullptr) return VELTA_REFUSED;
    CDevBase* created = nullptr;
    const int result = callEntry("CreateInstance", create, arguments..., &created);
    *instance = created;
    if (result != VELTA_OK) return result;
    try {
        const XPR_Guard guard(instanceLock);
        instances.insert(created);
    } catch (const std::exception&) {  // no memory for the entry: an instance nobody knows can't be destroyed
                                       // later
        callEntry("DestroyInstance", entries.destroyInstance, created);
        *instance = nullptr;
        return VELTA_REFUSED;
    }
    return VELTA_OK;
}

int deleteInstance(CDevBase* instance) {
    delete instance;
    return VELTA_OK;
}

// Moves a set's node, so that no memory is needed on the way.
bool move(void* instance, std::set<void*>& from, std::set<void*>& to) XPR_REQUIRES(instanceLock) {
    auto node = from.extract(instance);
    if (node.empty()) return false;
    to.insert(std::move(node));
    return true;
}

}  // namespace

void DEVPLUS_SetInterface(DevPlusInit init, DevPlusUninit uninit, DevPlusCreateInstance pCreateInstance,
                          DevPlusDestroyInstance destroy, DevPlusQueryInterface query,
                          DevPlusGetAllInterfaceIkeys pGetAllInterfaceIkeys,
                          DevPlusGetFileVersion pGetFileVersion) {
    if (interfaceSet) return;
    DEVPLUS_REQUIRE(pCreateInstance);
    DEVPLUS_REQUIRE(pGetAllInterfaceIkeys);
    DEVPLUS_REQUIRE(pGetFileVersion);
    entries.init = init;
    entries.uninit = uninit;
    entries.createInstance = pCreateInstance;
    entries.destroyInstance = destroy;
    entries.queryInterface = query;
    entries.getAllInterfaceIkeys = pGetAllInterfaceIkeys;
    entries.getFileVersion = pGetFileVersion;
    interfaceSet = true;
}

void DEVPLUS_SetInterface_V2(DevPlusInit init, DevPlusUninit uninit,
                             DevPlusCreateInstanceV2 pCreateInstance_v2, DevPlusDestroyInstance destroy,
                             DevPlusGetAllInterfaceIkeys pGetAllInterfaceIkeys,
                             DevPlusGetFileVersion pGetFileVersion, DevPlusGetPluginMapFkeys mapFkeys) {
    if (interfaceSet) return;
    DEVPLUS_SetInterface_V3(nullptr, uninit, pCreateInstance_v2, destroy, pGetAllInterfaceIkeys,
                            pGetFileVersion, mapFkeys);
    entries.init = init;
}

void DEVPLUS_SetInterface_V3(DevPlusInitEx initEx, DevPlusUninit uninit,
                             DevPlusCreateInstanceV2 pCreateInstance_v2, DevPlusDestroyInstance destroy,
                             DevPlusGetAllInterfaceIkeys pGetAllInterfaceIkeys,
                             DevPlusGetFileVersion pGetFileVersion, DevPlusGetPluginMapFkeys mapFkeys) {
    if (interfaceSet) return;
    DEVPLUS_REQUIRE(pCreateInstance_v2);
    DEVPLUS_REQUIRE(pGetAllInterfaceIkeys);
    DEVPLUS_REQUIRE(pGetFileVersion);
    entries.init = nullptr;
    entries.initEx = initEx;
    entries.uninit = uninit;
    entries.createInstanceV2 = pCreateInstance_v2;
    entries.destroyInstance = destroy;
    entries.getAllInterfaceIkeys = pGetAllInterfaceIkeys;
    entries.getFileVersion = pGetFileVersion;
    entries.getPluginMapFkeys = mapFkeys;
    interfaceSet = true;
}

xplugin_export_interface_t* DEVPLUS_GetPluginInterface() {
    static xplugin_export_interface_t record = {
        DevPlusPluginInit,           DevPlusPluginUninit,
        DevPlusPluginCreateInstance, DevPlusPluginDestroyInstance,
        DevPlusPluginQueryInterface, DevPlusPluginGetAllInterfaceIkeys,
        DevPlusPluginGetFileVersion,
    };
    return interfaceSet ? &record : nullptr;
}

xplugin_export_interface_t_v2* DEVPLUS_GetPluginInterface_V2() {
    static xplugin_export_interface_t_v2 record = {
        DevPlusPluginInit,
        DevPlusPluginUninit,
        DevPlusPluginCreateInstance_V2,
        DevPlusPluginDestroyInstance,
        DevPlusPluginQueryInterface,
        DevPlusPluginGetAllInterfaceIkeys,
        DevPlusPluginGetFileVersion,
        DevPlusPluginGetPluginMapFkeys,
    };
    return interfaceSet ? &record : nullptr;
}

xplugin_export_interface_t_v3* DEVPLUS_GetPluginInterface_V3() {
    static xplugin_export_interface_t_v3 record = {
        DevPlusPluginInitEx,
        DevPlusPluginUninit,
        DevPlusPluginCreateInstance_V2,
        DevPlusPluginDestroyInstance,
        DevPlusPluginQueryInterface,
        DevPlusPluginGetAllInterfaceIkeys,
        DevPlusPluginGetFileVersion,
        DevPlusPluginGetPluginMapFkeys,
    };
    return interfaceSet ? &record : nullptr;
}

int DevPlusPluginInit() {
    return initialise(entries.init);
}

int DevPlusPluginInitEx(const char* param) {
    return initialise(entries.initEx, param);
}

int DevPlusPluginUninit() {
    if (!initialised) return VELTA_REFUSED;
    {
        const XPR_Guard guard(instanceLock);
        if (!instances.empty() || !dying.empty()) return VELTA_REFUSED;
    }
    const int result = callEntry("Uninit", entries.uninit);
    if (result == VELTA_OK) initialised = false;
    return result;
}

int DevPlusPluginCreateInstance(void** instance) {
    return createInstance(entries.createInstance, instance);
}

int DevPlusPluginCreateInstance_V2(const char* type, void** instance) {
    return createInstance(entries.createInstanceV2, instance, type);
}

// The instance is destroyed without the lock: it waits for an event delivery that is under way, and the
// host's callback may create and destroy other instances meanwhile.
int DevPlusPluginDestroyInstance(void* instance) {
    if (!initialised) return VELTA_REFUSED;
    if (instance == nullptr) return VELTA_OK;
    {
        const XPR_Guard guard(instanceLock);
        if (!move(instance, instances, dying)) return VELTA_OK;
    }
    const DevPlusDestroyInstance destroy =
        entries.destroyInstance != nullptr ? entries.destroyInstance : deleteInstance;
    const int result = callEntry("DestroyInstance", destroy, static_cast<CDevBase*>(instance));
    const XPR_Guard guard(instanceLock);
    if (result == VELTA_OK) {
        dying.erase(instance);
    } else {
        move(instance, dying, instances);
    }
    return result;
}

int DevPlusPluginQueryInterface(void* instance, const char* key, void** table) {
    if (!initialised) return VELTA_REFUSED;
    if (instance == nullptr) return VELTA_OK;
    if (table == nullptr) return VELTA_REFUSED;
    *table = static_cast<CDevBase*>(instance)->GetInterface(key);
    return *table == nullptr ? VELTA_NO_SUCH_INTERFACE : VELTA_OK;
}

const char** DevPlusPluginGetAllInterfaceIkeys() {
    return entries.getAllInterfaceIkeys == nullptr ? nullptr : entries.getAllInterfaceIkeys();
}

const char* DevPlusPluginGetFileVersion() {
    return entries.getFileVersion == nullptr ? nullptr : entries.getFileVersion();
}

// The guard looks at another entry than the one it calls; a family without a list of map keys answers "none".
int DevPlusPluginGetPluginMapFkeys(char (*keys)[256], int* count) {
    if (entries.getFileVersion == nullptr) return VELTA_OK;
    return callEntry("GetPluginMapFkeys", entries.getPluginMapFkeys, keys, count);
}
