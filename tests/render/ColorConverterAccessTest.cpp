#include <string>

#include <gtest/gtest.h>

#include "src/render/ColorConverterAccess.h"
#include "src/render/Formats.h"
#include "src/support/DLLAccessPath.h"

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

}  // namespace
}  // namespace tdkviz
