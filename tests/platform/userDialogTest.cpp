// Dialogs from templates and their controls, on the memory display.
#include <gtest/gtest.h>
#include <windows.h>

#include <commctrl.h>
#include <tdkplatform.h>

#include <cstdlib>

#include "src/settings/resources/resource.h"
#include "tests/platform/dialogSupport.h"
#include "tests/platform/userSupport.h"
#include "tests/staged/NothingLeft.h"

using namespace dialogtest;
using tdkviz::test::Picture;

namespace {

// The settings dialog, as its program makes it: shown, with a control that is disabled and one that is hidden.
class UserDialog : public testing::Test {
protected:
    void Open() {
        current = this;
        Show(CreateDialogParamA(addOn, MAKEINTRESOURCEA(IDD_SETTINGS), nullptr, Procedure, 77));
    }
    void Open(const Template& form, HWND parent = nullptr) {
        current = this;
        Show(CreateDialogIndirectParamA(nullptr, form.Get(), parent, Procedure, 77));
    }
    void Show(HWND made) {
        dialog = made;
        ASSERT_NE(dialog, nullptr);
        EnableWindow(Item(IDC_CONFIGURE), FALSE);
        ShowWindow(dialog, SW_SHOW);
        Serve();
    }
    void TearDown() override {
        if (IsWindow(dialog)) DestroyWindow(dialog);
        unsetenv("TDKVIZ_DPI");
        Serve();
        FreeLibrary(addOn);
    }

    HWND Item(int id) const { return GetDlgItem(dialog, id); }
    int Focus() const { return GetDlgCtrlID(GetFocus()); }
    // In the dialog's client area.
    RECT PlaceOf(HWND window) const {
        RECT place;
        GetWindowRect(window, &place);
        POINT corner = {0, 0};
        ClientToScreen(dialog, &corner);
        OffsetRect(&place, -corner.x, -corner.y);
        return place;
    }
    static void Serve() { TdkpDispatchMessages(); }
    void Key(UINT key, UINT character = 0) {
        TdkpFeedKey(dialog, TRUE, key, character), Serve();
        TdkpFeedKey(dialog, FALSE, key, 0), Serve();
    }
    void KeyWith(UINT modifier, UINT key, UINT character = 0) {
        TdkpFeedKey(dialog, TRUE, modifier, 0), Serve();
        Key(key, character);
        TdkpFeedKey(dialog, FALSE, modifier, 0), Serve();
    }
    void Mouse(HWND window, UINT message, int x, int y) {
        TdkpFeedMouse(window, message, message == WM_LBUTTONUP ? 0 : MK_LBUTTON, x, y), Serve();
    }

    // What the procedure was told since the last look: identifiers of commands, or codes and positions.
    std::vector<int> TakeCommands() { return std::exchange(commands, {}); }
    std::vector<std::pair<int, int>> TakeScrolls() { return std::exchange(scrolls, {}); }

    const HMODULE addOn = LoadLibraryA(STAGE_DIR "/tdkviz.so");
    HWND dialog = nullptr;
    std::vector<int> commands;
    std::vector<std::pair<int, int>> scrolls;
    HWND first = nullptr;
    LPARAM parameter = 0;
    INT_PTR initResult = TRUE;

private:
    static INT_PTR CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
        UserDialog& self = *current;
        switch (message) {
            case WM_INITDIALOG:
                self.first = reinterpret_cast<HWND>(wParam);
                self.parameter = lParam;
                SendDlgItemMessageA(window, IDC_FRAME_RATE, TBM_SETRANGE, FALSE, MAKELPARAM(10, 30));
                if (self.initResult == FALSE) SetFocus(GetDlgItem(window, IDC_RESET));
                return self.initResult;
            case WM_COMMAND:
                return self.commands.push_back(LOWORD(wParam)), TRUE;
            case WM_HSCROLL:
                self.scrolls.emplace_back(LOWORD(wParam),
                                          SendDlgItemMessageA(window, IDC_FRAME_RATE, TBM_GETPOS, 0, 0));
                return TRUE;
            default:
                return FALSE;
        }
    }
    static inline UserDialog* current = nullptr;
};

}  // namespace

