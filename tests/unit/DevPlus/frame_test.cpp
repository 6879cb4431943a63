// The frame with a device family of its own. Each case runs in a process of its own: a registration is for
// good.
#include <gtest/gtest.h>
#include <velta/result.h>

#include "DevPlus/CDevBase.h"
#include "DevPlus/DevPlus.h"

namespace {

int initResult = 0;
int initCalls = 0;
int createResult = 0;
int destroyResult = 0;
int destroyed = 0;

int init() {
    return ++initCalls, initResult;
}
int initEx(const char*) {
    return ++initCalls, initResult;
}
int uninit() {
    return 0;
}
int create(CDevBase** out) {
    return *out = new CDevBase, createResult;
}
int createV2(const char* type, CDevBase** out) {
    return type == nullptr ? -7 : create(out);
}
int destroy(CDevBase* instance) {
    if (destroyResult == 0) delete instance;
    return ++destroyed, destroyResult;
}
const char** keys() {
    static const char* list[] = {"Some.Interface", nullptr};
    return list;
}
const char* version() {
    return "1";
}

void registerFamily() {
    DEVPLUS_SetInterface(init, uninit, create, destroy, nullptr, keys, version);
}

TEST(Frame, countsItsInstances) {
    registerFamily();
    auto* record = DEVPLUS_GetPluginInterface();
    initResult = 5;
    EXPECT_EQ(record->Init(), 5);
    initResult = 0;
    EXPECT_EQ(record->Init(), 0);
    EXPECT_EQ(record->Init(), -1);
    EXPECT_EQ(initCalls, 2);

    EXPECT_EQ(record->CreateInstance(nullptr), -1);
    void* instance = nullptr;
    EXPECT_EQ(record->CreateInstance(&instance), 0);
    EXPECT_EQ(record->Uninit(), -1);
    int stranger = 0;
    EXPECT_EQ(record->DestroyInstance(&stranger), 0);
    EXPECT_EQ(destroyed, 0);
    destroyResult = 9;
    EXPECT_EQ(record->DestroyInstance(instance), 9);
    EXPECT_EQ(record->Uninit(), -1);  // what could not be destroyed is alive
    destroyResult = 0;
    EXPECT_EQ(record->DestroyInstance(instance), 0);
    EXPECT_EQ(record->DestroyInstance(instance), 0);
    EXPECT_EQ(destroyed, 2);
    EXPECT_EQ(record->Uninit(), 0);
    EXPECT_EQ(record->Uninit(), -1);
}

TEST(Frame, failedCreateLeavesNothing) {
    registerFamily();
    auto* record = DEVPLUS_GetPluginInterface();
    ASSERT_EQ(record->Init(), 0);
    createResult = 3;
    void* instance = nullptr;
    EXPECT_EQ(record->CreateInstance(&instance), 3);
    EXPECT_EQ(record->DestroyInstance(instance), 0);
    EXPECT_EQ(destroyed, 0);
    EXPECT_EQ(record->Uninit(), 0);
    delete static_cast<CDevBase*>(instance);
}

TEST(Frame, firstRegistrationWins) {
    EXPECT_EQ(DevPlusPluginGetAllInterfaceIkeys(), nullptr);
    EXPECT_EQ(DevPlusPluginGetFileVersion(), nullptr);
    EXPECT_EQ(DevPlusPluginGetPluginMapFkeys(nullptr, nullptr), 0);
    DEVPLUS_SetInterface_V3(initEx, uninit, createV2, nullptr, keys, version, nullptr);
    registerFamily();
    auto* record = DEVPLUS_GetPluginInterface_V3();
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(record->InitEx("x"), 0);
    void* instance = nullptr;
    EXPECT_EQ(DevPlusPluginCreateInstance(&instance), -1);
    EXPECT_EQ(DevPlusPluginGetPluginMapFkeys(nullptr, nullptr), 0);
    EXPECT_EQ(record->CreateInstance_V2(nullptr, &instance), -7);
    EXPECT_EQ(record->CreateInstance_V2("type", &instance), 0);
    EXPECT_EQ(record->DestroyInstance(instance),
              0);  // deleted by the frame: the family registered no entry for it
    EXPECT_EQ(destroyed, 0);
}

TEST(Frame, V2RegistrationHasNoInitEx) {
    DEVPLUS_SetInterface_V2(init, uninit, createV2, destroy, keys, version, nullptr);
    EXPECT_EQ(DEVPLUS_GetPluginInterface_V2()->Init(), 0);
    EXPECT_EQ(initCalls, 1);
}

}  // namespace
