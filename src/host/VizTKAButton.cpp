// The component as a button of the player: picture, label, and the settings dialog behind it.
#include "src/host/VizTKA.h"

#include <utility>

#include <tdkviz/resource_manager.h>

#include "src/settings/resources/resource.h"
#include "src/support/ResourceAccess.h"

namespace tdkviz {

namespace {

constexpr uint32_t kHelpTopic = 389;

HWND WindowOf(const MPAVizWindowRecord& record) {
    return reinterpret_cast<HWND>(static_cast<uintptr_t>(record.Window));
}

}  // namespace

HBITMAP CVizTKA::GetButtonBitmap() {
    const bool on = Manager && Manager->IsEffectsOn();
    return LoadResourceBitmap(AddOnResource(on ? IDB_EFFECTS_ON : IDB_EFFECTS_OFF));
}

HRESULT CVizTKA::GetButtonLabel(char* text, uint32_t size) {
    LoadResourceString(IDS_BUTTON_LABEL, text, size);
    return S_OK;
}

HRESULT CVizTKA::Execute(uint32_t command, IUnknown* site, MPAVizWindowRecord* parent) {
    CommandId = command;
    const HRESULT result = TakeSite(site);
    if (FAILED(result)) return result;
    // A dialog that couldn't open the last time gets another try.
    if (DialogOpen && Dialog && Dialog->IsOpen()) {
        Dialog->BringToTop();
    } else {
        OpenDialog(parent);
    }
    DialogOpen = true;
    return S_OK;
}

HRESULT CVizTKA::CloseDialog() {
    EndDialog();
    return S_OK;
}

bool CVizTKA::IsDialogOpen() {
    return DialogOpen;
}

// ---- The site

HRESULT CVizTKA::TakeSite(IUnknown* site) {
    SetSite({});
    if (!site) return E_POINTER;
    RefPtr<ITKButtonSite> taken;
    const HRESULT result = site->QueryInterface(kIID_ITKButtonSite, taken.ReceiveVoid());
    SetSite(std::move(taken));
    return result;
}

void CVizTKA::SetSite(RefPtr<ITKButtonSite> site) {
    const MutexLock lock(&buttonLock_);
    std::swap(Site, site);
}

RefPtr<ITKButtonSite> CVizTKA::GetSite() const {
    const MutexLock lock(&buttonLock_);
    return Site;
}

void CVizTKA::BitmapChanged() {
    const RefPtr<ITKButtonSite> site = GetSite();
    if (!site) return;
    if (auto picture = QueryFor<ITKButtonPicture>(site.Get(), kIID_ITKButtonPicture)) {
        picture->SetButtonBitmap(GetButtonBitmap(), this);
    }
}

// ---- The dialog

void CVizTKA::OpenDialog(const MPAVizWindowRecord* parent) {
    if (!Manager) MakeManager();
    if (!Dialog) {
        auto made = std::make_unique<CVizSettingsDialog>(static_cast<DialogOwner*>(this), Manager.get());
        const MutexLock lock(&buttonLock_);
        Dialog = std::move(made);
    }
    const MPAVizWindowRecord none = {};
    const MPAVizWindowRecord& chosen = HasDialogParent ? DialogParent : parent ? *parent : none;
    Dialog->OpenWindow(GetResourceInstance(AddOnResource(IDD_SETTINGS), kResourceKindDialog), WindowOf(chosen));
}

void CVizTKA::EndDialog() {
    DialogOpen = false;
    std::unique_ptr<CVizSettingsDialog> ended;
    {
        const MutexLock lock(&buttonLock_);
        ended = std::move(Dialog);
    }
    if (ended) ended->CloseWindow();
}

// The host may answer with CloseDialog, which ends the dialog that calls this.
void CVizTKA::DialogClosed() {
    DialogOpen = false;
    if (const RefPtr<ITKButtonSite> site = GetSite()) site->CommandDone(CommandId);
}

void CVizTKA::ShowHelp() {
    const RefPtr<ITKButtonSite> site = GetSite();
    if (!site) return;
    if (auto help = QueryFor<ITKHelp>(site.Get(), kIID_ITKHelp)) help->ShowHelpTopic(kHelpTopic);
}

// From the worker or the watcher the dialog is asked by a message, which keeps nobody waiting: the host's thread
// may itself be waiting for the worker.
void CVizTKA::CurrentPluginChanged() {
    {
        const MutexLock lock(&buttonLock_);
        if (!Dialog || Dialog->PostRefresh()) return;
    }
    Dialog->RefreshControls();
}

}  // namespace tdkviz
