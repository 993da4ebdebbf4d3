// The add-on's button in the player: it stands in the strip below the picture and opens the add-on's settings.
#pragma once

#include <tdkviz/viz.h>

#include <string>

#include "player/ButtonSite.h"
#include "player/ToolStrip.h"

namespace tdkplay {

// For the host's thread.
class SettingsButton final : private ToolStripEvents, private ButtonSiteEvents {
public:
    // `owner` is the player's window: the strip lies in it, and the dialog belongs to it. The component and the window
    // outlive this object, which takes the dialog down with it.
    SettingsButton(ITKCommandButton& component, HWND owner);
    ~SettingsButton();
    SettingsButton(const SettingsButton&) = delete;
    SettingsButton& operator=(const SettingsButton&) = delete;

    void Place(const RECT& place) { strip_.Place(place); }
    void SetText(const std::string& text) { strip_.SetText(text); }
    // Opens the dialog, or brings it to the top.
    void Press();

private:
    void OnToolButton() override { Press(); }
    void OnPictureWaits() override;
    void OnDialogClosed() override { strip_.SetChecked(false); }
    void OnHelp(uint32_t topic) override;

    ITKCommandButton& component_;
    const HWND owner_;
    ToolStrip strip_;
    const ComPtr<ButtonSite> site_;
};

}  // namespace tdkplay
