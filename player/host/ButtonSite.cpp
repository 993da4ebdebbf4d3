#include "player/host/ButtonSite.h"

namespace tdkplay {

ButtonSite::~ButtonSite() {
    if (picture_) DeleteObject(picture_);
}

void ButtonSite::Detach() {
    events_ = nullptr;
    const std::lock_guard lock(mutex_);
    window_ = nullptr;
}

HBITMAP ButtonSite::TakePicture() {
    const std::lock_guard lock(mutex_);
    return std::exchange(picture_, nullptr);
}

HRESULT ButtonSite::QueryInterface(const GUID& id, void** out) {
    return GiveInterface(id, out,
                         {{kIID_IUnknown, static_cast<ITKButtonSite*>(this)},
                          {kIID_ITKButtonSite, static_cast<ITKButtonSite*>(this)},
                          {kIID_ITKButtonPicture, static_cast<ITKButtonPicture*>(this)},
                          {kIID_ITKHelp, static_cast<ITKHelp*>(this)}});
}

HRESULT ButtonSite::CommandDone(uint32_t) {
    if (events_) events_->OnDialogClosed();
    return S_OK;
}

HRESULT ButtonSite::SetButtonBitmap(HBITMAP bitmap, ITKCommandButton*) {
    const std::lock_guard lock(mutex_);
    if (picture_) DeleteObject(picture_);
    picture_ = bitmap;
    if (window_) PostMessageA(window_, message_, 0, 0);
    return S_OK;
}

HRESULT ButtonSite::ShowHelpTopic(uint32_t) {
    if (events_) events_->OnHelp();
    return S_OK;
}

}  // namespace tdkplay