TEST_F(UserDialog, UnitsComeFromTheFontAndNoTextIsTooLong) {
    for (const int dpi : {96, 144, 192}) {
        setenv("TDKVIZ_DPI", std::to_string(dpi).c_str(), 1);
        Open();
        const HFONT asked = CreateFontA(-(8 * dpi + 36) / 72, 0, 0, 0, FW_NORMAL, 0, 0, 0, DEFAULT_CHARSET, 0, 0, 0, 0,
                                        "MS Sans Serif");
        const HDC dc = CreateCompatibleDC(nullptr);
        const HGDIOBJ former = SelectObject(dc, asked);
        SIZE letters;
        GetTextExtentPoint32A(dc, "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz", 52, &letters);
        const auto x = [&](LONG units) { return (units * ((letters.cx / 26 + 1) / 2) + 2) / 4; };
        const auto y = [&](LONG units) { return (units * letters.cy + 4) / 8; };
        RECT client;
        GetClientRect(dialog, &client);
        EXPECT_EQ(client.right, x(409)) << dpi;
        EXPECT_EQ(client.bottom, y(226)) << dpi;
        SelectObject(dc, reinterpret_cast<HGDIOBJ>(SendMessageA(dialog, WM_GETFONT, 0, 0)));
        for (const auto& [id, left, top, width] : {std::tuple{IDC_ON_OFF, 24, 30, 35}, {IDC_CLOSE, 353, 205, 48}}) {
            const RECT place = PlaceOf(Item(id));
            EXPECT_EQ(place.left, x(left)) << dpi;
            EXPECT_EQ(place.top, y(top)) << dpi;
            EXPECT_EQ(place.right - place.left, x(width)) << dpi;
        }
        for (HWND control = GetWindow(dialog, GW_CHILD); control; control = GetWindow(control, GW_HWNDNEXT)) {
            char content[100];
            GetWindowTextA(control, content, sizeof content);
            const RECT place = PlaceOf(control);
            RECT text = {0, 0, 0, 0};
            DrawTextA(dc, content, -1, &text, DT_SINGLELINE | DT_CALCRECT);
            const bool isCheckBox = (GetWindowLongPtrA(control, GWL_STYLE) & 0xF) == BS_AUTOCHECKBOX;
            if (control == Item(IDC_LAMP)) continue;
            EXPECT_LE(text.right + (isCheckBox ? (13 + 4) * dpi / 96 : 0), place.right - place.left) << content << dpi;
            EXPECT_LE(text.bottom, place.bottom - place.top) << content;
        }
        DeleteObject(SelectObject(dc, former));
        DeleteDC(dc);
        DeleteObject(asked);
        DestroyWindow(dialog);
    }
}

TEST_F(UserDialog, FirstTellsWhoGetsTheFocus) {
    Open();
    EXPECT_EQ(first, Item(IDC_ON_OFF));
    EXPECT_EQ(parameter, 77);
    EXPECT_EQ(Focus(), IDC_ON_OFF);
    DestroyWindow(dialog);
    initResult = FALSE;
    Open();
    EXPECT_EQ(Focus(), IDC_RESET) << "the program's own choice";
    // Away and back: the dialog remembers.
    usertest::TestClass windows;
    const HWND other = windows.Make(WS_POPUP | WS_VISIBLE);
    EXPECT_EQ(GetFocus(), other);
    BringWindowToTop(dialog);
    EXPECT_EQ(Focus(), IDC_RESET);
    DestroyWindow(other);
}

