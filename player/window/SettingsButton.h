// The add-on's button in the player: it stands in the strip below the picture and opens the add-on's settings.
#pragma once

#include <tdkviz/viz.h>

#include "player/host/ButtonSite.h"
#include "player/window/TransportStrip.h"

namespace tdkplay {

// For the host's thread.
class SettingsButton final : private ToolButtonEvents, private ButtonSiteEvents {
public:
    // `owner` is the player's window, to which the dialog belongs; `strip` shows the button. Both and the component
    // outlive this object, which takes the dialog down with it.
    SettingsButton(ITKCommandButton& component, HWND owner, TransportStrip& strip);
    ~SettingsButton();
    SettingsButton(const SettingsButton&) = delete;
    SettingsButton& operator=(const SettingsButton&) = delete;

    // Opens the dialog, or brings it to the top.
    void Press();

private:
    void OnToolButton() override { Press(); }
    void OnPictureWaits() override;
    void OnDialogClosed() override { strip_.SetChecked(false); }
    void OnHelp() override;

    ITKCommandButton& component_;
    const HWND owner_;
    TransportStrip& strip_;
    const ComPtr<ButtonSite> site_;
};

}  // namespace tdkplay
