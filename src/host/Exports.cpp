// The library's entry point and its two exports.
#include <windows.h>

#include <new>

#include <tdkviz/viz.h>

#include "src/host/VizTKA.h"
#include "src/support/DLLAccessPath.h"
#include "src/support/Module.h"
#include "src/support/ResourceAccess.h"

using namespace tdkviz;

// Makes the component with one reference for the caller. S_OK, or E_OUTOFMEMORY with null.
TDKVIZ_EXPORT HRESULT TKCreateInstance(IUnknown** out) {
    if (!out) return E_POINTER;
    auto* component = new (std::nothrow) CVizTKA;
    *out = component;
    if (!component) return E_OUTOFMEMORY;
    component->AddRef();
    return S_OK;
}

// Takes in the folders in which the host keeps its libraries. S_OK.
TDKVIZ_EXPORT HRESULT SetDLLAccessPath(const char* block) {
    return GetDLLAccessPath()->SetFromBlock(block);
}

extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID) {
    if (reason == DLL_PROCESS_ATTACH) {
        ModuleHandle = module;
        StartResourceAccess();
        RegisterResourceModule(module, kAddOnResourceTag);
        SetResourceTag(kAddOnResourceTag);
    } else if (reason == DLL_PROCESS_DETACH) {
        StopResourceAccess();
    }
    return TRUE;
}

#ifndef _WIN32

// On ELF nobody calls DllMain: the module's own constructor and destructor do, so any loader will serve.
namespace {

struct Attachment {
    Attachment() : module(nullptr) {
        GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                           reinterpret_cast<LPCSTR>(&TKCreateInstance), &module);
        DllMain(module, DLL_PROCESS_ATTACH, nullptr);
    }
    ~Attachment() { DllMain(module, DLL_PROCESS_DETACH, nullptr); }
    HMODULE module;
} attachment;

}  // namespace

#endif
