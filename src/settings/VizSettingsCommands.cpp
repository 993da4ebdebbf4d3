// What the user does in the settings dialog.
#include "src/settings/VizSettingsDialog.h"

#include <commctrl.h>

#include "src/plugins/VizPlugin.h"
#include "src/render/EffectRandomizer.h"
#include "src/settings/resources/resource.h"

namespace tdkviz {

CVizSettingsDialog* CVizSettingsDialog::Of(HWND window) {
    return reinterpret_cast<CVizSettingsDialog*>(GetWindowLongPtrA(window, DWLP_USER));
}

INT_PTR CALLBACK CVizSettingsDialog::DialogProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_INITDIALOG) return reinterpret_cast<CVizSettingsDialog*>(lParam)->OnInit(window), TRUE;
    CVizSettingsDialog* const dialog = Of(window);
    if (!dialog) return FALSE;
    // What these call may end the dialog: nothing of it is touched behind them.
    switch (message) {
        case WM_CLOSE:
            return dialog->Close(), TRUE;
        case WM_COMMAND:
            return dialog->OnCommand(LOWORD(wParam)) ? FALSE : TRUE;
        case WM_HSCROLL:
            return dialog->OnSlider(), FALSE;
        case WM_DESTROY:
            return dialog->OnDestroy(window), FALSE;
        case kMessageEnd:
            return DestroyWindow(window), TRUE;
        case kMessageValueChanged:
            return dialog->OnValueChanged(static_cast<uint32_t>(wParam), lParam), FALSE;
        case kMessageDrawPicture:
            return dialog->OnDrawPicture(reinterpret_cast<HDC>(wParam), *reinterpret_cast<VizEffectControl*>(lParam)),
                   FALSE;
        case kMessageRefresh:
            return dialog->RefreshControls(), FALSE;
        default:
            return FALSE;
    }
}

// False for an id that no command has.
bool CVizSettingsDialog::OnCommand(WORD id) {
    static constexpr struct {
        WORD id;
        void (CVizSettingsDialog::*run)();
    } kCommands[] = {
        {IDOK, &CVizSettingsDialog::Close},
        {IDCANCEL, &CVizSettingsDialog::Close},
        {IDC_CLOSE, &CVizSettingsDialog::Close},
        {IDC_HELP_TOPIC, &CVizSettingsDialog::Help},
        {IDC_RANDOMIZE, &CVizSettingsDialog::TakeRandomize},
        {IDC_ALWAYS_ON_TOP, &CVizSettingsDialog::TakeAlwaysOnTop},
        {IDC_CONFIGURE, &CVizSettingsDialog::Configure},
        {IDC_USE_DIRECTDRAW, &CVizSettingsDialog::TakeUseDirectDraw},
        {IDC_ON_OFF, &CVizSettingsDialog::SwitchEffects},
        {IDC_RESET, &CVizSettingsDialog::Reset},
    };
    for (const auto& command : kCommands) {
        if (command.id == id) return (this->*command.run)(), true;
    }
    return false;
}

void CVizSettingsDialog::OnSlider() {
    const LRESULT rate = SendDlgItemMessageA(DialogWindow, IDC_FRAME_RATE, TBM_GETPOS, 0, 0);
    Manager->ApplyFrameRate(static_cast<uint32_t>(rate));
}

void CVizSettingsDialog::OnValueChanged(uint32_t id, LPARAM values) {
    StoreEffect(Manager->GetUserEffects(), id, static_cast<int16_t>(LOWORD(values)),
                static_cast<int16_t>(HIWORD(values)));
}

void CVizSettingsDialog::OnDrawPicture(HDC picture, const VizEffectControl& control) {
    if (PreviewEngine) DrawPreview(picture, *PreviewEngine, control.Id, control.ValueX, control.ValueY);
}

bool CVizSettingsDialog::IsChecked(int id) const {
    return IsDlgButtonChecked(DialogWindow, id) == BST_CHECKED;
}

void CVizSettingsDialog::Close() {
    DialogOwner* const owner = Owner;
    CloseWindow();
    owner->DialogClosed();
}

void CVizSettingsDialog::Help() {
    Owner->ShowHelp();
}

// The host hears of the new picture, and may answer by ending the dialog.
void CVizSettingsDialog::SwitchEffects() {
    const HWND window = DialogWindow;
    Manager->SetEffectsOn(!Manager->IsEffectsOn());
    if (CVizSettingsDialog* const dialog = Of(window)) dialog->ShowLamp();
}

void CVizSettingsDialog::Reset() {
    SetDefaultEffects(Manager->GetUserEffects());
    RefreshControls();
}

void CVizSettingsDialog::TakeRandomize() {
    Manager->SetRandomize(IsChecked(IDC_RANDOMIZE));
}

void CVizSettingsDialog::TakeAlwaysOnTop() {
    Manager->SetAlwaysOnTop(IsChecked(IDC_ALWAYS_ON_TOP));
}

void CVizSettingsDialog::TakeUseDirectDraw() {
    Manager->SetUseDirectDraw(IsChecked(IDC_USE_DIRECTDRAW));
}

void CVizSettingsDialog::Configure() {
    const CNQString path = Manager->GetCurrentPluginPath();
    const HWND window = DialogWindow;
    if (path.IsEmpty()) return ShowNoPlugin(window);
    CVizPlugin* plugin = Manager->FindPlugin(path.GetText());
    if (!plugin) return;
    MPAVizWindowRecord parent = {};
    parent.Window = static_cast<uint32_t>(reinterpret_cast<uintptr_t>(window));
    plugin->LockPlugin();
    if (plugin->IsLoaded()) plugin->Configure(&parent);
    plugin->UnlockPlugin();
}

}  // namespace tdkviz
