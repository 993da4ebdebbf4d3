#include "src/host/VizTKA.h"

#include "src/support/Module.h"

namespace tdkviz {

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
    SetSite({});
    // Who forgets Shutdown leaves a running manager behind, and its threads must not outlive its owner. Its plug-ins
    // still have the context while they are unloaded.
    Shutdown();
    HostContext = nullptr;
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
    // A second call leaves the manager that stands, with its views, as it is.
    const bool isLate = Manager && !Context;
    Context = context;
    if (!Manager) MakeManager();
    if (isLate) Manager->TakeContext(context);
    HostContext = context;
    return result;
}

HRESULT CVizTKA::Shutdown() {
    EndDialog();
    Manager.reset();
    ClassFactory.Reset();
    // The host's objects may go now. Who asks for a manager all the same gets one without them.
    if (HostContext == Context) HostContext = nullptr;
    Context = nullptr;
    return S_OK;
}

}  // namespace tdkviz
