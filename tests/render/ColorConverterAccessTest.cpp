#include <filesystem>
#include <fstream>
#include <map>
#include <string>

#include <gtest/gtest.h>

#include "src/render/ColorConverterAccess.h"
#include "src/render/Formats.h"
#include "src/support/DLLAccessPath.h"
#include "tests/support/TemporaryFolder.h"

namespace tdkviz {
namespace {

TEST(ColorConverterAccessTest, WithoutALibraryThereAreNoConverters) {
    DLLAccessPath* table = GetDLLAccessPath();
    ASSERT_EQ(table->GetPath(DLLKind::Codecs), nullptr);
    {
        ColorConverterAccess access;
        access.Initialize();
        EXPECT_EQ(access.FindConverter(FormatRGB32, FormatRGB565), nullptr);
        EXPECT_EQ(access.GetStatus(), S_OK) << "nowhere to look is no failure";
        EXPECT_STREQ(access.GetLibraryFile(), "");
    }
    const std::string plugins = "/nowhere/Plugins";
    table->SetPath(DLLKind::Plugins, plugins.c_str());
    const std::string separated = table->GetPath(DLLKind::Plugins);
    ColorConverterAccess access;
    access.Initialize();
    EXPECT_EQ(access.FindConverter(FormatRGB32, FormatRGB32), nullptr);
    EXPECT_EQ(access.GetStatus(), E_FAIL);
    EXPECT_STREQ(access.GetLibraryFile(), "qzltcolor.dll");
    EXPECT_FALSE(access.IsLightLibrary());
    ASSERT_NE(table->GetPath(DLLKind::Codecs), nullptr);
    EXPECT_EQ(table->GetPath(DLLKind::Codecs), separated + "Codecs" + separated.back());
}

// A folder of codecs with these of the staged libraries, each under a name of the test's choice.
class CodecsFolder {
public:
    explicit CodecsFolder(const std::map<std::string, std::string>& fileByName) {
        for (const auto& [name, file] : fileByName)
            std::filesystem::copy_file(STAGE_DIR "/Codecs/" + file, folder_.File(name));
        GetDLLAccessPath()->SetPath(DLLKind::Codecs, folder_.Path().c_str());
    }
    ~CodecsFolder() { EXPECT_EQ(MappedLibraries(), 0) << "a library is still open"; }
    int MappedLibraries() const {
        std::ifstream maps("/proc/self/maps");
        int count = 0;
        for (std::string line; std::getline(maps, line);) count += line.find(folder_.Path()) != std::string::npos;
        return count;
    }

private:
    TemporaryFolder folder_;
};

TEST(ColorConverterAccessTest, TakesTheFullLibraryElseTheLightOne) {
    const std::string full = "qzcolor.so", light = "qzltcolor.so";
    if (!std::filesystem::exists(STAGE_DIR "/Codecs/" + full)) GTEST_SKIP() << "there are no converters here";
    const struct {
        std::map<std::string, std::string> fileByName;
        bool found, isLight;
        const char* lastTried;
    } cases[] = {
        {{{full, full}, {light, light}}, true, false, "qzcolor.dll"},
        {{{light, light}}, true, true, "qzltcolor.dll"},
        // The light library lacks what is asked of a full one: refused, and nothing else is tried.
        {{{full, light}, {light, light}}, false, false, "qzcolor.dll"},
    };
    for (const auto& c : cases) {
        const CodecsFolder folder(c.fileByName);
        ColorConverterAccess access;
        access.Initialize();
        EXPECT_EQ(access.GetStatus(), c.found ? S_OK : E_FAIL);
        EXPECT_EQ(access.IsLightLibrary(), c.isLight);
        EXPECT_STREQ(access.GetLibraryFile(), c.lastTried);
        EXPECT_EQ(access.FindConverter(FormatRGB32, FormatRGB565) != nullptr, c.found);
        EXPECT_EQ(access.FindConverter(FormatRGB32, FormatRGB8), nullptr);
        EXPECT_EQ(folder.MappedLibraries() > 0, c.found);
    }
}

}  // namespace
}  // namespace tdkviz
