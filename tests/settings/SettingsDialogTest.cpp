// The settings dialog over a model of the add-on: what it shows, what it stores, what it tells.
#include <gtest/gtest.h>

#include <windows.h>

#include <commctrl.h>

#include <array>
#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <tdkviz/resource_manager.h>

#include "src/plugins/VizPlugin.h"
#include "src/render/EffectRandomizer.h"
#include "src/settings/VizSettingsDialog.h"
#include "src/settings/resources/resource.h"
#include "src/support/DLLAccessPath.h"
#include "src/support/ResourceAccess.h"
#include "tests/plugins/TestContext.h"
#include "tests/staged/NothingLeft.h"
#include "tests/support/Picture.h"

namespace tdkviz::test {
namespace {

struct TestModel final : SettingsModel {
    TestModel() { SetDefaultEffects(effects); }
    VizEffectParams& GetUserEffects() override { return effects; }
    bool IsEffectsOn() const override { return effectsOn; }
    void SetEffectsOn(bool on) override { effectsOn = on, Tell(); }
    bool IsRandomizeOn() const override { return randomize; }
    void SetRandomize(bool on) override { randomize = on; }
    bool IsAlwaysOnTopOffered() const override { return offersAlwaysOnTop; }
    int32_t GetAlwaysOnTop() override { return alwaysOnTop; }
    void SetAlwaysOnTop(bool on) override { alwaysOnTop = on, Tell(); }
    bool IsDirectDrawUsed() const override { return directDraw; }
    void SetUseDirectDraw(bool use) override { directDraw = use; }
    uint32_t GetFrameRate() const override { return frameRate; }
    void ApplyFrameRate(uint32_t rate) override { frameRate = rate; }
    CNQString GetCurrentPluginPath() override { return path.c_str(); }
    CVizPlugin* FindPlugin(const char* wanted) override {
        Tell();
        return plugin && std::string(plugin->GetPath()) == wanted ? plugin.get() : nullptr;
    }

    // Where code of hosts and plug-ins may run.
    void Tell() const {
        if (onCall) onCall();
    }

    std::function<void()> onCall;
    VizEffectParams effects;
    bool effectsOn = false, randomize = true, offersAlwaysOnTop = false, alwaysOnTop = false, directDraw = false;
    uint32_t frameRate = 20;
    std::string path;
    std::unique_ptr<CVizPlugin> plugin;
};

struct TestOwner final : DialogOwner {
    void DialogClosed() override {
        ++closed;
        if (onClosed) onClosed();
    }
    void ShowHelp() override {
        ++helped;
        if (onClosed) onClosed();
    }
    int closed = 0, helped = 0;
    std::function<void()> onClosed;
};

class SettingsDialogTest : public testing::Test {
protected:
    static void SetUpTestSuite() {
        TdkpUseMemoryDisplay(1400, 900, 32);
        // The resources are those of the staged add-on.
        module_ = LoadLibraryA(STAGE_DIR "/tdkviz.so");
        ASSERT_TRUE(module_);
        GetDLLAccessPath()->SetPath(DLLKind::Common, STAGE_DIR);
        RegisterResourceModule(module_, kAddOnResourceTag);
        SetResourceTag(kAddOnResourceTag);
    }
    static void TearDownTestSuite() {
        StopResourceAccess();
        FreeLibrary(module_);
    }
    void Open() {
        dialog_.OpenWindow(GetResourceInstance(AddOnResource(IDD_SETTINGS), kResourceKindDialog), nullptr);
        window_ = FindWindowExA(nullptr, nullptr, nullptr, "Visualization Settings");
        ASSERT_TRUE(window_);
    }
    HWND Item(int id) const { return GetDlgItem(window_, id); }
    std::string Name() const {
        char text[300] = "";
        GetWindowTextA(Item(IDC_PLUGIN_NAME), text, sizeof text);
        return text;
    }
    void Press(int id) {
        SendMessageA(Item(id), BM_CLICK, 0, 0);
        ServeMessages();
    }

    // The effect control that took the place of the placeholder.
    HWND ControlAt(int placeholder) const {
        RECT place = {}, found = {};
        GetWindowRect(Item(placeholder), &place);
        HWND control = nullptr;
        do {
            control = FindWindowExA(window_, control, "VizEffectControl", nullptr);
        } while (control && GetWindowRect(control, &found) && std::memcmp(&found, &place, sizeof place) != 0);
        return control;
    }

