// CVizSettingsDialog: the one place where the user edits effects, frame rate and display options.
//
// Modeless, driven by the message loop of the thread that opened it. Every change takes effect at once; there is
// nothing to apply or to cancel. The object outlives its window, which can open and close again and again.
// Its sources: VizSettingsDialog.cpp (life, opening, what it shows), VizSettingsCommands.cpp (what it does).
#pragma once

#include <windows.h>

#include <array>
#include <memory>

#include "src/settings/SettingsModel.h"
#include "src/settings/SettingsPreview.h"
#include "src/settings/VizEffectControl.h"
#include "src/support/Relaxed.h"

namespace tdkviz {

// Posted to the dialog's window, for RefreshControls.
inline constexpr UINT kMessageRefresh = WM_APP + 1;
// Sent to the dialog's window, which its own thread alone can destroy.
inline constexpr UINT kMessageEnd = WM_APP + 2;

// What the dialog needs of the component that opened it. On the dialog's thread; either call may end the dialog.
class DialogOwner {
public:
    // The user closed the window, or it went with its parent.
    virtual void DialogClosed() = 0;
    virtual void ShowHelp() = 0;

protected:
    ~DialogOwner() = default;
};

// All on the thread of the dialog, but for PostRefresh, CloseWindow and the destructor.
class CVizSettingsDialog {
public:
    // Both outlive the dialog.
    CVizSettingsDialog(DialogOwner* owner, SettingsModel* manager);
    // Closes the window if it stands.
    ~CVizSettingsDialog();
    CVizSettingsDialog(const CVizSettingsDialog&) = delete;
    CVizSettingsDialog& operator=(const CVizSettingsDialog&) = delete;

    // `instance` holds the dialog's template. The dialog has been drawn once when this comes back. Without
    // an instance or its template no window opens.
    void OpenWindow(HMODULE instance, HWND parent);
    bool IsOpen() const { return DialogWindow != nullptr; }
    void BringToTop();
    // Doesn't tell the owner. From another thread it waits until the dialog's thread serves its messages. [any]
    void CloseWindow();
    // Shows what the manager says now.
    void RefreshControls();
    // Has the dialog's thread refresh when it serves its messages, and waits for nothing. False on that thread
    // itself, where nothing is asked. [any]
    bool PostRefresh() const;

private:
    static INT_PTR CALLBACK DialogProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    // Null once the window's end has begun.
    static CVizSettingsDialog* Of(HWND window);

    void OnInit(HWND window);
    void OnDestroy(HWND window);
    bool OnCommand(WORD id);
    void OnSlider();
    void OnValueChanged(uint32_t id, LPARAM values);
    void OnDrawPicture(HDC picture, const VizEffectControl& control);

    void LoadLamps();
    void MakeControls();
    void ShowEffects();
    void ShowSwitches();
    void ShowLamp();
    void ShowPlugin();
    static void ShowNoPlugin(HWND window);
    bool IsChecked(int id) const;

    // Commands.
    void Close();
    void Help();
    void SwitchEffects();
    void Reset();
    void TakeRandomize();
    void TakeAlwaysOnTop();
    void TakeUseDirectDraw();
    void Configure();

    std::array<std::unique_ptr<VizEffectControl>, kEffectControlCount> EffectControls;
    std::unique_ptr<VizEffectEngine> PreviewEngine;
    DialogOwner* const Owner;
    SettingsModel* const Manager;
    Relaxed<HWND> DialogWindow;  // null while it isn't open
    HBITMAP LampOn = nullptr;    // both owned, loaded once
    HBITMAP LampOff = nullptr;
};

}  // namespace tdkviz
