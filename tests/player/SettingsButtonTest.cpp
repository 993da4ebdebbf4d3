// The settings button from both sides: a component behind it, and somebody who presses it.
#include "player/window/SettingsButton.h"

#include <gtest/gtest.h>

#include <cstring>
#include <thread>

#include "player/render/Snapshot.h"
#include "player/window/PlayerWindow.h"
#include "tests/support/Picture.h"

namespace tdkplay {
namespace {

constexpr DWORD kGreen = 0x00FF00;
constexpr DWORD kRed = 0xFF0000;

HBITMAP MakePicture(DWORD color) {
    const std::vector<DWORD> pixels(16 * 16, color);
    return CreateBitmap(16, 16, 1, 32, pixels.data());
}

struct Component final : ComObject<ITKCommandButton> {
    ComPtr<IUnknown> Site;
    uint32_t Parent = 0;
    int Presses = 0;
    bool IsOpen = false;

    HRESULT QueryInterface(const GUID& id, void** out) override { return GiveInterface(id, out, {}); }
    HBITMAP GetButtonBitmap() override { return MakePicture(kGreen); }
    HRESULT GetButtonLabel(char* text, uint32_t size) override {
        std::strncpy(text, "Press", size);
        return S_OK;
    }
    HRESULT Execute(uint32_t, IUnknown* site, MPAVizWindowRecord* parent) override {
        Site = ComPtr<IUnknown>(site);
        Parent = parent->Window;
        ++Presses;
        IsOpen = true;
        return S_OK;
    }
    HRESULT CloseDialog() override {
        IsOpen = false;
        return S_OK;
    }
    bool IsDialogOpen() override { return IsOpen; }
    HRESULT Initialize(IUnknown*) override { return S_OK; }
    HRESULT Shutdown() override { return S_OK; }
};

struct NoControls final : TransportEvents {
    void OnPlayButton() override {}
    void OnStepButton(int) override {}
    void OnSeekBar(double) override {}
    void OnVolumeBar(int) override {}
    void OnPointerInStrip() override {}
};

class SettingsButtonTest : public testing::Test {
protected:
    static BOOL UseMemory() {
        static const BOOL used = TdkpUseMemoryDisplay(640, 480, 32);
        return used;
    }
    SettingsButtonTest() { strip_.Place(window_.StripPlace()); }

    void Click(int x, int y) {
        TdkpFeedMouse(window_.Handle(), WM_LBUTTONDOWN, MK_LBUTTON, x, y);
        TdkpFeedMouse(window_.Handle(), WM_LBUTTONUP, 0, x, y);
        TdkpDispatchMessages();
    }
    size_t PixelsOf(DWORD color) const {
        while (TdkpDispatchMessages() != 0) {
        }
        const Picture picture = ReadWindow(window_.Handle());
        return static_cast<size_t>(std::count(picture.Pixels.begin(), picture.Pixels.end(), color));
    }

    const BOOL isMemory_ = UseMemory();
    const ComPtr<Component> component_ = MakeCom<Component>();
    PlayerWindow window_{{300, 100}, nullptr, TransportStrip::kHeight};
    NoControls controls_;
    TransportStrip strip_{window_.Handle(), controls_};
    std::unique_ptr<SettingsButton> button_ = std::make_unique<SettingsButton>(*component_, window_.Handle(), strip_);
};

TEST_F(SettingsButtonTest, APressOpensTheDialogOfThisWindow) {
    EXPECT_EQ(PixelsOf(kGreen), 16u * 16u);
    const RECT place = StripLayout::For(300, 0, 0).Settings;
    const int x = (place.left + place.right) / 2, y = (place.top + place.bottom) / 2;
    Click(x, y);                     // above the strip
    Click(place.left - 2, 100 + y);  // in the strip, beside the button
    EXPECT_EQ(component_->Presses, 0);
    Click(x, 100 + y);
    EXPECT_EQ(component_->Presses, 1);
    EXPECT_EQ(component_->Parent, static_cast<uint32_t>(reinterpret_cast<uintptr_t>(window_.Handle())));
    EXPECT_EQ(GetFocus(), window_.Handle()) << "the player keeps its keys";
}

TEST_F(SettingsButtonTest, ThePictureFollowsFromAnyThreadAndTheSiteOutlivesTheButton) {
    const TdkpCounts before = tdkviz::test::Counts();
    button_->Press();
    const auto picture = QueryFor<ITKButtonPicture>(component_->Site.Get(), kIID_ITKButtonPicture);
    const auto site = QueryFor<ITKButtonSite>(component_->Site.Get(), kIID_ITKButtonSite);
    const auto help = QueryFor<ITKHelp>(component_->Site.Get(), kIID_ITKHelp);
    ASSERT_TRUE(picture && site && help);
    std::thread([&] {
        for (int i = 0; i < 3; ++i) picture->SetButtonBitmap(MakePicture(kRed), component_.Get());
    }).join();
    EXPECT_EQ(PixelsOf(kRed), 16u * 16u);
    EXPECT_EQ(PixelsOf(kGreen), 0u);
    EXPECT_EQ(tdkviz::test::Counts().gdiObjects, before.gdiObjects) << "pictures that nobody saw are gone";

    button_.reset();
    EXPECT_FALSE(component_->IsOpen);
    site->CommandDone(1);
    help->ShowHelpTopic(389);
    picture->SetButtonBitmap(MakePicture(kRed), component_.Get());
    EXPECT_EQ(PixelsOf(kRed), 0u);
}

}  // namespace
}  // namespace tdkplay
