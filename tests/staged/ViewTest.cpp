// Views as a host sees them: what comes before the window stands, sizes, clicks, changes of plug-in.
#include <gtest/gtest.h>
#include <tdkplatform.h>

#include <algorithm>

#include "tests/staged/TestHost.h"

namespace tdkviz::test {
namespace {

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
    const SIZE size = ClientSize(host_->ViewWindow());
    EXPECT_EQ(size.cx, 300);
    EXPECT_EQ(size.cy, 200);
    EXPECT_TRUE(IsWindowVisible(host_->ViewWindow()));
    EXPECT_EQ(view->Hide(), S_OK);
    EXPECT_FALSE(IsWindowVisible(host_->ViewWindow()));
    EXPECT_EQ(view->Show(64, 64), S_OK);
    EXPECT_TRUE(IsWindowVisible(host_->ViewWindow()));
    Destroy(view);
    EXPECT_EQ(host_->ViewWindow(), nullptr);
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
    EXPECT_EQ((std::vector{corner.x, corner.y, rect.right - rect.left, rect.bottom - rect.top}),
              (std::vector<LONG>{345, 275, 50, 25}));
    EXPECT_EQ(GetWindowLongPtrA(button, GWLP_USERDATA), reinterpret_cast<LONG_PTR>(view));
    EXPECT_EQ(ClientSize(host_->ViewWindow()).cy, 272) << "270 rounded up to 4";
    view->Show(500, 200);
    host_->Advance(10);
    EXPECT_EQ(FindWindowExA(host_->Parent(), button, "button", "Rotate"), nullptr) << "one button, moved";
    Destroy(view);
    EXPECT_FALSE(IsWindow(button));
}

TEST_F(ViewTest, SizesThatNoWindowCanHaveAreCut) {
    Install({"Probe.tkv"});
    IMPAVizWindow* view = host_->MakeView("Probe.tkv", 320, 20, kViewRotateButton);
    ASSERT_TRUE(view);
    host_->Advance(20);
    for (const SIZE size : {SIZE{-1, -1}, {0, 0}, {64, -200}, {-64, 200}, {1, 1}}) {
        EXPECT_EQ(view->Resize(size.cx, size.cy), S_OK);
        host_->Advance(20);
        EXPECT_LE(ClientSize(host_->ViewWindow()).cx, 324);
        EXPECT_LE(ClientSize(host_->ViewWindow()).cy, 324);
    }
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
    EXPECT_EQ(view->GetCurrentPlugin(path, static_cast<uint32_t>(probe.size())), E_FAIL)
        << "no room for the terminator";
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
    const HWND window = host_->ViewWindow();
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
    struct Receiver final : StackObject<IMPAClickReceiver> {
        HRESULT ViewClicked(uint32_t x, uint32_t y, uint32_t) override {
            clicks.emplace_back(x, y);
            return S_OK;
        }
        std::vector<std::pair<uint32_t, uint32_t>> clicks;
    } early, late, right;
    Install({"Probe.tkv"});
    IMPAVizWindow* view = Create();
    EXPECT_EQ(view->AddClickReceiver(&early), S_OK);
    view->Show(200, 200);
    host_->Advance(10);
    EXPECT_EQ(view->AddClickReceiver(&late), S_OK);
    EXPECT_EQ(view->AddRightClickReceiver(&right), S_OK);
    TdkpFeedMouse(host_->ViewWindow(), WM_LBUTTONUP, 0, 33, 44);
    TdkpFeedMouse(host_->ViewWindow(), WM_RBUTTONUP, 0, 55, 66);
    host_->Advance(10);
    EXPECT_EQ(early.clicks, (std::vector{std::pair{33u, 44u}}));
    EXPECT_EQ(late.clicks, early.clicks);
    EXPECT_EQ(right.clicks, (std::vector{std::pair{55u, 66u}}));
    EXPECT_EQ(view->RemoveClickReceiver(&early), S_OK);
    EXPECT_EQ(view->RemoveClickReceiver(&early), E_FAIL);
    TdkpFeedMouse(host_->ViewWindow(), WM_LBUTTONUP, 0, 1, 1);
    host_->Advance(10);
    EXPECT_EQ(early.clicks.size(), 1u);
    EXPECT_EQ(late.clicks.size(), 2u);
    Destroy(view);
}

TEST_F(ViewTest, PluginOfTheGuideDrawsItsLine) {
    Install({"Line.tkv"});
    ASSERT_TRUE(host_->MakeView("Line.tkv", 200, 152));
    host_->StartDevice(100, 441);
    host_->SetState(kEngineStatePlaying);
    host_->Advance(300);
    const Picture picture(host_->ViewWindow());
    const auto lit = std::count_if(picture.pixels.begin(), picture.pixels.end(),
                                   [](DWORD pixel) { return (pixel & 0xFFFFFF) == 0x40C0FF; });
    EXPECT_EQ(lit, 200) << "one point for each column";
}

TEST_F(ViewTest, PictureIsTheRightWayUpAtEverySizeAndGoesBlackAtTheEnd) {
    Install({"Probe.tkv"});
    IMPAVizWindow* view = host_->MakeView("Probe.tkv", 200, 152);
    ASSERT_TRUE(view);
    host_->StartDevice(120, 441);
    host_->SetState(kEngineStatePlaying);
    for (const SIZE size : {SIZE{200, 152}, {1280, 720}, {200, 152}, {320, 240}, {324, 240}, {1024, 600}}) {
        SCOPED_TRACE(std::to_string(size.cx) + "x" + std::to_string(size.cy));
        view->Resize(size.cx, size.cy);
        host_->Advance(200);
        const Picture picture(host_->Parent());
        EXPECT_EQ(picture.At(2, 2), 0xFF0000u) << "the mark in the top left corner";
        for (const POINT corner : {POINT{size.cx - 1, size.cy - 1}, {size.cx - 1, 0}, {0, size.cy - 1}})
            EXPECT_EQ(picture.At(corner.x, corner.y), 0x204060u);
        EXPECT_EQ(picture.At(size.cx, size.cy / 2), 0xFFFFFFu) << "the host's own window beside the view";
        EXPECT_EQ(picture.At(size.cx / 2, size.cy), 0xFFFFFFu) << "the host's own window below the view";
    }
    host_->SetState(kEngineStatePaused);
    host_->Advance(20);
    EXPECT_EQ(Picture(host_->ViewWindow()).FirstOtherThan(0), -1);
}

}  // namespace
}  // namespace tdkviz::test
