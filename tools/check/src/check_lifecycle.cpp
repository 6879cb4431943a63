// Starting, stopping, instances: what is refused in which state.
#include <atomic>
#include <filesystem>
#include <iterator>
#include <thread>
#include <vector>

#include "check.h"
#include "library.h"

namespace check {
namespace {

void* const kUntouched = reinterpret_cast<void*>(0x5A5A5A58);

void beforeInit(Trial& trial) {
    const Library library(trial);
    const xplugin_export_interface_t& record = library.record();
    void* place = kUntouched;
    trial.code("CreateInstance", VELTA_REFUSED, record.CreateInstance(&place));
    trial.code("DestroyInstance of null", VELTA_REFUSED, record.DestroyInstance(nullptr));
    trial.code("QueryInterface of a null instance", VELTA_REFUSED,
               record.QueryInterface(nullptr, "Device.IEvent", &place));
    trial.code("Uninit", VELTA_REFUSED, record.Uninit());
    trial.text("GetFileVersion", "V1.0.0.0", record.GetFileVersion());
    trial.holds("GetAllInterfaceIkeys gives the list", record.GetAllInterfaceIkeys() != nullptr);
}

void initTwice(Trial& trial) {
    Plugin plugin(trial);
    trial.code("second Init", VELTA_REFUSED, plugin.record().Init());
    void* instance = nullptr;
    trial.code("CreateInstance after it", VELTA_OK, plugin.record().CreateInstance(&instance));
    trial.code("DestroyInstance", VELTA_OK, plugin.record().DestroyInstance(instance));
    trial.code("Uninit", VELTA_OK, plugin.stop());
}

void uninitWithInstance(Trial& trial) {
    Plugin plugin(trial);
    Session session(trial, plugin);
    trial.code("Uninit with an instance", VELTA_REFUSED, plugin.record().Uninit());
    trial.number("status of the session after it", VELTA_STATUS_UNKNOWN, session.status());
    trial.code("DestroyInstance", VELTA_OK, session.destroy());
    trial.code("Uninit without one", VELTA_OK, plugin.stop());
}

void uninitTwice(Trial& trial) {
    Plugin plugin(trial);
    trial.code("Uninit", VELTA_OK, plugin.stop());
    trial.code("second Uninit", VELTA_REFUSED, plugin.record().Uninit());
    void* instance = kUntouched;
    trial.code("CreateInstance after Uninit", VELTA_REFUSED, plugin.record().CreateInstance(&instance));
}

void destroyUnknown(Trial& trial) {
    Plugin plugin(trial);
    Session session(trial, plugin);
    char stranger[256] = {};
    trial.code("DestroyInstance of null", VELTA_OK, plugin.record().DestroyInstance(nullptr));
    trial.code("DestroyInstance of an unknown handle", VELTA_OK, plugin.record().DestroyInstance(stranger));
    void* const handle = session.instance();
    trial.code("DestroyInstance", VELTA_OK, session.destroy());
    trial.code("DestroyInstance once more", VELTA_OK, plugin.record().DestroyInstance(handle));
    trial.code("Uninit", VELTA_OK, plugin.stop());
}

void queryKeys(Trial& trial) {
    const Plugin plugin(trial);
    const Session one(trial, plugin);
    const Session other(trial, plugin);
    for (const char* key : {"Device.IConnect_V2", "Device.IEvent", "Device.IVELTA", "Device.IMediaStream"}) {
        void* first = nullptr;
        void* second = nullptr;
        const std::string what = std::string("QueryInterface of \"") + key + "\"";
        trial.code(what, VELTA_OK, plugin.record().QueryInterface(one.instance(), key, &first));
        trial.code(what, VELTA_OK, plugin.record().QueryInterface(other.instance(), key, &second));
        trial.holds(what + " gives a table", first != nullptr);
        trial.holds(what + " gives every instance the same table", first == second);
    }
}

void queryUnknown(Trial& trial) {
    const Plugin plugin(trial);
    const Session session(trial, plugin);
    for (const char* key : {"Device.IUnknown", "", "device.ievent", "Device.IEvent ", " Device.IEvent",
                            "Device.IEven", "Device.IConnect", "Device.IEvent\n"}) {
        void* table = kUntouched;
        const std::string what = "QueryInterface of " + shown(key);
        trial.code(what, static_cast<uint32_t>(VELTA_NO_SUCH_INTERFACE),
                   plugin.record().QueryInterface(session.instance(), key, &table));
        trial.holds(what + " leaves null in *table", table == nullptr);
    }
}

void queryNullInstance(Trial& trial) {
    const Plugin plugin(trial);
    for (const char* key : {"Device.IEvent", "Device.IUnknown"}) {
        void* table = kUntouched;
        trial.code("QueryInterface of a null instance", VELTA_OK,
                   plugin.record().QueryInterface(nullptr, key, &table));
        trial.holds("*table is untouched", table == kUntouched);
    }
}

void nullPlaces(Trial& trial) {
    const Plugin plugin(trial);
    const Session session(trial, plugin);
    trial.code("CreateInstance without a place for the handle", VELTA_REFUSED,
               plugin.record().CreateInstance(nullptr));
    trial.code("QueryInterface without a place for the table", VELTA_REFUSED,
               plugin.record().QueryInterface(session.instance(), "Device.IEvent", nullptr));
    void* table = kUntouched;
    trial.code("QueryInterface of a null key", static_cast<uint32_t>(VELTA_NO_SUCH_INTERFACE),
               plugin.record().QueryInterface(session.instance(), nullptr, &table));
    trial.holds("*table is null then", table == nullptr);
}

void concurrentInstances(Trial& trial) {
    constexpr int kThreads = 8;
    constexpr int kRounds = 100;
    Plugin plugin(trial);
    const xplugin_export_interface_t& record = plugin.record();
    std::atomic<int> failures{0};
    std::vector<std::jthread> threads;
    threads.reserve(kThreads);
    for (int i = 0; i < kThreads; ++i)
        threads.emplace_back([&] {
            for (int round = 0; round < kRounds; ++round) {
                void* instance = nullptr;
                void* table = nullptr;
                const bool isGood = record.CreateInstance(&instance) == VELTA_OK &&
                                    record.QueryInterface(instance, "Device.IVELTA", &table) == VELTA_OK &&
                                    table != nullptr && record.DestroyInstance(instance) == VELTA_OK;
                if (!isGood) ++failures;
            }
        });
    threads.clear();
    trial.number("failed rounds of create, query and destroy", 0, failures.load());
    trial.code("Uninit", VELTA_OK, plugin.stop());
}

long threadCount() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/task"), {});
}

void threadsEnd(Trial& trial) {
    std::thread([] {}).join();  // a sanitizer starts a thread of its own together with the first one
    const long before = threadCount();
    {
        Plugin plugin(trial);
        const Session one(trial, plugin);
        const Session other(trial, plugin);
        trial.holds("the plug-in runs threads of its own", threadCount() > before);
    }
    // A thread that has been waited for stays in the list for a moment.
    trial.becomes("no thread is left after Uninit", [&] { return threadCount() <= before; });
}

constexpr Check kChecks[] = {
    {"lifecycle", "before-init", "before Init all but the version and the keys is refused with -1",
     beforeInit},
    {"lifecycle", "init-twice", "a second Init is refused with -1 and changes nothing", initTwice},
    {"lifecycle", "uninit-with-instance", "Uninit is refused with -1 while an instance is alive",
     uninitWithInstance},
    {"lifecycle", "uninit-twice", "after Uninit everything is refused with -1 again", uninitTwice},
    {"lifecycle", "destroy-unknown", "destroying null, a stranger, or twice is 0 and destroys nothing",
     destroyUnknown},
    {"lifecycle", "query-keys", "every instance answers the four keys, with the same tables", queryKeys},
    {"lifecycle", "query-unknown", "an unknown key gives -2 and a null table; keys are compared exactly",
     queryUnknown},
    {"lifecycle", "query-null-instance", "a null instance gives 0 and leaves *table as it is",
     queryNullInstance},
    {"lifecycle", "null-places", "a null place for a result is refused, a null key is an unknown one",
     nullPlaces},
    {"lifecycle", "concurrent-instances", "instances come and go on several threads at once",
     concurrentInstances},
    {"lifecycle", "threads-end", "Uninit ends the plug-in's threads", threadsEnd},
};

}  // namespace

std::span<const Check> lifecycleChecks() {
    return kChecks;
}

}  // namespace check
