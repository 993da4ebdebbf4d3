// CVizTKA: the component that the host loads: a button of the player, and the owner of everything else.
// Its sources: VizTKA.cpp (life), VizTKAButton.cpp (picture, label, dialog).
#pragma once

#include <windows.h>

#include <memory>

#include <tdkviz/host.h>
#include <tdkviz/viz.h>

#include "src/host/VizManager.h"
#include "src/settings/VizSettingsDialog.h"
#include "src/support/Mutex.h"
#include "src/support/RefPtr.h"
#include "src/support/Relaxed.h"

namespace tdkviz {

// All operations come on the host's threads, but for BitmapChanged and CurrentPluginChanged. The host calls
// Initialize once, and Shutdown before the last Release.
class CVizTKA final : public ITKCommandButton, private ManagerOwner, private DialogOwner {
public:
    CVizTKA() = default;

    // IUnknown. The last Release destroys the component, and shuts it down if the host forgot to.
    HRESULT QueryInterface(const GUID& id, void** out) override;
    ULONG AddRef() override;
    ULONG Release() override;

    // ITKCommandButton
    HBITMAP GetButtonBitmap() override;
    HRESULT GetButtonLabel(char* text, uint32_t size) override;
    HRESULT Execute(uint32_t command, IUnknown* site, MPAVizWindowRecord* parent) override;
    HRESULT CloseDialog() override;
    bool IsDialogOpen() override;
    HRESULT Initialize(IUnknown* context) override;
    HRESULT Shutdown() override;

private:
    ~CVizTKA() = default;

    // ManagerOwner
    void BitmapChanged() override;
    void CurrentPluginChanged() override;
    IKVAClassFactory* GetClassFactory() override { return ClassFactory.Get(); }
    void SetDialogParent(const MPAVizWindowRecord& record) override { DialogParent = record; }
    void UseDialogParent(bool use) override { HasDialogParent = use; }

    // DialogOwner
    void DialogClosed() override;
    void ShowHelp() override;

    void MakeManager();
    HRESULT TakeSite(IUnknown* site);
    void SetSite(RefPtr<ITKButtonSite> site);
    RefPtr<ITKButtonSite> GetSite() const;
    void OpenDialog(const MPAVizWindowRecord* parent);
    void EndDialog();

    // Held to look at or replace Site and Dialog, never across a call to the host or into the dialog's work.
    mutable KVAWinMutex buttonLock_;
    RefCount References;
    RefPtr<ITKButtonSite> Site;  // guarded by buttonLock_
    uint32_t CommandId = 0;
    bool DialogOpen = false;
    std::unique_ptr<CVizSettingsDialog> Dialog;  // changed by the host's thread alone, under buttonLock_
    IUnknown* Context = nullptr;                 // not counted
    std::unique_ptr<CVizManager> Manager;
    RefPtr<IKVAClassFactory> ClassFactory;
    bool HasDialogParent = false;
    MPAVizWindowRecord DialogParent = {};
};

}  // namespace tdkviz