TEST_F(UserDialog, OpensInTheMiddleOfItsParent) {
    usertest::TestClass windows;
    const HWND parent = windows.Make(WS_POPUP | WS_VISIBLE, nullptr, 400, 300);
    SetWindowPos(parent, nullptr, 100, 50, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
    constexpr TemplateItem kOne[] = {{IDC_ON_OFF, "BUTTON", "&One", kPush, 4, 4, 40, 14}};
    for (const auto& [style, corner] : {std::pair<DWORD, SHORT>{0, 0}, {DS_CENTER, 20}}) {
        Open(Template(WS_POPUP | DS_SETFONT | style, corner, corner, 60, 40, kOne), parent);
        RECT place;
        GetWindowRect(dialog, &place);
        EXPECT_NEAR(place.left + place.right, 100 + 500, 1);
        EXPECT_NEAR(place.top + place.bottom, 50 + 350, 1);
        EXPECT_EQ(GetParent(dialog), parent);
        DestroyWindow(dialog);
    }
    DestroyWindow(parent);
}

TEST_F(UserDialog, ABrokenTemplateLeavesNothing) {
    const tdkviz::test::NothingLeft nothingLeft;
    constexpr TemplateItem kUnknown[] = {{IDC_ON_OFF, "BUTTON", "&One", kPush, 4, 4, 40, 14},
                                         {2, "NoSuchClass", "", kPush, 4, 4, 40, 14}};
    const Template form(WS_POPUP | DS_SETFONT, 0, 0, 60, 40, kUnknown);
    EXPECT_EQ(CreateDialogIndirectParamA(
                  nullptr, form.Get(), nullptr, [](HWND, UINT, WPARAM, LPARAM) -> INT_PTR { return FALSE; }, 0),
              nullptr);
}

TEST_F(UserDialog, TabAndArrowsGoThroughTheControls) {
    Open();
    for (const int next : {IDC_RESET, IDC_RANDOMIZE, IDC_USE_DIRECTDRAW, IDC_FRAME_RATE, IDC_HELP_TOPIC, IDC_CLOSE,
                           IDC_ON_OFF, IDC_RESET}) {
        Key(VK_TAB);
        EXPECT_EQ(Focus(), next);
    }
    for (const int next : {IDC_ON_OFF, IDC_CLOSE, IDC_HELP_TOPIC, IDC_FRAME_RATE}) {
        KeyWith(VK_SHIFT, VK_TAB);
        EXPECT_EQ(Focus(), next) << "backwards";
    }
    struct Case {
        int from;
        UINT key;
        int to;
    };
    for (const Case& test : {Case{IDC_ON_OFF, VK_DOWN, IDC_RESET},
                             {IDC_ON_OFF, VK_UP, IDC_RESET},
                             {IDC_RESET, VK_RIGHT, IDC_ON_OFF},
                             {IDC_RANDOMIZE, VK_RIGHT, IDC_USE_DIRECTDRAW},
                             {IDC_USE_DIRECTDRAW, VK_DOWN, IDC_RANDOMIZE},
                             {IDC_FRAME_RATE, VK_RIGHT, IDC_FRAME_RATE},
                             {IDC_HELP_TOPIC, VK_LEFT, IDC_CLOSE}}) {
        SetFocus(Item(test.from));
        Key(test.key);
        EXPECT_EQ(Focus(), test.to) << test.from;
    }
    SetFocus(Item(IDC_ON_OFF));
    EnableWindow(Item(IDC_ON_OFF), FALSE);
    Key(VK_TAB);
    EXPECT_EQ(Focus(), IDC_RESET) << "nobody had the focus";
}

TEST_F(UserDialog, KeysGiveCommands) {
    Open();
    struct Case {
        const char* name;
        int from;
        UINT modifier, key, character;
        std::vector<int> commands;
        int focus;
    };
    const Case cases[] = {
        {"Enter presses the push button", IDC_HELP_TOPIC, 0, VK_RETURN, '\r', {IDC_HELP_TOPIC}, IDC_HELP_TOPIC},
        {"Enter elsewhere", IDC_RANDOMIZE, 0, VK_RETURN, '\r', {IDOK}, IDC_RANDOMIZE},
        {"Escape", IDC_FRAME_RATE, 0, VK_ESCAPE, 27, {IDCANCEL}, IDC_FRAME_RATE},
        {"Space", IDC_RESET, 0, VK_SPACE, ' ', {IDC_RESET}, IDC_RESET},
        {"Space checks", IDC_RANDOMIZE, 0, VK_SPACE, ' ', {IDC_RANDOMIZE}, IDC_RANDOMIZE},
        {"marked letter with Alt", IDC_RESET, VK_MENU, 'O', 'o', {IDC_ON_OFF}, IDC_ON_OFF},
        {"alone, and capital", IDC_FRAME_RATE, 0, 'H', 'H', {IDC_HELP_TOPIC}, IDC_HELP_TOPIC},
        {"in the middle of a text", IDC_FRAME_RATE, 0, 'A', 'a', {IDC_RANDOMIZE}, IDC_RANDOMIZE},
        {"of a disabled control", IDC_FRAME_RATE, VK_MENU, 'N', 'n', {}, IDC_FRAME_RATE},
        {"of a hidden control", IDC_FRAME_RATE, 0, 'M', 'm', {}, IDC_FRAME_RATE},
        {"unmarked letter", IDC_FRAME_RATE, 0, 'S', 's', {}, IDC_FRAME_RATE},
    };
    for (const Case& test : cases) {
        SetFocus(Item(test.from));
        test.modifier != 0 ? KeyWith(test.modifier, test.key, test.character) : Key(test.key, test.character);
        EXPECT_EQ(TakeCommands(), test.commands) << test.name;
        EXPECT_EQ(Focus(), test.focus) << test.name;
    }
    EXPECT_EQ(IsDlgButtonChecked(dialog, IDC_RANDOMIZE), UINT{BST_UNCHECKED}) << "checked twice";
    TdkpFeedClose(dialog);
    Serve();
    EXPECT_EQ(TakeCommands(), std::vector<int>{IDCANCEL});
    SetFocus(Item(IDC_HELP_TOPIC));
    KeyWith(VK_MENU, VK_F4);
    EXPECT_EQ(TakeCommands(), std::vector<int>{IDCANCEL});
    EXPECT_TRUE(IsWindow(Item(IDC_HELP_TOPIC)));
}

TEST_F(UserDialog, TheDefaultButtonIsTheOneThatEnterPresses) {
    constexpr TemplateItem kButtons[] = {{10, "BUTTON", "&Check", kCheck, 4, 4, 40, 14},
                                         {11, "BUTTON", "&Push", kPush, 4, 20, 40, 14},
                                         {12, "BUTTON", "&Default", kDefault, 4, 40, 40, 14}};
    Open(Template(WS_POPUP | WS_VISIBLE | DS_SETFONT, 0, 0, 60, 60, kButtons));
    const DWORD frame = GetSysColor(COLOR_WINDOWFRAME);
    for (const auto& [focus, pressed] : {std::pair{10, 12}, {11, 11}, {12, 12}}) {
        SetFocus(Item(focus));
        Key(VK_RETURN, '\r');
        EXPECT_EQ(TakeCommands(), std::vector<int>{pressed});
        for (const int id : {11, 12}) EXPECT_EQ(Picture(Item(id)).At(0, 0) == frame, id == pressed) << focus;
    }
}

TEST_F(UserDialog, CheckBoxesInsideAGroupBoxAreSeenAndCheckThemselves) {
    Open();
    const RECT box = PlaceOf(Item(IDC_USE_DIRECTDRAW));
    const auto isChecked = [&] {
        const Picture seen(dialog);
        int dark = 0;
        for (int i = 3; i < 10; ++i) dark += seen.At(box.left + i, (box.top + box.bottom) / 2) == 0;
        return dark > 0;
    };
    EXPECT_FALSE(isChecked());
    Mouse(dialog, WM_LBUTTONDOWN, box.left + 5, box.top + 5);
    Mouse(dialog, WM_LBUTTONUP, box.left + 5, box.top + 5);
    EXPECT_EQ(TakeCommands(), std::vector<int>{IDC_USE_DIRECTDRAW});
    EXPECT_EQ(IsDlgButtonChecked(dialog, IDC_USE_DIRECTDRAW), UINT{BST_CHECKED});
    EXPECT_TRUE(isChecked());
    CheckDlgButton(dialog, IDC_USE_DIRECTDRAW, BST_UNCHECKED);
    Serve();
    EXPECT_FALSE(isChecked());
    EXPECT_TRUE(TakeCommands().empty()) << "the program's own doing";
}

TEST_F(UserDialog, TheSliderMovesByKeysAndMouse) {
    Open();
    const HWND slider = Item(IDC_FRAME_RATE);
    EXPECT_EQ(SendMessageA(slider, TBM_GETPOS, 0, 0), 10) << "brought into the range";
    SetFocus(slider);
    SendMessageA(slider, TBM_SETPOS, TRUE, 20);
    EXPECT_TRUE(TakeScrolls().empty());
    struct Case {
        UINT key;
        int code, position;
    };
    for (const Case& test : {Case{VK_RIGHT, TB_LINEDOWN, 21},
                             {VK_UP, TB_LINEUP, 20},
                             {VK_PRIOR, TB_PAGEUP, 16},
                             {VK_NEXT, TB_PAGEDOWN, 20},
                             {VK_HOME, TB_TOP, 10},
                             {VK_LEFT, TB_LINEUP, 10},
                             {VK_END, TB_BOTTOM, 30},
                             {VK_DOWN, TB_LINEDOWN, 30}}) {
        Key(test.key);
        const std::vector<std::pair<int, int>> told = {{test.code, test.position}, {TB_ENDTRACK, test.position}};
        EXPECT_EQ(TakeScrolls(), told) << test.key;
    }
    RECT client;
    GetClientRect(slider, &client);
    const int y = client.bottom / 2;
    Mouse(slider, WM_LBUTTONDOWN, client.right - 8, y);
    Mouse(slider, WM_MOUSEMOVE, client.right / 2, y);
    EXPECT_NEAR(static_cast<int>(SendMessageA(slider, TBM_GETPOS, 0, 0)), 20, 1);
    Mouse(slider, WM_MOUSEMOVE, -500, y + 500);
    Mouse(slider, WM_LBUTTONUP, -500, y + 500);
    const auto drag = TakeScrolls();
    ASSERT_EQ(drag.size(), 4u);
    EXPECT_EQ(drag[1], std::make_pair(TB_THUMBTRACK, 10));
    EXPECT_EQ(drag[2], std::make_pair(TB_THUMBPOSITION, 10));
    EXPECT_EQ(drag[3], std::make_pair(TB_ENDTRACK, 10));
    Mouse(slider, WM_LBUTTONDOWN, client.right / 2, y);
    Mouse(slider, WM_LBUTTONUP, client.right / 2, y);
    EXPECT_EQ(TakeScrolls().front(), std::make_pair(TB_PAGEDOWN, 14)) << "beside the thumb";
    EXPECT_EQ(GetCapture(), nullptr);
}

TEST_F(UserDialog, StaticsShowTextsAndBitmaps) {
    Open();
    const DWORD face = GetSysColor(COLOR_3DFACE);
    EXPECT_EQ(Picture(Item(IDC_PLUGIN_NAME)).FirstOtherThan(face), -1);
    SetDlgItemTextA(dialog, IDC_PLUGIN_NAME, "None Selected");
    Serve();
    EXPECT_NE(Picture(Item(IDC_PLUGIN_NAME)).FirstOtherThan(face), -1);
    const HDC screen = GetDC(nullptr);
    const HBITMAP lamp = CreateCompatibleBitmap(screen, 13, 11);
    ReleaseDC(nullptr, screen);
    EXPECT_NE(SendDlgItemMessageA(dialog, IDC_LAMP, STM_SETIMAGE, IMAGE_BITMAP, reinterpret_cast<LPARAM>(lamp)), 0)
        << "the template's own";
    Serve();
    const Picture seen(Item(IDC_LAMP));
    EXPECT_EQ(seen.width, 13);
    EXPECT_EQ(seen.height, 11);
    EXPECT_EQ(seen.FirstOtherThan(0), -1);
    EXPECT_EQ(SendDlgItemMessageA(dialog, IDC_LAMP, STM_SETIMAGE, IMAGE_BITMAP, 0), reinterpret_cast<LRESULT>(lamp));
    DeleteObject(lamp);
}

TEST(UserEdge, AChildWithAnEdgeHasASmallerClientArea) {
    usertest::TestClass windows(0, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
    const HWND parent = windows.Make(WS_POPUP | WS_VISIBLE, nullptr, 100, 80);
    CreateWindowExA(WS_EX_CLIENTEDGE, usertest::TestClass::kName, "", WS_CHILD | WS_VISIBLE, 10, 20, 30, 24, parent,
                    nullptr, GetModuleHandleA(nullptr), nullptr);
    tdkviz::test::ServeMessages();
    const Picture seen(parent);
    const DWORD across[] = {GetSysColor(COLOR_BTNSHADOW), GetSysColor(COLOR_3DDKSHADOW), 0xFFFFFF};
    for (int x = 0; x < 3; ++x) EXPECT_EQ(seen.At(10 + x, 25), across[x]) << x;
    EXPECT_EQ(seen.At(10 + 27, 25), 0xFFFFFFu);
    EXPECT_EQ(seen.At(10 + 28, 25), GetSysColor(COLOR_3DLIGHT));
    TdkpFeedMouse(parent, WM_LBUTTONDOWN, MK_LBUTTON, 12, 25);
    tdkviz::test::ServeMessages();
    EXPECT_EQ(windows.Take({WM_LBUTTONDOWN}).at(0).lParam, MAKELPARAM(0, 3));
    DestroyWindow(parent);
}
