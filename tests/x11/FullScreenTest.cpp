// Into full screen and back where no window manager takes part.
#include <gtest/gtest.h>
#include <tdkplatform.h>
#include <windows.h>

#include "tests/x11/AppWindow.h"
#include "tests/x11/XServer.h"

namespace {

// Serves what the server has to say by now, however late it comes.
void Settle() {
    for (int i = 0; i < 20; ++i) {
        TdkpDispatchMessages();
        Sleep(10);
    }
}

void GoTo(const AppWindow& window, DWORD style, const RECT& place) {
    SetWindowLongPtrA(window.Handle(), GWL_STYLE, static_cast<LONG_PTR>(style | WS_VISIBLE));
    SetWindowPos(window.Handle(), HWND_TOP, place.left, place.top, place.right - place.left, place.bottom - place.top,
                 SWP_FRAMECHANGED);
    Settle();
}

TEST(FullScreenTest, BackFromBehindAnotherWindowItHasItsFormerSize) {
    if (!XServer::IsInstalled()) GTEST_SKIP() << "Xvfb is not installed";
    const XServer server(24);
    ASSERT_TRUE(server.Running());
    server.Use();
    const AppWindow window(0, 50, 40, 300, 200);
    Settle();
    RECT former = {};
    GetWindowRect(window.Handle(), &former);
    const auto style = static_cast<DWORD>(GetWindowLongPtrA(window.Handle(), GWL_STYLE));
    GoTo(window, WS_POPUP, {0, 0, XServer::kWidth, XServer::kHeight});
    const AppWindow another(0, 100, 100, 100, 100);
    Settle();
    GoTo(window, style, former);
    RECT now = {};
    GetWindowRect(window.Handle(), &now);
    EXPECT_EQ(now.right - now.left, former.right - former.left);
    EXPECT_EQ(now.bottom - now.top, former.bottom - former.top);
}

}  // namespace
