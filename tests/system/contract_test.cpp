// What a host relies on before any device is involved. Each case runs in a process of its own.
#include <dirent.h>
#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>
#include <veltasim/device.h>

#include <cstring>
#include <thread>

#include "plugin.h"

using namespace host;

namespace {

int threadCount() {
    std::thread([] {}).join();  // a sanitizer starts a thread of its own with the first one
    int count = 0;
    DIR* tasks = opendir("/proc/self/task");
    while (const dirent* entry = readdir(tasks))
        count += entry->d_name[0] != '.';
    closedir(tasks);
    return count;
}

TEST(Contract, lifecycle) {
    Library library;
    ASSERT_NE(library.record, nullptr);
    const int threads = threadCount();
    void* instance = nullptr;
    EXPECT_EQ(library.record->CreateInstance(&instance), VELTA_REFUSED);
    EXPECT_EQ(library.record->Uninit(), VELTA_REFUSED);
    EXPECT_STREQ(library.record->GetFileVersion(), "V1.0.0.0");
    const char** keys = library.record->GetAllInterfaceIkeys();
    EXPECT_STREQ(keys[0], "Device.IConnect_V2");
    EXPECT_STREQ(keys[1], "Device.IEvent");
    EXPECT_STREQ(keys[2], "Device.IVELTA");
    EXPECT_EQ(keys[3], nullptr);

    ASSERT_EQ(library.record->Init(), VELTA_OK);
    EXPECT_EQ(library.record->Init(), VELTA_REFUSED);
    {
        Session session(library);
        EXPECT_EQ(library.record->Uninit(), VELTA_REFUSED);
        void* table = nullptr;
        EXPECT_EQ(library.record->QueryInterface(session.instance, VELTA_KEY_STREAM, &table), VELTA_OK);
        EXPECT_NE(table, nullptr);
        EXPECT_EQ(library.record->QueryInterface(session.instance, "Device.IOther", &table),
                  VELTA_NO_SUCH_INTERFACE);
        EXPECT_EQ(table, nullptr);
        EXPECT_EQ(library.record->QueryInterface(session.instance, nullptr, &table), VELTA_NO_SUCH_INTERFACE);
        EXPECT_EQ(library.record->DestroyInstance(&library), VELTA_OK);
        EXPECT_EQ(library.record->DestroyInstance(nullptr), VELTA_OK);
    }
    EXPECT_EQ(library.record->Uninit(), VELTA_OK);
    EXPECT_EQ(threadCount(), threads);
}

TEST(Contract, recordsOfTheOtherKindsCannotCreate) {
    Library library;
    const auto getV2 = reinterpret_cast<xplugin_export_interface_t_v2* (*)()>(
        library.symbol("DEVPLUS_GetPluginInterface_V2"));
    const auto getV3 = reinterpret_cast<xplugin_export_interface_t_v3* (*)()>(
        library.symbol("DEVPLUS_GetPluginInterface_V3"));
    ASSERT_EQ(library.record->Init(), VELTA_OK);
    void* instance = nullptr;
    for (const char* type : {"VELTA", "", static_cast<const char*>(nullptr)}) {
        EXPECT_EQ(getV2()->CreateInstance_V2(type, &instance), VELTA_REFUSED);
        EXPECT_EQ(getV3()->CreateInstance_V2(type, &instance), VELTA_REFUSED);
    }
    EXPECT_EQ(getV3()->InitEx("again"), VELTA_REFUSED);
    EXPECT_EQ(getV2()->Uninit(), VELTA_OK);
}

TEST(Contract, canBeLoadedAgain) {
    const int threads = threadCount();
    for (int round = 0; round < 3; ++round) {
        Library library;
        ASSERT_EQ(library.record->Init(), VELTA_OK)
            << round;  // only a library that was really unloaded starts anew
        Session session(library);
        EXPECT_EQ(session.connectTo(9), 0U);
        session.destroy();
        EXPECT_EQ(library.record->Uninit(), VELTA_OK);
    }
    EXPECT_EQ(threadCount(), threads);
}

TEST(Contract, hostMayExitWithoutUninit) {
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "the leak check of a process whose threads still run at its end fails by itself";
#endif
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        static Library library;
        library.record->Init();
        static Session session(library);
        session.connectTo(9);
        session.instance = nullptr;  // left alive
        exit(7);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 7);
}

TEST(Contract, logGoesWhereTheLoaderWants) {
    Library library;
    using SetLevel = void (*)(int);
    using SetSink = void (*)(void (*)(int, const char*, const char*, void*), void*);
    std::vector<std::string> lines;
    reinterpret_cast<SetSink>(library.symbol("xlog_set_sink"))(
        [](int, const char* module, const char* line, void* user) {
            static_cast<std::vector<std::string>*>(user)->push_back(std::string(module) + " " + line);
        },
        &lines);
    library.setConfig("SetEventSub", "1");
    EXPECT_TRUE(lines.empty());  // below the threshold
    library.setConfig("no such head\n", "1");
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_THAT(lines[0], testing::HasSubstr("PLUGIN [SetConfigProcess("));
    EXPECT_THAT(lines[0], testing::HasSubstr("Not support cmd:no such head\\x0a!"));
    reinterpret_cast<SetLevel>(library.symbol("xlog_set_level"))(2);
    library.setConfig("SetEventSub", "1");
    EXPECT_GT(lines.size(), 1U);
    reinterpret_cast<SetSink>(library.symbol("xlog_set_sink"))(nullptr, nullptr);
}

TEST(Contract, credentialsAreNeverLogged) {
    veltasim::Device device({.user = "operator-0815", .password = "secret-4711"});
    device.start();
    Library library;
    std::string log;
    reinterpret_cast<void (*)(int)>(library.symbol("xlog_set_level"))(2);
    reinterpret_cast<void (*)(void (*)(int, const char*, const char*, void*), void*)>(
        library.symbol("xlog_set_sink"))(
        [](int, const char*, const char* line, void* user) { *static_cast<std::string*>(user) += line; },
        &log);
    ASSERT_EQ(library.record->Init(), VELTA_OK);
    {
        Session session(library);
        EXPECT_EQ(session.connectTo(device.port(), "operator-0815", "secret-4711"), 0U);
        session.request("GET", "/VELTA/System/deviceInfo?devIndex=1");
        session.request("GET", "/VELTA/Nothing?devIndex=1");
    }
    library.record->Uninit();
    EXPECT_THAT(log, testing::HasSubstr("/VELTA/Nothing"));
    EXPECT_THAT(log, testing::Not(testing::HasSubstr("secret-4711")));
}

}  // namespace
