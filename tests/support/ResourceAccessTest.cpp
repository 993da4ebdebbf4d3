#include "src/support/ResourceAccess.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <string>

#include "src/support/DLLAccess.h"
#include "tests/support/TemporaryFolder.h"

namespace tdkviz {
namespace {

TEST(ResourceAccess, StartsLateAndResolvesTags) {
    const TemporaryFolder folder;
    GetDLLAccessPath()->SetPath(DLLKind::Common, folder.Path().c_str());
    const auto module = reinterpret_cast<HMODULE>(uintptr_t{0x1000});
    char text[32] = "untouched";
    SetResourceTag(0);
    StartResourceAccess();
    RegisterResourceModule(module, kAddOnResourceTag);
    EXPECT_EQ(LoadResourceString(1, text, sizeof text), 0);
    EXPECT_EQ(LoadResourceBitmap(1), nullptr);
    EXPECT_EQ(GetResourceInstance(1, 2), nullptr);
    EXPECT_STREQ(text, "untouched");

    const std::string copy = folder.File("nqrs3260.so");
    std::filesystem::copy_file(TestLibrary("ResourceManager.tkv"), copy);
    DLLAccess spy;
    ASSERT_EQ(spy.Open(copy.c_str(), DLLKind::NotDef), kDLLNoError);
    const auto lastCall = reinterpret_cast<const char* (*)()>(spy.GetSymbol("LastCall"));
    EXPECT_GT(LoadResourceString(1, text, sizeof text), 0);
    EXPECT_STREQ(text, "text 1") << "no tag yet";
    EXPECT_STREQ(lastCall(), "AddModule 0x1000 1615") << "the module that waited";

    SetResourceTag(kAddOnResourceTag);
    const struct {
        uint32_t id;
        uint32_t sent;
    } cases[] = {{1, 1615u << 16 | 1}, {0x64F0066, 0x64F0066}, {0xFFFF0007, 7}, {0x10002, 0x10002}};
    for (const auto& c : cases) {
        LoadResourceBitmap(c.id);
        EXPECT_EQ(lastCall(), "LoadBitmap " + std::to_string(c.sent));
    }
    GetResourceInstance(273, 2);
    EXPECT_STREQ(lastCall(), "GetResourceInstance 273 2");
    StopResourceAccess();
    EXPECT_STREQ(lastCall(), "RemoveModule 0x1000");
    StopResourceAccess();
}

TEST(ResourceAccess, TakesTheHostsLibraryBeforeTheOneBesideTheProgram) {
    namespace fs = std::filesystem;
    const TemporaryFolder folder;
    GetDLLAccessPath()->SetPath(DLLKind::Common, folder.Path().c_str());
    const std::string hosts = folder.File("nqrs3260.so");
    const std::string beside = fs::canonical("/proc/self/exe").parent_path() / "nqrs3260.so";
    // Which library answers, tried twice.
    const auto answers = [&](const std::string& file) {
        DLLAccess spy;
        spy.Open(file.c_str(), DLLKind::NotDef);
        const auto lastCall = reinterpret_cast<const char* (*)()>(spy.GetSymbol("LastCall"));
        bool told = true;
        for (const uint32_t id : {0x10007u, 0x10008u}) {
            LoadResourceBitmap(id);
            told = told && lastCall && lastCall() == "LoadBitmap " + std::to_string(id);
        }
        StopResourceAccess();
        return told;
    };
    EXPECT_FALSE(answers(hosts));
    fs::copy_file(TestLibrary("ResourceManager.tkv"), beside);
    EXPECT_TRUE(answers(beside));
    fs::copy_file(TestLibrary("NoExport.tkv"), hosts);
    EXPECT_FALSE(answers(beside)) << "a library without the entry is taken all the same";
    fs::remove(hosts);
    fs::copy_file(TestLibrary("ResourceManager.tkv"), hosts);
    EXPECT_TRUE(answers(hosts));
    EXPECT_FALSE(answers(beside));
    fs::remove(beside);
}

}  // namespace
}  // namespace tdkviz
