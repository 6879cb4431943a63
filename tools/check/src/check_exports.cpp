// Names that a host resolves, and the records of functions behind them. The members of records are reached by their
// number, not through the contract's headers: that they stand where they stand is what is checked.
#include "check.h"
#include "library.h"

namespace check {
namespace {

// Where members stand in the records of seven and of eight.
constexpr size_t kInit = 0;
constexpr size_t kUninit = 1;
constexpr size_t kCreate = 2;
constexpr size_t kDestroy = 3;
constexpr size_t kQuery = 4;
constexpr size_t kKeys = 5;
constexpr size_t kVersion = 6;
constexpr size_t kMembers = 7;
constexpr size_t kMembersSince2 = 8;

using GetRecord = void** (*)();
template <typename Function>
Function member(void** record, size_t index) {
    return reinterpret_cast<Function>(record[index]);
}

void mustHaveMembers(Trial& trial, void** record, size_t count) {
    trial.must(trial.holds("there is a record", record != nullptr));
    for (size_t i = 0; i < count; ++i)
        trial.must(trial.holds("member " + std::to_string(i + 1) + " is a function", record[i] != nullptr));
}

void hostEntries(Trial& trial) {
    const Library library(trial);
    for (const char* name : {"XPLUGIN_GetPluginInterface", "Plugin_SetConfig"})
        trial.holds(std::string("the library exports ") + name, library.find(name) != nullptr);
}

void frameEntries(Trial& trial) {
    const Library library(trial);
    for (const char* name : {"DEVPLUS_SetInterface",
                             "DEVPLUS_SetInterface_V2",
                             "DEVPLUS_SetInterface_V3",
                             "DEVPLUS_GetPluginInterface",
                             "DEVPLUS_GetPluginInterface_V2",
                             "DEVPLUS_GetPluginInterface_V3",
                             "DevPlusPluginInit",
                             "DevPlusPluginInitEx",
                             "DevPlusPluginUninit",
                             "DevPlusPluginCreateInstance",
                             "DevPlusPluginCreateInstance_V2",
                             "DevPlusPluginDestroyInstance",
                             "DevPlusPluginQueryInterface",
                             "DevPlusPluginGetAllInterfaceIkeys",
                             "DevPlusPluginGetFileVersion",
                             "DevPlusPluginGetPluginMapFkeys",
                             "VeltaDev_Init",
                             "VeltaDev_Uninit",
                             "VeltaDev_CreateInstance",
                             "VeltaDev_DestroyInstance",
                             "VeltaDev_QueryInterface",
                             "VeltaDev_GetAllInterfaceIkeys",
                             "VeltaDev_GetFileVersion"})
        trial.holds(std::string("the library exports ") + name, library.find(name) != nullptr);
}

// The members from the second to the seventh do what their place says, on a library that was started.
void driveMembers(Trial& trial, void** record, void* instance) {
    void* table = nullptr;
    if (instance != nullptr) {
        const auto query = member<VELTA_QueryInterfaceFunction>(record, kQuery);
        trial.code("member 5, QueryInterface", VELTA_OK, query(instance, "Device.IEvent", &table));
        trial.holds("member 5, QueryInterface, gives a table", table != nullptr);
    }
    trial.text("first key of member 6, GetAllInterfaceIkeys", "Device.IConnect_V2",
               member<VELTA_GetAllInterfaceIkeysFunction>(record, kKeys)()[0]);
    trial.text("member 7, GetFileVersion", "V1.0.0.0",
               member<VELTA_GetFileVersionFunction>(record, kVersion)());
    trial.code("member 4, DestroyInstance", VELTA_OK,
               member<VELTA_DestroyInstanceFunction>(record, kDestroy)(instance));
    trial.code("member 2, Uninit", VELTA_OK, member<VELTA_UninitFunction>(record, kUninit)());
}

void record(Trial& trial) {
    const Library library(trial);
    const auto getRecord = library.entry<GetRecord>("XPLUGIN_GetPluginInterface");
    void** const record = getRecord();
    mustHaveMembers(trial, record, kMembers);
    trial.holds("a second call gives the same record", getRecord() == record);
    void* instance = nullptr;
    const auto create = member<VELTA_CreateInstanceFunction>(record, kCreate);
    trial.code("member 3, CreateInstance, before Init", VELTA_REFUSED, create(&instance));
    trial.must(trial.code("member 1, Init", VELTA_OK, member<VELTA_InitFunction>(record, kInit)()));
    trial.must(trial.code("member 3, CreateInstance", VELTA_OK, create(&instance)));
    driveMembers(trial, record, instance);
}

// The records of eight: as the first, but CreateInstance_V2 in the third place, which this plug-in refuses.
void driveLaterRecord(Trial& trial, const Library& library, const char* getter, bool initTakesParameter) {
    const xplugin_export_interface_t& first = library.record();
    void** const record = library.entry<GetRecord>(getter)();
    mustHaveMembers(trial, record, kMembersSince2);
    if (initTakesParameter) {
        trial.must(trial.code("Init", VELTA_OK, first.Init()));
        trial.code("member 1, InitEx, after Init", VELTA_REFUSED,
                   member<VELTA_InitExFunction>(record, kInit)("parameter"));
    } else {
        trial.must(trial.code("member 1, Init", VELTA_OK, member<VELTA_InitFunction>(record, kInit)()));
        trial.code("member 1, Init, once more", VELTA_REFUSED, member<VELTA_InitFunction>(record, kInit)());
    }
    void* instance = nullptr;
    for (const char* type : {"", "VELTA", "Device"})
        trial.code("member 3, CreateInstance_V2", VELTA_REFUSED,
                   member<VELTA_CreateInstanceV2Function>(record, kCreate)(type, &instance));
    trial.must(trial.code("CreateInstance", VELTA_OK, first.CreateInstance(&instance)));
    driveMembers(trial, record, instance);
}

void recordV2(Trial& trial) {
    const Library library(trial);
    driveLaterRecord(trial, library, "DEVPLUS_GetPluginInterface_V2", false);
}

void recordV3(Trial& trial) {
    const Library library(trial);
    driveLaterRecord(trial, library, "DEVPLUS_GetPluginInterface_V3", true);
}

void keys(Trial& trial) {
    const Library library(trial);
    const char** const keys = library.record().GetAllInterfaceIkeys();
    trial.must(trial.holds("there is a list", keys != nullptr));
    size_t count = 0;
    for (const char* expected : {"Device.IConnect_V2", "Device.IEvent", "Device.IVELTA"}) {
        trial.must(trial.holds(std::string("the list goes on to ") + expected, keys[count] != nullptr));
        trial.text("key " + std::to_string(count + 1), expected, keys[count]);
        ++count;
    }
    trial.holds("the list ends with null after three keys", keys[count] == nullptr);
}

constexpr Check kChecks[] = {
    {"exports", "host-entries", "the two entries for hosts stand under their plain names", hostEntries},
    {"exports", "frame-entries", "the entries of the frame and of the plug-in stand under their plain names",
     frameEntries},
    {"exports", "record", "the record has seven members, each in its place", record},
    {"exports", "record-v2", "the second record has eight members, CreateInstance_V2 refuses every type",
     recordV2},
    {"exports", "record-v3", "the third record has eight members and begins with InitEx", recordV3},
    {"exports", "keys", "the list of keys names three interfaces and ends with null", keys},
};

}  // namespace

std::span<const Check> exportChecks() {
    return kChecks;
}

}  // namespace check
