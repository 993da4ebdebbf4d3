// CVizTKA: the component that the host loads: a button of the player, and the owner of everything else.
#pragma once

#include <windows.h>

#include <memory>

#include <tdkviz/host.h>
#include <tdkviz/viz.h>

#include "src/host/VizManager.h"
#include "src/support/RefPtr.h"
#include "src/support/Relaxed.h"

namespace tdkviz {

// All operations come on the host's threads, but for BitmapChanged and CurrentPluginChanged. The host calls
// Initialize once, and Shutdown before the last Release.
class CVizTKA final : public ITKCommandButton, private ManagerOwner {
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

    void MakeManager();

    RefCount References;
    RefPtr<ITKButtonSite> Site;
    uint32_t CommandId = 0;
    bool DialogOpen = false;
    IUnknown* Context = nullptr;  // not counted
    std::unique_ptr<CVizManager> Manager;
    RefPtr<IKVAClassFactory> ClassFactory;
    bool HasDialogParent = false;
    MPAVizWindowRecord DialogParent = {};
};

}  // namespace tdkviz
