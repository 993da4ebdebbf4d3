// Views as a host sees them: what comes before the window stands, sizes, clicks, changes of plug-in.
#include <gtest/gtest.h>
#include <tdkplatform.h>

#include <algorithm>
#include <cstring>

#include "tests/staged/TestHost.h"

namespace tdkviz::test {
namespace {

HWND ViewWindow(const TestHost& host) {
    return FindWindowExA(host.Parent(), nullptr, "TDVisualizationClass", nullptr);
}

SIZE ClientSize(HWND window) {
    RECT rect = {};
    GetClientRect(window, &rect);
    return {rect.right, rect.bottom};
}

std::string CurrentPlugin(IMPAVizWindow* view) {
    char path[MAX_PATH] = {};
    if (view->GetCurrentPlugin(path, sizeof path) != S_OK) return "none";
    return std::string(path).substr(std::string(path).find_last_of('/') + 1);
}

class ViewTest : public testing::Test {
protected:
    void Install(const std::vector<std::string>& plugins) {
        TestHost::InstallPlugins(plugins);
        host_ = std::make_unique<TestHost>();
    }
    IMPAVizWindow* Create() {
        auto parent = static_cast<uint32_t>(reinterpret_cast<uintptr_t>(host_->Parent()));
        IMPAVizWindow* view = nullptr;
        EXPECT_EQ(host_->Manager()->CreateVizWindow(&view, &parent), S_OK);
        return view;
    }
    void Destroy(IMPAVizWindow* view) { EXPECT_EQ(host_->Manager()->DestroyVizWindow(view), S_OK); }

