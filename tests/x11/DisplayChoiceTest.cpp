// Which display a process gets, and the memory display where none is wanted or there.
#include <gtest/gtest.h>
#include <tdkplatform.h>
#include <windows.h>

#include <cstdlib>

#include "tests/support/Wait.h"
#include "tests/x11/AppWindow.h"
#include "tests/x11/XServer.h"

namespace {

class DisplayChoiceTest : public testing::Test {
protected:
    void SetUp() override {
        unsetenv("DISPLAY");
        unsetenv("TDKVIZ_DISPLAY");
    }
    void TearDown() override { SetUp(); }
};

TEST_F(DisplayChoiceTest, MemoryIsAlwaysThere) {
    const struct {
        const char* server;
        const char* wish;
        int width, height, depth;
    } cases[] = {
        {"", "", 1920, 1080, 32},
        {":9999", "", 1920, 1080, 32},
        {"", "memory:320x200x16", 320, 200, 16},
        {"", "memory:320x200", 320, 200, 32},
        {"", "memory:0x200x16", 1920, 1080, 32},
        {"", "memory:320x200x17", 1920, 1080, 32},
        {"", "memory:640x480x8", 640, 480, 8},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.wish);
        setenv("DISPLAY", each.server, 1);
        setenv("TDKVIZ_DISPLAY", each.wish, 1);
        EXPECT_STREQ(TdkpDisplayName(), "memory");
        AppWindow window(0, 0, 0, 10, 10);
        EXPECT_EQ(GetSystemMetrics(SM_CXSCREEN), each.width);
        EXPECT_EQ(GetSystemMetrics(SM_CYSCREEN), each.height);
        const HDC dc = GetDC(window.Handle());
        EXPECT_EQ(GetDeviceCaps(dc, BITSPIXEL), each.depth);
        ReleaseDC(window.Handle(), dc);
    }
}

TEST_F(DisplayChoiceTest, IsMadeAnewAfterTheLastWindow) {
    if (!XServer::IsInstalled()) GTEST_SKIP() << "Xvfb is not installed";
    const XServer server(24);
    ASSERT_TRUE(server.Running());
    const ptrdiff_t before = tdkviz::test::ThreadsAtRest();
    for (const bool onServer : {true, false, true}) {
        server.Use();
        if (!onServer) setenv("TDKVIZ_DISPLAY", "memory", 1);
        EXPECT_STREQ(TdkpDisplayName(), onServer ? "x11" : "memory");
        {
            AppWindow window(0, 0, 0, 10, 10);
            EXPECT_STREQ(TdkpDisplayName(), onServer ? "x11" : "memory");
            EXPECT_TRUE(tdkviz::test::ThreadsBecome(before + (onServer ? 1 : 0)));
        }
        EXPECT_TRUE(tdkviz::test::ThreadsBecome(before));
    }
}

}  // namespace