    static inline HMODULE module_ = nullptr;
    TestOwner owner_;
    TestModel model_;
    CVizSettingsDialog dialog_{&owner_, &model_};
    HWND window_ = nullptr;
};

// Fade, rotate, zoom x, zoom y, slide x, slide y, blur; and the switches in the same order, once each.
using Values = std::array<int32_t, 7>;
void Fill(VizEffectParams& p, const Values& v, const char* switches) {
    SetDefaultEffects(p);
    p.FadeTime = v[0], p.RotateSpeed = v[1], p.ZoomX = v[2], p.ZoomY = v[3];
    p.SlideX = v[4], p.SlideY = v[5], p.BlurAmount = v[6];
    const auto on = [switches](char which) { return std::string(switches).find(which) != std::string::npos; };
    p.Fade = on('f'), p.Rotate = on('r'), p.Zoom = on('z'), p.Slide = on('s'), p.Blur = on('b');
}
std::string Text(const VizEffectParams& p) {
    std::string text;
    for (const int32_t value : Values{p.FadeTime, p.RotateSpeed, p.ZoomX, p.ZoomY, p.SlideX, p.SlideY, p.BlurAmount})
        text += std::to_string(value) + " ";
    for (const bool on : {p.Fade, p.Rotate, p.Zoom, p.Slide, p.Blur, p.AutoEdge, p.ClampEdge}) text += on ? "1" : "0";
    return text;
}

TEST_F(SettingsDialogTest, OpeningBringsTheRecordIntoLine) {
    const struct {
        Values stored;
        const char* switches;
        Values shown;
        const char* expected;
    } cases[] = {
        {{25, 0, 10, 10, 0, 0, 2}, "fzb", {25, 0, 10, 10, 0, 0, 2}, "fzb"},
        {{256, -1, 0, 0, -7, 3, 10}, "f", {256, -1, 0, 0, -7, 3, 10}, "frsb"},
        {{129, 7, -300, 21, INT32_MIN, 99, 0}, "", {256, 7, -20, 20, -20, 20, 1}, "frzsb"},
        {{127, 1, 0, -1, 0, 1, 2}, "", {127, 1, 0, -1, 0, 1, 2}, "frzsb"},
        {{0, 0, 0, 0, 0, 0, 11}, "frzsb", {0, 0, 0, 0, 0, 0, 10}, "b"},
    };
    for (const auto& c : cases) {
        Fill(model_.effects, c.stored, c.switches);
        VizEffectParams expected;
        Fill(expected, c.shown, c.expected);
        Open();
        // Frames may be drawn between any two of the messages: none makes up a value.
        MSG message;
        while (PeekMessageA(&message, window_, kMessageValueChanged, kMessageValueChanged, PM_REMOVE)) {
            DispatchMessageA(&message);
            const auto isOneOf = [](int32_t value, int32_t stored, int32_t shown) {
                return value == stored || value == shown;
            };
            EXPECT_TRUE(isOneOf(model_.effects.ZoomY, c.stored[3], c.shown[3])) << model_.effects.ZoomY;
            EXPECT_TRUE(isOneOf(model_.effects.SlideY, c.stored[5], c.shown[5])) << model_.effects.SlideY;
        }
        ServeMessages();
        EXPECT_EQ(Text(model_.effects), Text(expected));
        dialog_.RefreshControls();
        ServeMessages();
        EXPECT_EQ(Text(model_.effects), Text(expected)) << "once more";
        dialog_.CloseWindow();
        EXPECT_EQ(Text(model_.effects), Text(expected)) << "closed";
    }
    EXPECT_EQ(owner_.closed, 0) << "the owner closed it";
    Open();
    ServeMessages();
    const std::string before = Text(model_.effects);
    SendMessageA(window_, kMessageValueChanged, 5, MAKELPARAM(7, 7));
    EXPECT_EQ(Text(model_.effects), before) << "no such control";
}

TEST_F(SettingsDialogTest, ShowsWhatIsStoredAndResetsTheEffectsAlone) {
    model_.offersAlwaysOnTop = true;
    model_.frameRate = 27;
    Open();
    EXPECT_EQ(IsDlgButtonChecked(window_, IDC_RANDOMIZE), UINT{BST_CHECKED});
    EXPECT_EQ(IsDlgButtonChecked(window_, IDC_ALWAYS_ON_TOP), UINT{BST_UNCHECKED});
    EXPECT_TRUE(IsWindowVisible(Item(IDC_ALWAYS_ON_TOP)));
    EXPECT_FALSE(IsWindowVisible(Item(IDC_FADE))) << "a placeholder";
    EXPECT_EQ(SendMessageA(Item(IDC_FRAME_RATE), TBM_GETPOS, 0, 0), 27);

    model_.effects.ZoomX = -9;
    dialog_.RefreshControls();
    ServeMessages();
    const Picture changed(ControlAt(IDC_ZOOM));
    Press(IDC_RESET);
    EXPECT_NE(Picture(ControlAt(IDC_ZOOM)).pixels, changed.pixels);
    EXPECT_EQ(model_.effects.ZoomX, 10);
    EXPECT_TRUE(model_.randomize);
    EXPECT_EQ(model_.frameRate, 27u);

    dialog_.CloseWindow();
    model_.offersAlwaysOnTop = false;
    Open();
    EXPECT_FALSE(IsWindowVisible(Item(IDC_ALWAYS_ON_TOP)));
}

// From On/Off on, one Tab at a time, as a user without a mouse goes through the dialog.
TEST_F(SettingsDialogTest, TheKeyboardAloneReachesEverySetting) {
    model_.offersAlwaysOnTop = true;
    Fill(model_.effects, {90, 7, -5, 4, 2, -2, 9}, "frzsb");
    TestContext context;
    model_.path = TestPluginPath("Good2.tkv");
    model_.plugin = std::make_unique<CVizPlugin>(model_.path.c_str());
    model_.plugin->Load();
    Open();
    ServeMessages();
    context.Take();
    const auto key = [](UINT virtualKey) {
        for (const BOOL down : {TRUE, FALSE}) {
            TdkpFeedKey(GetFocus(), down, virtualKey, 0);
            TdkpDispatchMessages();
        }
    };
    const struct {
        const char* name;
        HWND window;
        std::vector<UINT> keys;
    } stops[] = {
        {"on/off", Item(IDC_ON_OFF), {VK_SPACE}},
        {"reset", Item(IDC_RESET), {VK_SPACE}},
        {"fade", ControlAt(IDC_FADE), {VK_RIGHT, VK_RIGHT, VK_UP}},
        {"rotate", ControlAt(IDC_ROTATE), {VK_END}},
        {"zoom", ControlAt(IDC_ZOOM), {VK_LEFT, VK_NEXT, VK_UP}},
        {"slide", ControlAt(IDC_SLIDE), {VK_HOME, VK_PRIOR, VK_DOWN}},
        {"blur", ControlAt(IDC_BLUR), {VK_RIGHT}},
        {"randomize", Item(IDC_RANDOMIZE), {VK_SPACE}},
        {"DirectDraw", Item(IDC_USE_DIRECTDRAW), {VK_SPACE}},
        {"frame rate", Item(IDC_FRAME_RATE), {VK_HOME, VK_RIGHT}},
        {"configure", Item(IDC_CONFIGURE), {VK_SPACE}},
        {"always on top", Item(IDC_ALWAYS_ON_TOP), {VK_SPACE}},
        {"help", Item(IDC_HELP_TOPIC), {VK_SPACE}},
    };
    for (const auto& stop : stops) {
        EXPECT_EQ(GetFocus(), stop.window) << stop.name;
        for (const UINT virtualKey : stop.keys) key(virtualKey);
        key(VK_TAB);
    }
    EXPECT_EQ(GetFocus(), Item(IDC_CLOSE));
    EXPECT_EQ(Text(model_.effects), "27 20 9 -19 20 -19 3 1111110");
    EXPECT_EQ(context.Take(), CallLog{"Configure record"});
    EXPECT_TRUE(model_.effectsOn && !model_.randomize && model_.directDraw && model_.alwaysOnTop);
    EXPECT_EQ(model_.frameRate, 11u);
    EXPECT_EQ(owner_.helped, 1);
    key(VK_ESCAPE);
    EXPECT_EQ(owner_.closed, 1);
    model_.plugin.reset();
}

TEST_F(SettingsDialogTest, NameAndConfigureFollowThePlugin) {
    TestContext context;
    Open();
    const auto configurable = [this] { return IsWindowEnabled(Item(IDC_CONFIGURE)) != FALSE; };
    EXPECT_EQ(Name(), "None Selected");
    EXPECT_FALSE(configurable());
    const auto choose = [this](const char* file) {
        model_.path = TestPluginPath(file);
        model_.plugin = std::make_unique<CVizPlugin>(model_.path.c_str());
        dialog_.RefreshControls();
    };
    choose("Good2.tkv");
    EXPECT_EQ(Name(), "Good two");
    EXPECT_TRUE(configurable());
    context.Take();
    Press(IDC_CONFIGURE);
    EXPECT_EQ(context.Take(), CallLog{}) << "not in memory";
    model_.plugin->Load();
    context.Take();
    Press(IDC_CONFIGURE);
    EXPECT_EQ(context.Take(), CallLog{"Configure record"});
    choose("Probe.tkv");
    EXPECT_EQ(Name(), "Probe");
    EXPECT_FALSE(configurable());
    model_.path = "gone";
    dialog_.RefreshControls();
    EXPECT_EQ(Name(), "Probe") << "stays as it was";
    EXPECT_FALSE(configurable());
    Press(IDC_CONFIGURE);
    model_.plugin.reset();
}

TEST_F(SettingsDialogTest, TheLampFollowsTheSwitch) {
    Open();
    const Picture dark(Item(IDC_LAMP));
    const COLORREF face = GetSysColor(COLOR_3DFACE);
    EXPECT_EQ(dark.At(0, 0), DWORD{RGB(GetBValue(face), GetGValue(face), GetRValue(face))});
    Press(IDC_ON_OFF);
    EXPECT_NE(Picture(Item(IDC_LAMP)).pixels, dark.pixels);
    Press(IDC_ON_OFF);
    EXPECT_EQ(Picture(Item(IDC_LAMP)).pixels, dark.pixels);
}

TEST_F(SettingsDialogTest, EndsInEveryWayAndOpensAgain) {
    const std::vector<std::function<void()>> ends = {
        [this] { Press(IDC_CLOSE); },
        [this] { PostMessageA(window_, WM_CLOSE, 0, 0), ServeMessages(); },
        [this] { SendMessageA(window_, WM_COMMAND, IDCANCEL, 0); },
        [this] { SendMessageA(window_, WM_COMMAND, IDOK, 0); },
        [this] { DestroyWindow(window_); },  // as with its parent
    };
    Open();
    dialog_.CloseWindow();
    EXPECT_EQ(owner_.closed, 0);
    ServeMessages();
    {
        const NothingLeft nothingLeft;
        int closed = 0;
        for (int round = 0; round < 6; ++round) {
            for (const auto& end : ends) {
                Open();
                if (round % 2) ServeMessages();
                end();
                EXPECT_EQ(owner_.closed, ++closed);
                EXPECT_FALSE(dialog_.IsOpen());
                EXPECT_FALSE(IsWindow(window_));
                dialog_.CloseWindow();
                dialog_.RefreshControls();
                dialog_.BringToTop();
                ServeMessages();
            }
        }
    }
    // No template, no window, and nothing else. No module is not this program, which has a template of that number.
    const HMODULE empty = LoadLibraryA(TestPluginPath("Good2.tkv").c_str());
    ASSERT_TRUE(empty);
    for (const HMODULE instance : {empty, HMODULE{nullptr}}) {
        dialog_.OpenWindow(instance, nullptr);
        EXPECT_FALSE(dialog_.IsOpen());
    }
    dialog_.OpenWindow(GetModuleHandleA(nullptr), nullptr);
    EXPECT_TRUE(dialog_.IsOpen());
    FreeLibrary(empty);
}

// Whoever is called by the dialog may end it there and then, and its window may still be told something.
TEST_F(SettingsDialogTest, WhatItCallsMayEndIt) {
    std::unique_ptr<CVizSettingsDialog> doomed;
    const auto end = [&] {
        doomed.reset();
        SendMessageA(window_, kMessageValueChanged, kZoomControl, MAKELPARAM(3, 3));
    };
    const auto command = [this](int id) { SendMessageA(window_, WM_COMMAND, static_cast<WPARAM>(id), 0); };
    const struct {
        const char* name;
        std::function<void()> act;
    } cases[] = {
        {"close", [&] { command(IDC_CLOSE); }},
        {"with its parent", [&] { DestroyWindow(window_); }},
        {"help", [&] { command(IDC_HELP_TOPIC); }},
        {"on/off", [&] { Press(IDC_ON_OFF); }},
        {"always on top", [&] { Press(IDC_ALWAYS_ON_TOP); }},
        {"configure", [&] { command(IDC_CONFIGURE); }},
        {"reset", [&] { Press(IDC_RESET); }},
        {"refresh", [&] { SendMessageA(window_, kMessageRefresh, 0, 0); }},
        {"opening", [&] { doomed->OpenWindow(module_, nullptr); }},
    };
    model_.path = "some plug-in";
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        doomed = std::make_unique<CVizSettingsDialog>(&owner_, &model_);
        if (c.name != std::string("opening")) {
            doomed->OpenWindow(module_, nullptr);
            window_ = FindWindowExA(nullptr, nullptr, nullptr, "Visualization Settings");
        }
        model_.onCall = owner_.onClosed = end;
        c.act();
        model_.onCall = owner_.onClosed = nullptr;
        EXPECT_FALSE(doomed);
        EXPECT_FALSE(IsWindow(window_));
        ServeMessages();
    }
    EXPECT_FALSE(FindWindowExA(nullptr, nullptr, nullptr, "Visualization Settings"));
}

}  // namespace
}  // namespace tdkviz::test