    std::unique_ptr<TestHost> host_;
};

TEST_F(ViewTest, WhatComesBeforeTheWindowIsCarriedOut) {
    Install({"Probe.tkv"});
    IMPAVizWindow* view = Create();
    view->Show(320, 240);
    view->Show(300, 200);
    host_->Advance(10);
    const SIZE size = ClientSize(ViewWindow(*host_));
    EXPECT_EQ(size.cx, 300);
    EXPECT_EQ(size.cy, 200);
    EXPECT_TRUE(IsWindowVisible(ViewWindow(*host_)));
    EXPECT_EQ(view->Resize(321, 240), S_OK);
    host_->Advance(10);
    EXPECT_EQ(ClientSize(ViewWindow(*host_)).cx, 324) << "both sides are rounded up to 4";
    EXPECT_EQ(view->Hide(), S_OK);
    EXPECT_FALSE(IsWindowVisible(ViewWindow(*host_)));
    EXPECT_EQ(view->Show(64, 64), S_OK);
    EXPECT_TRUE(IsWindowVisible(ViewWindow(*host_)));
    Destroy(view);
    EXPECT_EQ(ViewWindow(*host_), nullptr);
    EXPECT_EQ(host_->Manager()->DestroyVizWindow(view), E_FAIL);
}

TEST_F(ViewTest, RotateButtonTakesAStripBelowThePicture) {
    Install({"Probe.tkv"});
    IMPAVizWindow* view = Create();
    view->SetViewFlags(kViewRotateButton);
    view->Show(400, 300);
    host_->Advance(10);
    const HWND button = FindWindowExA(host_->Parent(), nullptr, "button", "Rotate");
    ASSERT_TRUE(button);
    RECT rect = {};
    GetWindowRect(button, &rect);
    POINT corner = {rect.left, rect.top};
    ScreenToClient(host_->Parent(), &corner);
    EXPECT_EQ(corner.x, 345);
    EXPECT_EQ(corner.y, 275);
    EXPECT_EQ(rect.right - rect.left, 50);
    EXPECT_EQ(rect.bottom - rect.top, 25);
    EXPECT_EQ(GetWindowLongPtrA(button, GWLP_USERDATA), reinterpret_cast<LONG_PTR>(view));
    EXPECT_EQ(ClientSize(ViewWindow(*host_)).cy, 272) << "270 rounded up to 4";
    Destroy(view);
    EXPECT_FALSE(IsWindow(button));
}

TEST_F(ViewTest, PluginsAreSelectedByTheirExactPath) {
    Install({"Probe.tkv", "HangsInDraw.tkv", "NoExport.tkv"});
    IMPAVizWindow* view = Create();
    char path[MAX_PATH];
    EXPECT_EQ(view->GetCurrentPlugin(path, sizeof path), E_FAIL);
    const std::string probe = TestHost::PluginPath("Probe.tkv");
    EXPECT_EQ(view->SelectPlugin(TestHost::PluginPath("PROBE.tkv").c_str()), E_FAIL);
    EXPECT_EQ(view->SelectPlugin(nullptr), E_FAIL);
    EXPECT_EQ(view->SelectPlugin(probe.c_str()), S_OK);
    EXPECT_EQ(view->SelectPlugin(probe.c_str()), S_OK);
    EXPECT_EQ(CurrentPlugin(view), "Probe.tkv");
    EXPECT_EQ(view->GetCurrentPlugin(path, static_cast<uint32_t>(probe.size())), E_FAIL) << "no room for the terminator";
    EXPECT_EQ(view->GetCurrentPlugin(path, static_cast<uint32_t>(probe.size()) + 1), S_OK);
    // What can't be loaded never becomes current, whatever was asked of it before.
    char name[300];
    host_->Manager()->GetPluginName(TestHost::PluginPath("NoExport.tkv").c_str(), name, sizeof name);
    EXPECT_EQ(view->SelectPlugin(TestHost::PluginPath("NoExport.tkv").c_str()), S_OK);
    EXPECT_EQ(CurrentPlugin(view), "Probe.tkv");
    Destroy(view);
}

TEST_F(ViewTest, ClicksWalkThroughThePlugins) {
    Install({"Probe.tkv", "HangsInDraw.tkv"});
    IMPAVizWindow* view = Create();
    view->SetViewFlags(kViewClickStepsPlugins);
    view->Show(200, 200);
    host_->Advance(10);
    const HWND window = ViewWindow(*host_);
    const auto click = [&] {
        TdkpFeedMouse(window, WM_LBUTTONDOWN, MK_LBUTTON, 10, 10);
        TdkpFeedMouse(window, WM_LBUTTONUP, 0, 10, 10);
        host_->Advance(10);
        return CurrentPlugin(view);
    };
    EXPECT_EQ(click(), "HangsInDraw.tkv") << "the first, when none is current";
    EXPECT_EQ(click(), "Probe.tkv");
    EXPECT_EQ(click(), "HangsInDraw.tkv") << "in a circle";
    Destroy(view);
}

TEST_F(ViewTest, ClickReceiversAreTold) {
    struct Receiver final : IMPAClickReceiver {
        HRESULT QueryInterface(const GUID&, void** out) override {
            *out = nullptr;
            return E_NOINTERFACE;
        }
        ULONG AddRef() override { return 1; }
        ULONG Release() override { return 1; }
        HRESULT ViewClicked(uint32_t x, uint32_t y, uint32_t) override {
            clicks.push_back({static_cast<LONG>(x), static_cast<LONG>(y)});
            return S_OK;
        }
        std::vector<POINT> clicks;
    } early, late, right;
    Install({"Probe.tkv"});
    IMPAVizWindow* view = Create();
    EXPECT_EQ(view->AddClickReceiver(&early), S_OK);
    view->Show(200, 200);
    host_->Advance(10);
    EXPECT_EQ(view->AddClickReceiver(&late), S_OK);
    EXPECT_EQ(view->AddRightClickReceiver(&right), S_OK);
    TdkpFeedMouse(ViewWindow(*host_), WM_LBUTTONUP, 0, 33, 44);
    TdkpFeedMouse(ViewWindow(*host_), WM_RBUTTONUP, 0, 55, 66);
    host_->Advance(10);
    ASSERT_EQ(early.clicks.size(), 1u);
    EXPECT_EQ(early.clicks[0].x, 33);
    EXPECT_EQ(early.clicks[0].y, 44);
    EXPECT_EQ(late.clicks.size(), 1u);
    EXPECT_EQ(right.clicks.size(), 1u);
    EXPECT_EQ(view->RemoveClickReceiver(&early), S_OK);
    EXPECT_EQ(view->RemoveClickReceiver(&early), E_FAIL);
    TdkpFeedMouse(ViewWindow(*host_), WM_LBUTTONUP, 0, 1, 1);
    host_->Advance(10);
    EXPECT_EQ(early.clicks.size(), 1u);
    EXPECT_EQ(late.clicks.size(), 2u);
    Destroy(view);
}

TEST_F(ViewTest, PluginOfTheGuideDrawsItsLine) {
    Install({"Glow.tkv"});
    ASSERT_TRUE(host_->MakeView("Glow.tkv", 200, 152));
    host_->StartDevice(100, 441);
    host_->SetState(kEngineStatePlaying);
    host_->Advance(300);
    std::vector<DWORD> pixels(1400 * 900);
    int width = 0;
    int height = 0;
    ASSERT_TRUE(TdkpReadWindow(ViewWindow(*host_), pixels.data(), static_cast<int>(pixels.size()), &width, &height));
    const auto lit = std::count_if(pixels.begin(), pixels.begin() + width * height,
                                   [](DWORD pixel) { return (pixel & 0xFFFFFF) == 0x40C0FF; });
    EXPECT_EQ(lit, width) << "one point for each column";
}

TEST_F(ViewTest, PictureGoesBlackWhenPlayingStops) {
    Install({"Probe.tkv"});
    ASSERT_TRUE(host_->MakeView("Probe.tkv", 200, 152));
    host_->StartDevice(100, 441);
    host_->SetState(kEngineStatePlaying);
    host_->Advance(300);
    std::vector<DWORD> pixels(1400 * 900);
    int width = 0;
    int height = 0;
    const auto corner = [&] {
        EXPECT_TRUE(TdkpReadWindow(ViewWindow(*host_), pixels.data(), static_cast<int>(pixels.size()), &width, &height));
        return pixels[0] & 0xFFFFFF;
    };
    EXPECT_EQ(corner(), 0xFF0000u);
    host_->SetState(kEngineStatePaused);
    host_->Advance(20);
    EXPECT_EQ(corner(), 0u);
    for (int index = 0; index < width * height; ++index) ASSERT_EQ(pixels[index] & 0xFFFFFF, 0u) << index;
}

}  // namespace
}  // namespace tdkviz::test
