#include "src/support/DLLAccess.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <string>
#include <thread>

#include "src/support/PathName.h"
#include "tests/support/TemporaryFolder.h"

namespace tdkviz {
namespace {

std::set<std::string> lastBlock;

HRESULT KeepBlock(const char* block) {
    lastBlock.clear();
    for (std::string entry = block; !entry.empty(); entry = block) {
        lastBlock.insert(entry);
        block += entry.size() + 1;
    }
    return E_FAIL;
}

TEST(DLLAccessPath, Blocks) {
    const char block[] =
        "DT_Plugins=C:\\x\0no folder\0DT_Codecs=\0Mine=/a=b/\0dt_common=/c\0\0DT_EncSDK=/behind the end\0";
    const std::string own(1, PathSeparator());
    DLLAccessPath table;
    EXPECT_EQ(table.SetFromBlock(nullptr), S_OK);
    EXPECT_EQ(table.PassTo(nullptr), S_OK) << "an empty table calls nothing";
    table.SetPath(DLLKind::Codecs, "/before/");
    EXPECT_EQ(table.SetFromBlock(block), S_OK);
    EXPECT_STREQ(table.GetPath(DLLKind::Plugins), "C:\\x\\");
    EXPECT_STREQ(table.GetPath("DT_Codecs"), "/before/");
    EXPECT_STREQ(table.GetPath("Mine"), "/a=b/");
    EXPECT_EQ(table.GetPath(DLLKind::Common), nullptr);
    EXPECT_EQ(table.GetPath(DLLKind::EncSDK), nullptr);
    EXPECT_EQ(table.SetPath(DLLKind::Count, "/x"), E_FAIL);
    EXPECT_EQ(table.GetPath(DLLKind::Count), nullptr);
    EXPECT_EQ(table.PassTo(KeepBlock), S_OK);
    EXPECT_EQ(lastBlock,
              (std::set<std::string>{"DT_Plugins=C:\\x\\", "DT_Codecs=/before/", "Mine=/a=b/", "dt_common=/c" + own}));
}

TEST(DLLAccessPath, ACopyStandsWhileTheFolderIsReplaced) {
    const std::string folders[] = {"/a longer folder/", "/another folder/"};
    DLLAccessPath table;
    EXPECT_TRUE(table.CopyPath(DLLKind::Codecs).IsEmpty());
    table.SetPath(DLLKind::Codecs, folders[0].c_str());
    std::thread host([&] {
        for (size_t i = 0; i < 2000; ++i) table.SetPath(DLLKind::Codecs, folders[i % 2].c_str());
    });
    for (int i = 0; i < 2000; ++i) {
        const CNQString copy = table.CopyPath(DLLKind::Codecs);
        EXPECT_TRUE(copy.GetText() == folders[0] || copy.GetText() == folders[1]) << copy.GetText();
    }
    host.join();
}

TEST(DLLAccess, OpensByKindAndHandsTheTableOn) {
    const std::string folder = std::filesystem::path(TestLibrary("")).parent_path().string();
    GetDLLAccessPath()->SetPath(DLLKind::KCAPlugins, folder.c_str());
    DLLAccess library;
    EXPECT_EQ(library.GetSymbol("TakenBlock"), nullptr);
    EXPECT_EQ(library.GetError(), kDLLSymbolError);
    EXPECT_STREQ(library.GetErrorText(), "DLL not loaded");
    EXPECT_EQ(library.Close(), kDLLLibraryError);
    EXPECT_EQ(library.Open("NoSuchLibrary.tkv", DLLKind::KCAPlugins), kDLLLibraryError);
    EXPECT_STREQ(library.GetErrorText(), "Unable to load library");
    EXPECT_FALSE(library.IsLibraryOpen());

    ASSERT_EQ(library.Open("TakesPaths.tkv", DLLKind::KCAPlugins), kDLLNoError);
    EXPECT_EQ(library.GetLibraryName(), TestLibrary("TakesPaths.tkv"));
    const auto taken = reinterpret_cast<const char* (*)()>(library.GetSymbol("TakenBlock"));
    ASSERT_NE(taken, nullptr);
    KeepBlock(taken());
    EXPECT_TRUE(lastBlock.contains("DT_KCAPlugins=" + folder + PathSeparator()));
    EXPECT_EQ(library.Open("TakesPaths.tkv", DLLKind::KCAPlugins), kDLLLibraryError);
    EXPECT_STREQ(library.GetErrorText(), "DLL already open");
    EXPECT_EQ(library.GetSymbol("NoSuchSymbol"), nullptr);
    EXPECT_STREQ(library.GetErrorText(), "Symbol not found");
    EXPECT_TRUE(library.IsLibraryOpen());
    EXPECT_EQ(library.Close(), kDLLNoError);
    EXPECT_STREQ(library.GetLibraryName(), "");

    ASSERT_EQ(library.Open("NoExport.tkv", DLLKind::KCAPlugins), kDLLNoError);
    EXPECT_EQ(library.GetError(), kDLLNoError);
    EXPECT_STREQ(library.GetErrorText(), "Symbol not found") << "only the number tells";
}

TEST(CreateName, NeedsRoom) {
    char out[64];
    uint32_t size = 36;
    CreateName("nqrs", out, &size);
    EXPECT_STREQ(out, "nqrs3260.dll");
    EXPECT_EQ(size, 12u);
    size = 35;
    CreateName("nqrs", out, &size);
    EXPECT_STREQ(out, "");
    EXPECT_EQ(size, 0u);
    CreateName("nqrs", nullptr, &size);
}

}  // namespace
}  // namespace tdkviz
