// The component as a button: its picture and label, and the settings dialog as a host sees it.
#include <gtest/gtest.h>
#include <tdkplatform.h>

#include <algorithm>
#include <vector>

#include "src/settings/resources/resource.h"
#include "tests/staged/NothingLeft.h"
#include "tests/staged/TestHost.h"

namespace tdkviz::test {
namespace {

constexpr char kDialogTitle[] = "Visualization Settings";
constexpr uint32_t kFrameRate = 30;
constexpr uint32_t kFramePeriod = 33;  // ms
#ifdef __SANITIZE_THREAD__
constexpr int kRounds = 250;  // each takes as long as fifty otherwise
#else
constexpr int kRounds = 500;
#endif

struct TestSite final : StackObject<ITKButtonSite, ITKButtonPicture, ITKHelp> {
    IUnknown* Find(const GUID& id) override {
        if (id == kIID_ITKButtonSite) return static_cast<ITKButtonSite*>(this);
        if (id == kIID_ITKButtonPicture) return static_cast<ITKButtonPicture*>(this);
        if (id == kIID_ITKHelp) return static_cast<ITKHelp*>(this);
        return nullptr;
    }
    HRESULT CommandDone(uint32_t command) override {
        done.push_back(command);
        if (onDone) onDone();
        return S_OK;
    }
    HRESULT SetButtonBitmap(HBITMAP bitmap, ITKCommandButton* which) override {
        EXPECT_TRUE(DeleteObject(bitmap)) << "the host's";
        button = which;
        ++pictures;
        if (onPicture) onPicture();
        return S_OK;
    }
    HRESULT ShowHelpTopic(uint32_t topic) override {
        topics.push_back(topic);
        return S_OK;
    }
    IUnknown* Object() { return static_cast<ITKButtonSite*>(this); }

    std::vector<uint32_t> done, topics;
    int pictures = 0;
    ITKCommandButton* button = nullptr;
    std::function<void()> onDone, onPicture;
};

HWND Dialog(HWND behind = nullptr) {
    return FindWindowExA(nullptr, behind, nullptr, kDialogTitle);
}

MPAVizWindowRecord RecordOf(HWND window) {
    MPAVizWindowRecord record = {};
    record.Window = static_cast<uint32_t>(reinterpret_cast<uintptr_t>(window));
    return record;
}

// The effect control with this place in the order of the keyboard.
HWND EffectControl(int index) {
    HWND control = nullptr;
    for (; index >= 0; --index) control = FindWindowExA(Dialog(), control, "VizEffectControl", nullptr);
    return control;
}

// Where the point of its horizontal arrow is seen. -1: nowhere.
int ArrowOf(HWND control) {
    std::vector<DWORD> pixels(1 << 14);
    int width = 0, height = 0;
    if (!TdkpReadWindow(control, pixels.data(), static_cast<int>(pixels.size()), &width, &height)) return -1;
    const DWORD* const row = &pixels[static_cast<size_t>(width * (height - 6))];
    const DWORD* const found = std::find(row, row + width, DWORD{0x00FF00});
    return found != row + width ? static_cast<int>(found - row) : -1;
}

// By a third of the control's width, to the side where there is more room.
void DragArrow(HWND control) {
    RECT client = {};
    GetClientRect(control, &client);
    const int from = ArrowOf(control), y = client.bottom - 5;
    ASSERT_GE(from, 0);
    const int to = from < client.right / 2 ? from + client.right / 3 : from - client.right / 3;
    TdkpFeedMouse(control, WM_LBUTTONDOWN, MK_LBUTTON, from, y);
    TdkpFeedMouse(control, WM_MOUSEMOVE, MK_LBUTTON, to, y);
    TdkpFeedMouse(control, WM_LBUTTONUP, 0, to, y);
    ServeMessages();
    EXPECT_NE(ArrowOf(control), from);
}

class DialogTest : public testing::Test {
protected:
    void SetUp() override {
        TestHost::InstallPlugins({"Good2.tkv", "Probe.tkv"});
        host_ = std::make_unique<TestHost>();
    }
    void TearDown() override {
        host_.reset();
        ForgetSettings();
    }
    ITKCommandButton& Button() { return *host_->Component(); }
    HRESULT Execute(uint32_t command, TestSite& site) {
        MPAVizWindowRecord parent = RecordOf(host_->Parent());
        return Button().Execute(command, site.Object(), &parent);
    }
    static void Press(int id) {
        SendMessageA(GetDlgItem(Dialog(), id), BM_CLICK, 0, 0);
        ServeMessages();
    }
    static std::string Name() {
        char text[300] = "";
        GetWindowTextA(GetDlgItem(Dialog(), IDC_PLUGIN_NAME), text, sizeof text);
        return text;
    }
    // In a few long steps.
    void AdvanceByAFrame() {
        constexpr uint32_t kSteps = 3, kStep = kFramePeriod / kSteps;
        for (uint32_t step = 0; step < kSteps; ++step) {
            TdkpAdvanceClock(kStep);
            host_->ServeMessages();
            host_->heard += uint64_t{kStep} * kRate / 1000;
            host_->FeedDevice();
        }
    }
    void SwitchEffects(bool on) { host_->Configure(kConfigEffects, on); }

