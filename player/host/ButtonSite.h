// The place of the add-on's button, as the add-on sees it: who is told when the dialog closes, where a new picture
// goes, and who shows help.
#pragma once

#include <tdkviz/host.h>
#include <windows.h>

#include <mutex>

#include "player/host/ComObject.h"

namespace tdkplay {

// What the site passes on, on the thread that called it.
class ButtonSiteEvents {
public:
    virtual void OnDialogClosed() = 0;
    virtual void OnHelp() = 0;  // about the only topic that there is, the settings dialog

protected:
    ~ButtonSiteEvents() = default;
};

// The add-on keeps it until its own end, so it outlives what it reports to.
class ButtonSite final : public ComObject<ITKButtonSite, ITKButtonPicture, ITKHelp> {
public:
    // `message` is posted to `window` when a picture waits. Both stay until Detach.
    ButtonSite(ButtonSiteEvents& events, HWND window, UINT message)
        : message_(message), events_(&events), window_(window) {}
    // Nothing is passed on any more. [host]
    void Detach();
    // The picture that came last, once; it becomes the caller's. Null if there is none. [any]
    HBITMAP TakePicture();

    HRESULT QueryInterface(const GUID& id, void** out) override;
    HRESULT CommandDone(uint32_t command) override;                              // [host]
    HRESULT SetButtonBitmap(HBITMAP bitmap, ITKCommandButton* button) override;  // [any]
    HRESULT ShowHelpTopic(uint32_t topic) override;                              // [host]

private:
    ~ButtonSite() override;

    const UINT message_;
    ButtonSiteEvents* events_;  // the host's thread's own

    std::mutex mutex_;  // guards what follows
    HWND window_;
    HBITMAP picture_ = nullptr;
};

}  // namespace tdkplay
