#include "player/window/SettingsButton.h"

#include <array>
#include <cstdio>

#include "player/window/Help.h"

namespace tdkplay {
namespace {

constexpr uint32_t kCommand = 1;  // any number: the player has one button
constexpr char kUsualLabel[] = "Settings";

std::string LabelOf(ITKCommandButton& component) {
    std::array<char, 260> label = {};
    component.GetButtonLabel(label.data(), label.size());
    label.back() = '\0';
    return label.front() != '\0' ? label.data() : kUsualLabel;
}

}  // namespace

SettingsButton::SettingsButton(ITKCommandButton& component, HWND owner, TransportStrip& strip)
    : component_(component),
      owner_(owner),
      strip_(strip),
      site_(MakeCom<ButtonSite>(static_cast<ButtonSiteEvents&>(*this), strip.Handle(), TransportStrip::kPictureWaits)) {
    strip_.SetTool(this);
    strip_.SetLabel(LabelOf(component_));
    strip_.SetPicture(component_.GetButtonBitmap());
}

SettingsButton::~SettingsButton() {
    component_.CloseDialog();
    site_->Detach();
    strip_.SetTool(nullptr);
    strip_.SetPicture(nullptr);
}

void SettingsButton::Press() {
    MPAVizWindowRecord parent = {};
    parent.Window = static_cast<uint32_t>(reinterpret_cast<uintptr_t>(owner_));
    const HRESULT result = component_.Execute(kCommand, static_cast<ITKButtonSite*>(site_.Get()), &parent);
    if (FAILED(result)) strip_.SetNotice("The settings can't be opened");
    strip_.SetChecked(component_.IsDialogOpen());
}

void SettingsButton::OnPictureWaits() {
    if (const HBITMAP picture = site_->TakePicture()) strip_.SetPicture(picture);
}

void SettingsButton::OnHelp() {
    const std::string page = HelpPage();
    if (OpenHelpPage(page)) return;
    std::printf("%s\n", page.c_str());
    std::fflush(stdout);
    strip_.SetNotice("Help: " + page);
}

}  // namespace tdkplay
