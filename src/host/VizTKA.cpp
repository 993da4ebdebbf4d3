#include "src/host/VizTKA.h"

#include "src/support/Module.h"
#include "src/support/ResourceAccess.h"

namespace tdkviz {

namespace {

constexpr uint32_t kBitmapEffectsOff = 0x64F0066;
constexpr uint32_t kBitmapEffectsOn = 0x64F0068;
constexpr uint32_t kStringButtonLabel = 1;

}  // namespace

HRESULT CVizTKA::QueryInterface(const GUID& id, void** out) {
    if (!out) return E_POINTER;
    *out = nullptr;
    if (id == kIID_IUnknown || id == kIID_ITKCommandButton) {
        *out = static_cast<ITKCommandButton*>(this);
        AddRef();
        return S_OK;
    }
    if (id == kIID_IMPAVizMgr) {
        if (!Manager) MakeManager();
        return Manager->QueryInterface(id, out);
    }
    return E_NOINTERFACE;
}

ULONG CVizTKA::AddRef() {
    return References.Add();
}

ULONG CVizTKA::Release() {
    const int32_t count = References.Remove();
    if (count > 0) return static_cast<ULONG>(count);
    Site.Reset();
    HostContext = nullptr;
    // Who forgets Shutdown leaves a running manager behind, and its threads must not outlive its owner.
    Shutdown();
    delete this;
    return 0;
}

void CVizTKA::MakeManager() {
    Manager = std::make_unique<CVizManager>(ModuleHandle, Context, static_cast<ManagerOwner*>(this));
    Manager->RegisterObservers();
}

HRESULT CVizTKA::Initialize(IUnknown* context) {
    HRESULT result = E_NOINTERFACE;
    if (context) result = context->QueryInterface(kIID_IKVAClassFactory, ClassFactory.ReceiveVoid());
    Context = context;
    // A second call leaves the manager that stands, with its views, as it is.
    if (!Manager) MakeManager();
    HostContext = context;
    return result;
}

HRESULT CVizTKA::Shutdown() {
    DialogOpen = false;
    Manager.reset();
    ClassFactory.Reset();
    return S_OK;
}

// ---- The button

HBITMAP CVizTKA::GetButtonBitmap() {
    return LoadResourceBitmap(Manager && Manager->IsEffectsOn() ? kBitmapEffectsOn : kBitmapEffectsOff);
}

HRESULT CVizTKA::GetButtonLabel(char* text, uint32_t size) {
    LoadResourceString(kStringButtonLabel, text, size);
    return S_OK;
}

HRESULT CVizTKA::Execute(uint32_t command, IUnknown* site, MPAVizWindowRecord*) {
    Site.Reset();
    CommandId = command;
    if (!site) return E_POINTER;
    const HRESULT result = site->QueryInterface(kIID_ITKButtonSite, Site.ReceiveVoid());
    if (FAILED(result)) return result;
    // This build has no settings dialog to open.
    return E_NOTIMPL;
}

HRESULT CVizTKA::CloseDialog() {
    DialogOpen = false;
    return S_OK;
}

bool CVizTKA::IsDialogOpen() {
    return DialogOpen;
}

void CVizTKA::BitmapChanged() {
    if (!Site) return;
    if (auto picture = QueryFor<ITKButtonPicture>(Site.Get(), kIID_ITKButtonPicture)) {
        picture->SetButtonBitmap(GetButtonBitmap(), this);
    }
}

// An open settings dialog would show the new plug-in's name here.
void CVizTKA::CurrentPluginChanged() {}

}  // namespace tdkviz
