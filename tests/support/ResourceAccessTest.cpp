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

}  // namespace
}  // namespace tdkviz
