// A player that knows windows of the X server alone, with a loop of its own around a poll: it shows the add-on's
// button, and its window is the settings dialog's parent.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <tdkplatform.h>
#include <windows.h>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include <tdkviz/host.h>
#include <tdkviz/viz.h>

#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestObjects.h"
#include "tests/support/Wait.h"
#include "tests/x11/ForeignClient.h"
#include "tests/x11/XServer.h"

namespace tdkviz::test {
namespace {

constexpr int kEffectControls = 5;
const ScreenColor kRed = {255, 0, 0}, kGreen = {0, 255, 0}, kFace = {192, 192, 192};

struct Site final : StackObject<ITKButtonSite> {
    IUnknown* Find(const GUID& id) override { return id == kIID_ITKButtonSite ? this : nullptr; }
    HRESULT CommandDone(uint32_t command) override {
        done.push_back(command);
        return S_OK;
    }
    std::vector<uint32_t> done;
};

class ForeignHost {
public:
    explicit ForeignHost(ForeignClient& client) : client_(client) {
        library_ = dlopen(STAGE_DIR "/tdkviz.so", RTLD_NOW | RTLD_LOCAL);
        if (!library_) return;
        const std::string folders = std::string("DT_Common=" STAGE_DIR) + '\0';
        Export<SetDLLAccessPathFunction>(kSetDLLAccessPathName)(folders.c_str());
        IUnknown* made = nullptr;
        Export<TKCreateInstanceFunction>(kCreateInstanceName)(&made);
        button_ = static_cast<ITKCommandButton*>(made);
        if (button_) button_->Initialize(&context_);
    }
    ~ForeignHost() {
        if (button_) {
            button_->Shutdown();
            button_->Release();
        }
        if (library_) dlclose(library_);
    }

    ITKCommandButton* Button() { return button_; }
    HRESULT Press(uint32_t command, xcb_window_t parent) {
        MPAVizWindowRecord record = {};
        record.Window = parent;
        return button_->Execute(command, &site, &record);
    }
    // The dialog as the server knows it; 0 if there is none.
    xcb_window_t Dialog() {
        for (const xcb_window_t window : client_.ChildrenOf(client_.Root())) {
            if (client_.TextProperty(window, "WM_NAME") == "Visualization Settings") return window;
        }
        return 0;
    }
    // Runs the host's loop until `done`. False if that takes too long.
    bool RunUntil(const std::function<bool()>& done) {
        return WaitUntil(done, [this] {
            pollfd waiting = {messages_, POLLIN, 0};
            if (poll(&waiting, 1, 5) > 0) TdkpDispatchMessages();
        });
    }

    Site site;

private:
    template <typename Function>
    Function Export(const char* name) {
        return reinterpret_cast<Function>(dlsym(library_, name));
    }

    ForeignClient& client_;
    const int messages_ = TdkpMessageFd();
    StackObject<IUnknown> context_;
    void* library_ = nullptr;
    ITKCommandButton* button_ = nullptr;
};

// A point of the client area, on the screen.
POINT OnScreen(HWND window, int x, int y) {
    POINT point = {x, y};
    ClientToScreen(window, &point);
    return point;
}

// Each picture has a red rectangle, whose left side is a third of the way across.
void ExpectDrawn(ForeignClient& client, HWND dialog) {
    RECT place = {};
    GetWindowRect(dialog, &place);
    EXPECT_EQ(client.WaitForColor(place.left + 1, place.top + 1, kFace, 0).DistanceTo(kFace), 0);
    int controls = 0;
    for (HWND each = nullptr; (each = FindWindowExA(dialog, each, "VizEffectControl", nullptr)) != nullptr;) {
        ++controls;
        GetWindowRect(each, &place);
        const POINT side = OnScreen(each, (place.right - place.left) / 3, (place.bottom - place.top) / 2);
        EXPECT_EQ(client.WaitForColor(side.x, side.y, kRed, 0).DistanceTo(kRed), 0) << controls;
    }
    EXPECT_EQ(controls, kEffectControls);
}

// Takes the arrow of the first control, which stands where a fade of 25 has it, to the right end of its scale.
bool DragFadeToItsEnd(ForeignClient& client, ForeignHost& host, HWND dialog) {
    const HWND fade = FindWindowExA(dialog, nullptr, "VizEffectControl", nullptr);
    RECT inside = {};
    GetClientRect(fade, &inside);
    const POINT from = OnScreen(fade, 2 + (inside.right - 5) * 25 / 128, inside.bottom - 6);
    const POINT end = OnScreen(fade, inside.right - 3, inside.bottom - 6);
    client.MoveMouse(from.x, from.y);
    client.Button(1, true);
    client.MoveMouse(from.x + 5, from.y);
    client.MoveMouse(end.x + 40, end.y - 30);
    client.Button(1, false);
    return host.RunUntil([&] { return client.ColorAt(end.x, end.y).DistanceTo(kGreen) == 0; });
}

TEST(ForeignHost, OpensClosesAndLosesTheDialog) {
    if (!XServer::IsInstalled()) GTEST_SKIP() << "Xvfb is not installed";
    XServer server(24);
    ASSERT_TRUE(server.Running());
    server.Use();
    ForeignClient client(server.Name());
    const xcb_window_t parent = client.MakeWindow(40, 30, 700, 520);
    ForeignHost host(client);
    ASSERT_TRUE(host.Button());

    ASSERT_EQ(host.Press(3, parent), S_OK);
    const xcb_window_t id = host.Dialog();
    ASSERT_NE(id, 0u);
    const HWND dialog = reinterpret_cast<HWND>(static_cast<uintptr_t>(id));
    ExpectDrawn(client, dialog);  // before any message is served
    EXPECT_EQ(client.NumberProperty(id, "WM_TRANSIENT_FOR"), parent);
    RECT place = {};
    GetWindowRect(dialog, &place);
    EXPECT_NEAR(place.left + place.right, 2 * 40 + 700, 1) << "in the middle of the parent";
    EXPECT_NEAR(place.top + place.bottom, 2 * 30 + 520, 1);
    EXPECT_TRUE(DragFadeToItsEnd(client, host, dialog));
    EXPECT_EQ(host.Button()->CloseDialog(), S_OK);
    EXPECT_TRUE(host.RunUntil([&] { return host.Dialog() == 0; }));
    EXPECT_FALSE(host.Button()->IsDialogOpen());
    EXPECT_TRUE(host.site.done.empty());

    // The user closes it; and it goes with its parent.
    ASSERT_EQ(host.Press(4, parent), S_OK);
    client.AskToClose(host.Dialog());
    EXPECT_TRUE(host.RunUntil([&] { return host.Dialog() == 0; }));
    EXPECT_EQ(host.site.done, std::vector<uint32_t>{4});
    ASSERT_EQ(host.Press(5, parent), S_OK);
    ASSERT_NE(host.Dialog(), 0u);
    client.Destroy(parent);
    EXPECT_TRUE(host.RunUntil([&] { return host.Dialog() == 0; }));
    EXPECT_EQ(host.site.done, (std::vector<uint32_t>{4, 5}));
    EXPECT_FALSE(host.Button()->IsDialogOpen());
}

}  // namespace
}  // namespace tdkviz::test
