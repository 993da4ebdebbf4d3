#include "src/support/DLLAccess.h"

#include <cstdio>
#include <cstring>

namespace tdkviz {
namespace {

constexpr char kAlreadyOpen[] = "DLL already open";
constexpr char kUnableToLoad[] = "Unable to load library";
constexpr char kNotLoaded[] = "DLL not loaded";
constexpr char kSymbolNotFound[] = "Symbol not found";

constexpr char kLibraryNameFormat[] = "%s32%d%d.dll";
constexpr int kLibraryMajor = 6;
constexpr int kLibraryMinor = 0;
constexpr size_t kLibraryNameExtra = 32;

// A missing drive or the like brings up no system dialog.
HMODULE LoadQuietly(const char* name) {
    const UINT mode = SetErrorMode(SEM_FAILCRITICALERRORS);
    HMODULE module = LoadLibraryA(name);
    SetErrorMode(mode);
    return module;
}

}  // namespace

DLLAccess::~DLLAccess() {
    if (IsOpen) Close();
}

uint32_t DLLAccess::Open(const char* name, DLLKind kind) {
    if (IsOpen) return Fail(kDLLLibraryError, kAlreadyOpen);
    CNQString fullName;
    if (kind != DLLKind::NotDef) fullName = GetDLLAccessPath()->CopyPath(kind);
    fullName += name;
    Module = LoadQuietly(fullName.GetText());
    if (!Module) return Fail(kDLLLibraryError, kUnableToLoad);

    LastError = kDLLNoError;
    IsOpen = 1;
    ErrorText.Empty();
    LibraryName = fullName;
    if (void* taker = GetSymbol(kSetDLLAccessPathName)) {
        GetDLLAccessPath()->PassTo(reinterpret_cast<SetDLLAccessPathFunction>(taker));
    }
    LastError = kDLLNoError;  // the export is optional
    return LastError;
}

uint32_t DLLAccess::Close() {
    if (!IsOpen) return Fail(kDLLLibraryError, kNotLoaded);
    FreeLibrary(Module);
    Module = nullptr;
    LastError = kDLLNoError;
    IsOpen = 0;
    ErrorText.Empty();
    LibraryName.Empty();
    return LastError;
}

void* DLLAccess::GetSymbol(const char* name) {
    if (!IsOpen) {
        Fail(kDLLSymbolError, kNotLoaded);
        return nullptr;
    }
    void* symbol = reinterpret_cast<void*>(GetProcAddress(Module, name));
    if (!symbol) Fail(kDLLSymbolError, kSymbolNotFound);
    return symbol;
}

uint32_t DLLAccess::Fail(uint32_t error, const char* text) {
    LastError = error;
    ErrorText = text;
    return error;
}

void CreateName(const char* shortName, char* out, uint32_t* size) {
    const uint32_t room = *size;
    *size = 0;
    if (room > 0) out[0] = 0;
    if (std::strlen(shortName) + kLibraryNameExtra > room) return;
    *size =
        static_cast<uint32_t>(std::snprintf(out, room, kLibraryNameFormat, shortName, kLibraryMajor, kLibraryMinor));
}

}  // namespace tdkviz
