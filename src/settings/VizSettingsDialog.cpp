#include "src/settings/VizSettingsDialog.h"

#include <commctrl.h>

#include "src/plugins/VizPlugin.h"
#include "src/settings/resources/resource.h"
#include "src/support/ResourceAccess.h"

namespace tdkviz {

namespace {

constexpr uint32_t kLongestText = 260;
constexpr int32_t kLowestRate = 10;
constexpr int32_t kHighestRate = 30;

struct ControlTraits {
    int placeholder;
    uint32_t axes;
    int32_t minX, maxX, minY, maxY;
    uint32_t snapX, snapY;
};

constexpr uint32_t kOneScale = VizEffectControl::kAxisX;
constexpr uint32_t kTwoScales = VizEffectControl::kAxisX | VizEffectControl::kAxisY;
constexpr uint32_t kSnapAll = kSnapCentre | kSnapMinimum | kSnapMaximum;

// In the order of EffectControlId.
constexpr ControlTraits kControls[kEffectControlCount] = {
    {IDC_FADE, kOneScale, 0, 128, 0, 100, 0, 0},
    {IDC_ROTATE, kOneScale, -20, 20, 0, 100, kSnapAll, 0},
    {IDC_ZOOM, kTwoScales, -20, 20, -20, 20, kSnapAll, kSnapAll},
    {IDC_SLIDE, kTwoScales, -20, 20, -20, 20, kSnapAll, kSnapAll},
    {IDC_BLUR, kOneScale, 1, 10, 0, 100, 0, 0},
};

// The picture of a slide follows its arrow, the source the other way.
int32_t SlideArrow(int32_t slide) {
    return slide == INT32_MIN ? INT32_MAX : -slide;
}

// Lets the lamp sit on the dialog's own background.
void PrepareLamp(HBITMAP lamp) {
    BITMAP size = {};
    if (!lamp || !GetObjectA(lamp, sizeof size, &size)) return;
    const HDC memory = CreateCompatibleDC(nullptr);
    const HGDIOBJ earlier = SelectObject(memory, lamp);
    const COLORREF background = GetPixel(memory, 0, 0);
    const COLORREF face = GetSysColor(COLOR_3DFACE);
    for (int y = 0; y < size.bmHeight; ++y) {
        for (int x = 0; x < size.bmWidth; ++x) {
            if (GetPixel(memory, x, y) == background) SetPixel(memory, x, y, face);
        }
    }
    SelectObject(memory, earlier);
    DeleteDC(memory);
}

// The keyboard reaches the control where its placeholder stands in the order.
void MakeTabStop(HWND control, HWND placeholder) {
    SetWindowLongPtrA(control, GWL_STYLE, GetWindowLongPtrA(control, GWL_STYLE) | WS_TABSTOP);
    SetWindowPos(control, placeholder, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
}

// The picture stands before the host serves its messages for the first time.
void PaintNow(HWND window) {
    UpdateWindow(window);
    for (HWND child = GetWindow(window, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT)) UpdateWindow(child);
}

}  // namespace

CVizSettingsDialog::CVizSettingsDialog(DialogOwner* owner, SettingsModel* manager) : Owner(owner), Manager(manager) {}

CVizSettingsDialog::~CVizSettingsDialog() {
    CloseWindow();
    if (LampOn) DeleteObject(LampOn);
    if (LampOff) DeleteObject(LampOff);
}

void CVizSettingsDialog::OpenWindow(HMODULE instance, HWND parent) {
    if (!instance) return;  // it would stand for the program, whose template of that number is another one
    InitCommonControls();
    // What opens it asks plug-ins, whose code may end it again: only the window is touched from here on.
    const HWND window = CreateDialogParamA(instance, MAKEINTRESOURCEA(IDD_SETTINGS), parent, DialogProc,
                                           reinterpret_cast<LPARAM>(this));
    if (!window || !IsWindow(window)) return;
    ShowWindow(window, SW_SHOW);
    BringWindowToTop(window);
    SetFocus(GetDlgItem(window, IDC_ON_OFF));
    PaintNow(window);
}

void CVizSettingsDialog::BringToTop() {
    if (const HWND window = DialogWindow) BringWindowToTop(window);
}

void CVizSettingsDialog::CloseWindow() {
    if (const HWND window = DialogWindow.Exchange(nullptr)) SendMessageA(window, kMessageEnd, 0, 0);
}

void CVizSettingsDialog::OnInit(HWND window) {
    SetWindowLongPtrA(window, DWLP_USER, reinterpret_cast<LONG_PTR>(this));
    DialogWindow = window;
    LoadLamps();
    PreviewEngine = std::make_unique<VizEffectEngine>();
    MakeControls();
    SendDlgItemMessageA(window, IDC_FRAME_RATE, TBM_SETRANGE, FALSE, MAKELPARAM(kLowestRate, kHighestRate));
    if (Manager->IsAlwaysOnTopOffered()) ShowWindow(GetDlgItem(window, IDC_ALWAYS_ON_TOP), SW_SHOW);
    RefreshControls();
}

// Comes for every end of the window. When the user or the owner ends it, DialogWindow is null by now. What the
// window is told after this finds no dialog: the owner may have ended it.
void CVizSettingsDialog::OnDestroy(HWND window) {
    SetWindowLongPtrA(window, DWLP_USER, 0);
    const bool untold = DialogWindow.Exchange(nullptr) != nullptr;
    for (auto& control : EffectControls) control.reset();
    PreviewEngine.reset();
    if (untold) Owner->DialogClosed();
}

void CVizSettingsDialog::LoadLamps() {
    const auto load = [](HBITMAP& lamp, uint32_t id) {
        if (lamp) return;
        lamp = LoadResourceBitmap(id);
        PrepareLamp(lamp);
    };
    load(LampOn, AddOnResource(IDB_LAMP_LIT));
    load(LampOff, AddOnResource(IDB_LAMP_DARK));
}

void CVizSettingsDialog::MakeControls() {
    for (uint32_t id = 0; id < kEffectControlCount; ++id) {
        const ControlTraits& traits = kControls[id];
        RECT place = {};
        GetWindowRect(GetDlgItem(DialogWindow, traits.placeholder), &place);
        POINT from = {place.left, place.top};
        POINT to = {place.right, place.bottom};
        ScreenToClient(DialogWindow, &from);
        ScreenToClient(DialogWindow, &to);
        auto control = std::make_unique<VizEffectControl>();
        control->Create(id, DialogWindow, from.x, from.y, to.x - from.x, to.y - from.y);
        control->Axes = traits.axes;
        control->SnapX = traits.snapX;
        control->SnapY = traits.snapY;
        MakeTabStop(control->Window, GetDlgItem(DialogWindow, traits.placeholder));
        control->SetRanges(traits.minX, traits.maxX, traits.minY, traits.maxY);
        EffectControls[id] = std::move(control);
    }
}

// ---- What it shows

void CVizSettingsDialog::RefreshControls() {
    if (!DialogWindow) return;
    ShowEffects();
    SendDlgItemMessageA(DialogWindow, IDC_FRAME_RATE, TBM_SETPOS, TRUE, static_cast<LPARAM>(Manager->GetFrameRate()));
    ShowSwitches();
    ShowLamp();
    ShowPlugin();
}

bool CVizSettingsDialog::PostRefresh() const {
    const HWND window = DialogWindow;
    if (!window) return true;
    if (GetWindowThreadProcessId(window, nullptr) == GetCurrentThreadId()) return false;
    PostMessageA(window, kMessageRefresh, 0, 0);
    return true;
}

// Each value comes back in a message that stores it again, so the record ends up with what the controls can show.
void CVizSettingsDialog::ShowEffects() {
    const VizEffectParams& effects = Manager->GetUserEffects();
    const auto show = [this](EffectControlId id, int32_t value) {
        EffectControls[id]->SetValue(VizEffectControl::kAxisX, value);
    };
    show(kFadeControl, effects.FadeTime);
    show(kRotateControl, effects.RotateSpeed);
    EffectControls[kZoomControl]->SetValues(effects.ZoomX, effects.ZoomY);
    EffectControls[kSlideControl]->SetValues(SlideArrow(effects.SlideX), SlideArrow(effects.SlideY));
    show(kBlurControl, effects.BlurAmount);
}

void CVizSettingsDialog::ShowSwitches() {
    const auto check = [this](int id, bool on) { CheckDlgButton(DialogWindow, id, on ? BST_CHECKED : BST_UNCHECKED); };
    check(IDC_RANDOMIZE, Manager->IsRandomizeOn());
    check(IDC_USE_DIRECTDRAW, Manager->IsDirectDrawUsed());
    check(IDC_ALWAYS_ON_TOP, Manager->GetAlwaysOnTop() != 0);
}

// The picture that came with the template stays the control's.
void CVizSettingsDialog::ShowLamp() {
    const HBITMAP lamp = Manager->IsEffectsOn() ? LampOn : LampOff;
    if (!lamp) return;
    SendDlgItemMessageA(DialogWindow, IDC_LAMP, STM_SETIMAGE, IMAGE_BITMAP, reinterpret_cast<LPARAM>(lamp));
}

// A plug-in that isn't known yet is loaded for its answers, and its code may end the dialog.
void CVizSettingsDialog::ShowPlugin() {
    const HWND window = DialogWindow;
    const CNQString path = Manager->GetCurrentPluginPath();
    CVizPlugin* plugin = nullptr;
    if (path.IsEmpty()) {
        ShowNoPlugin(window);
    } else {
        plugin = Manager->FindPlugin(path.GetText());
    }
    if (plugin) SetDlgItemTextA(window, IDC_PLUGIN_NAME, plugin->GetName());
    EnableWindow(GetDlgItem(window, IDC_CONFIGURE), plugin && plugin->GetSupportsConfigure());
}

void CVizSettingsDialog::ShowNoPlugin(HWND window) {
    char text[kLongestText] = "";
    LoadResourceString(IDS_NONE_SELECTED, text, sizeof text);
    SetDlgItemTextA(window, IDC_PLUGIN_NAME, text);
}

}  // namespace tdkviz
