// Into full screen and back where no window manager takes part.
#include <gtest/gtest.h>
#include <tdkplatform.h>
#include <windows.h>

#include "tests/x11/AppWindow.h"
#include "tests/x11/ForeignClient.h"
#include "tests/x11/XServer.h"

namespace {

// Serves all that the server has to say of this window's place: what comes behind it has come.
void Settle(AppWindow& window, ForeignClient& client, const RECT& place) {
    const auto isThere = [&] {
        return client.CornerOf(window.Id()) == std::pair<int, int>(place.left, place.top) &&
               client.SizeOf(window.Id()) == std::pair<int, int>(place.right - place.left, place.bottom - place.top);
    };
    EXPECT_TRUE(AppWindow::ServeUntil(isThere));
    const int told = window.Told(WM_CLOSE);
    client.AskToClose(window.Id());
    EXPECT_TRUE(AppWindow::ServeUntil([&] { return window.Told(WM_CLOSE) > told; }));
}

void GoTo(AppWindow& window, ForeignClient& client, DWORD style, const RECT& place) {
    SetWindowLongPtrA(window.Handle(), GWL_STYLE, static_cast<LONG_PTR>(style | WS_VISIBLE));
    SetWindowPos(window.Handle(), HWND_TOP, place.left, place.top, place.right - place.left, place.bottom - place.top,
                 SWP_FRAMECHANGED);
    Settle(window, client, place);
}

TEST(FullScreenTest, BackFromBehindAnotherWindowItHasItsFormerSize) {
    if (!XServer::IsInstalled()) GTEST_SKIP() << "Xvfb is not installed";
    const XServer server(24);
    ASSERT_TRUE(server.Running());
    server.Use();
    ForeignClient client(server.Name());
    AppWindow window(0, 50, 40, 300, 200);
    RECT former = {};
    GetWindowRect(window.Handle(), &former);
    Settle(window, client, former);
    const auto style = static_cast<DWORD>(GetWindowLongPtrA(window.Handle(), GWL_STYLE));
    GoTo(window, client, WS_POPUP, {0, 0, XServer::kWidth, XServer::kHeight});
    AppWindow another(0, 100, 100, 100, 100);
    Settle(another, client, {100, 100, 200, 200});
    GoTo(window, client, style, former);
    RECT now = {};
    GetWindowRect(window.Handle(), &now);
    EXPECT_EQ(now.right - now.left, former.right - former.left);
    EXPECT_EQ(now.bottom - now.top, former.bottom - former.top);
}

}  // namespace