    TestSite site_, second_;  // outlive the component
    std::unique_ptr<TestHost> host_;
};

TEST_F(DialogTest, ExecuteOpensOneDialogAndTheUserClosesIt) {
    StackObject<IUnknown> noSite;
    EXPECT_EQ(Button().Execute(1, &noSite, nullptr), E_NOINTERFACE);
    EXPECT_EQ(Button().Execute(1, nullptr, nullptr), E_POINTER);
    EXPECT_FALSE(Button().IsDialogOpen());
    EXPECT_EQ(Dialog(), nullptr);

    ASSERT_EQ(Execute(5, site_), S_OK);
    EXPECT_TRUE(Button().IsDialogOpen());
    const HWND dialog = Dialog();
    ASSERT_TRUE(dialog);
    EXPECT_EQ(GetWindow(dialog, GW_OWNER), host_->Parent());
    SetForegroundWindow(host_->Parent());
    ASSERT_EQ(Execute(6, second_), S_OK);
    EXPECT_EQ(Dialog(), dialog);
    EXPECT_EQ(Dialog(dialog), nullptr) << "one dialog";
    EXPECT_EQ(GetForegroundWindow(), dialog);
    EXPECT_EQ(site_.References, 0u) << "the second site took its place";
    EXPECT_EQ(Button().Execute(7, &noSite, nullptr), E_NOINTERFACE);
    EXPECT_EQ(Dialog(), dialog) << "not touched";
    ASSERT_EQ(Execute(6, second_), S_OK);

    Press(IDC_HELP_TOPIC);
    EXPECT_EQ(second_.topics, std::vector<uint32_t>{389});
    Press(IDC_CLOSE);
    EXPECT_FALSE(Button().IsDialogOpen());
    EXPECT_EQ(Dialog(), nullptr);
    EXPECT_EQ(second_.done, std::vector<uint32_t>{6});
    EXPECT_TRUE(site_.done.empty());

    // Anew on the same object; this time the host answers by ending it.
    second_.onDone = [this] { Button().CloseDialog(); };
    ASSERT_EQ(Execute(8, second_), S_OK);
    TdkpFeedClose(Dialog());
    ServeMessages();
    EXPECT_EQ(second_.done, (std::vector<uint32_t>{6, 8}));
    second_.onDone = nullptr;
    ASSERT_EQ(Execute(9, second_), S_OK);
    EXPECT_EQ(Button().CloseDialog(), S_OK);
    EXPECT_EQ(Button().CloseDialog(), S_OK);
    EXPECT_FALSE(Button().IsDialogOpen());
    EXPECT_EQ(Dialog(), nullptr);
    EXPECT_EQ(second_.done.size(), 2u) << "the host closed it and needs no telling";

    // From inside the dialog's own call, and on another thread.
    ASSERT_EQ(Execute(10, second_), S_OK);
    second_.onPicture = [this] { Button().CloseDialog(); };
    Press(IDC_ON_OFF);
    EXPECT_EQ(Dialog(), nullptr);
    ASSERT_EQ(Execute(11, second_), S_OK);
    const auto close = [](LPVOID button) {
        return static_cast<DWORD>(static_cast<ITKCommandButton*>(button)->CloseDialog());
    };
    const HANDLE closer = CreateThread(nullptr, 0, close, &Button(), 0, nullptr);
    while (MsgWaitForMultipleObjects(1, &closer, FALSE, INFINITE, QS_ALLINPUT) != WAIT_OBJECT_0) ServeMessages();
    CloseHandle(closer);
    EXPECT_EQ(Dialog(), nullptr);
    EXPECT_EQ(second_.done.size(), 2u);
}

TEST_F(DialogTest, TheHostMayNameAnotherParent) {
    const HWND other = CreateWindowExA(0, "TestHostWindow", "other", WS_POPUP | WS_VISIBLE, 0, 0, 300, 300, nullptr,
                                       nullptr, nullptr, nullptr);
    auto* parents = host_->Ask<IMPAVizParentMgr>(kIID_IMPAVizParentMgr);
    MPAVizWindowRecord record = RecordOf(other);
    parents->SetDialogParent(&record);
    const struct {
        bool use, record;
        HWND owner;
    } cases[] = {{true, true, other}, {true, false, other}, {false, true, host_->Parent()}, {false, false, nullptr}};
    for (const auto& c : cases) {
        parents->UseDialogParent(c.use);
        MPAVizWindowRecord given = RecordOf(host_->Parent());
        ASSERT_EQ(Button().Execute(1, site_.Object(), c.record ? &given : nullptr), S_OK);
        EXPECT_EQ(GetWindow(Dialog(), GW_OWNER), c.owner);
        Button().CloseDialog();
    }
    // A parent that goes takes the dialog along.
    parents->UseDialogParent(true);
    ASSERT_EQ(Execute(4, site_), S_OK);
    DestroyWindow(other);
    EXPECT_FALSE(Button().IsDialogOpen());
    EXPECT_EQ(Dialog(), nullptr);
    parents->UseDialogParent(false);
    ASSERT_EQ(Execute(4, site_), S_OK);
    EXPECT_TRUE(Dialog());
}

TEST_F(DialogTest, ThePictureFollowsTheEffects) {
    SwitchEffects(true);
    ASSERT_EQ(Execute(1, site_), S_OK);
    SwitchEffects(true);
    EXPECT_EQ(site_.pictures, 0) << "no change";
    SwitchEffects(false);
    EXPECT_EQ(site_.pictures, 1);
    EXPECT_EQ(site_.button, &Button());
    Press(IDC_ON_OFF);
    EXPECT_EQ(site_.pictures, 2);
    Press(IDC_CLOSE);
    SwitchEffects(false);
    EXPECT_EQ(site_.pictures, 3) << "the site stays";
}

TEST_F(DialogTest, ShowsThePluginOfTheLastView) {
    ASSERT_EQ(Execute(1, site_), S_OK);
    EXPECT_EQ(Name(), "None Selected");
    IMPAVizWindow* view = host_->MakeView("Probe.tkv", 320, 240, kViewClickStepsPlugins);
    ASSERT_TRUE(view);
    EXPECT_EQ(Name(), "Probe");
    EXPECT_FALSE(IsWindowEnabled(GetDlgItem(Dialog(), IDC_CONFIGURE)));
    view->SelectPlugin(TestHost::PluginPath("Good2.tkv").c_str());
    EXPECT_EQ(Name(), "Good two");
    EXPECT_TRUE(IsWindowEnabled(GetDlgItem(Dialog(), IDC_CONFIGURE)));
    host_->Advance(20);
    // A click changes the plug-in on the worker's thread, which must not wait for this one.
    HWND output = host_->ViewWindow();
    const auto click = [](LPVOID window) {
        return static_cast<DWORD>(SendMessageA(*static_cast<HWND*>(window), WM_LBUTTONUP, 0, MAKELPARAM(50, 50)));
    };
    const HANDLE clicker = CreateThread(nullptr, 0, click, &output, 0, nullptr);
    TdkpSettle();
    EXPECT_EQ(WaitForSingleObject(clicker, 0), DWORD{WAIT_OBJECT_0});
    EXPECT_EQ(Name(), "Good two") << "not yet";
    ServeMessages();
    EXPECT_EQ(Name(), "Probe");
    WaitForSingleObject(clicker, INFINITE);
    CloseHandle(clicker);
    host_->Shutdown();
    EXPECT_EQ(Dialog(), nullptr);
}

TEST_F(DialogTest, CostsNoFrameOfARunningPicture) {
    host_->Configure(kConfigFrameRate, kFrameRate);
    host_->Configure(kConfigRandomize, 1);
    SwitchEffects(true);
    std::atomic<int> frames{0};
    const auto watch = WatchProbe([&](const ProbeFrame&) { ++frames; });
    ASSERT_TRUE(host_->MakeView("Probe.tkv", 320, 240));
    host_->StartDevice(120, 441);
    host_->SetState(kEngineStatePlaying);
    host_->Advance(10 * kFramePeriod);
    ASSERT_EQ(Execute(1, site_), S_OK);
    Button().CloseDialog();
    ServeMessages();
    const NothingLeft nothingLeft;
    frames = 0;
    for (int round = 0; round < kRounds; ++round) {
        ASSERT_EQ(Execute(1, site_), S_OK);
        DragArrow(EffectControl(round % 5));
        AdvanceByAFrame();
        if (round % 2) {
            TdkpFeedKey(GetFocus(), TRUE, VK_ESCAPE, 0);
            TdkpDispatchMessages();
        } else {
            Button().CloseDialog();
        }
        ASSERT_EQ(Dialog(), nullptr);
    }
    EXPECT_EQ(frames, kRounds);
    EXPECT_EQ(site_.done.size(), size_t{kRounds / 2});
    Button().CloseDialog();
    host_->ServeMessages();
}

TEST_F(DialogTest, GoesWithTheComponentAndLeavesNothing) {
    ASSERT_EQ(Execute(1, site_), S_OK);
    host_.reset();
    ServeMessages();
    const NothingLeft nothingLeft;
    for (const bool shutdown : {true, false}) {
        host_ = std::make_unique<TestHost>();
        ASSERT_EQ(Execute(2, site_), S_OK);
        ASSERT_EQ(site_.References, 1u);
        // With the dialog open; a host that forgets Shutdown leaves it to the last Release.
        if (shutdown) Button().Shutdown();
        host_.reset();
        ServeMessages();
        EXPECT_EQ(site_.References, 0u);
        EXPECT_EQ(Dialog(), nullptr);
    }
}

}  // namespace
}  // namespace tdkviz::test
