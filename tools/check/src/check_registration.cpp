// How the plug-in, or another one, makes itself known to the frame.
#include <sys/wait.h>
#include <unistd.h>

#include <cstring>

#include "check.h"
#include "library.h"
#include "memory_file.h"

namespace check {
namespace {

using GetRecord = void** (*)();
constexpr const char* kGetRecord[] = {"DEVPLUS_GetPluginInterface", "DEVPLUS_GetPluginInterface_V2",
                                      "DEVPLUS_GetPluginInterface_V3"};

void noRecordBefore(Trial& trial) {
    const Library library(trial);
    for (const char* name : kGetRecord)
        trial.holds(std::string(name) + " gives null before anything was registered",
                    library.entry<GetRecord>(name)() == nullptr);
}

// What a host would register that came after the plug-in itself.
int neverInit() {
    return VELTA_REFUSED;
}
const char** noKeys() {
    return nullptr;
}
const char* otherVersion() {
    return "V9";
}

using Register = void (*)(void*, void*, void*, void*, void*, void*, void*);

template <typename Function>
void* address(Function function) {
    return reinterpret_cast<void*>(function);
}

void firstRegistration(Trial& trial) {
    const Library library(trial);
    const xplugin_export_interface_t& record = library.record();
    void* const init = address(neverInit);
    void* const list = address(noKeys);
    void* const version = address(otherVersion);
    library.entry<Register>("DEVPLUS_SetInterface")(init, init, init, init, init, list, version);
    library.entry<Register>("DEVPLUS_SetInterface_V2")(init, init, init, init, list, version, nullptr);
    library.entry<Register>("DEVPLUS_SetInterface_V3")(init, init, init, init, list, version, nullptr);
    trial.text("GetFileVersion", "V1.0.0.0", record.GetFileVersion());
    trial.holds("GetAllInterfaceIkeys still gives the plug-in's list",
                record.GetAllInterfaceIkeys() != nullptr);
    trial.code("Init", VELTA_OK, record.Init());
    trial.code("Uninit", VELTA_OK, record.Uninit());
}

// A registration without a mandatory entry, in a process of its own.
struct Omission {
    const char* function;
    bool hasCreate, hasKeys;
    const char* lastWords;
};
constexpr Omission kOmissions[] = {
    {"DEVPLUS_SetInterface", false, true, "__null != pCreateInstance'"},
    {"DEVPLUS_SetInterface", true, false, "__null != pGetAllInterfaceIkeys'"},
    {"DEVPLUS_SetInterface", true, true, "__null != pGetFileVersion'"},
    {"DEVPLUS_SetInterface_V2", false, true, "__null != pCreateInstance_v2'"},
    {"DEVPLUS_SetInterface_V2", true, false, "__null != pGetAllInterfaceIkeys'"},
    {"DEVPLUS_SetInterface_V2", true, true, "__null != pGetFileVersion'"},
    {"DEVPLUS_SetInterface_V3", false, true, "__null != pCreateInstance_v2'"},
    {"DEVPLUS_SetInterface_V3", true, false, "__null != pGetAllInterfaceIkeys'"},
    {"DEVPLUS_SetInterface_V3", true, true, "__null != pGetFileVersion'"},
};

void missingEntries(Trial& trial) {
    const Library library(trial);
    for (const Omission& row : kOmissions) {
        const auto set = library.entry<Register>(row.function);
        const bool isFirst = strcmp(row.function, "DEVPLUS_SetInterface") == 0;
        void* const create = row.hasCreate ? address(neverInit) : nullptr;
        void* const list = row.hasKeys ? address(noKeys) : nullptr;
        const MemoryFile output;
        const pid_t child = fork();
        if (child == 0) {
            dup2(output.fd(), STDERR_FILENO);
            if (isFirst)
                set(nullptr, nullptr, create, nullptr, nullptr, list, nullptr);
            else
                set(nullptr, nullptr, create, nullptr, list, nullptr, nullptr);
            _exit(0);
        }
        int status = 0;
        waitpid(child, &status, 0);
        const std::string what = std::string(row.function) + " without a mandatory entry";
        trial.holds(what + " aborts", WIFSIGNALED(status) && WTERMSIG(status) == SIGABRT);
        trial.contains(what + " says", row.lastWords, output.content());
        trial.contains(what + " says", "src/DevPlus/DevPlus", output.content());
    }
}

constexpr Check kChecks[] = {
    {"registration", "no-record-before", "there is no export record before the plug-in has registered itself",
     noRecordBefore},
    {"registration", "first-registration", "the first registration holds for the life of the process",
     firstRegistration},
    {"registration", "missing-entries", "a registration without a mandatory entry aborts and says which",
     missingEntries},
};

}  // namespace

std::span<const Check> registrationChecks() {
    return kChecks;
}

}  // namespace check
