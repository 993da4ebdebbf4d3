// DLLAccess: one companion library, opened by a name and a kind.
#pragma once

#include <windows.h>

#include <cstdint>

#include "src/support/DLLAccessPath.h"
#include "src/support/NQString.h"

namespace tdkviz {

inline constexpr uint32_t kDLLNoError = 0;
inline constexpr uint32_t kDLLLibraryError = 1;  // in opening or closing
inline constexpr uint32_t kDLLSymbolError = 2;

// Closes itself at its end. Used by one thread at a time.
class DLLAccess {
public:
    DLLAccess() = default;
    ~DLLAccess();
    DLLAccess(const DLLAccess&) = delete;
    DLLAccess& operator=(const DLLAccess&) = delete;

    // Opens the folder of `kind` followed by `name`, or the bare name if there is no such folder, and hands
    // the folder table on to the library if it takes one. kDLLNoError or kDLLLibraryError.
    uint32_t Open(const char* name, DLLKind kind);
    // kDLLNoError or kDLLLibraryError.
    uint32_t Close();
    // Null sets kDLLSymbolError; a success leaves an earlier error as it was.
    void* GetSymbol(const char* name);

    bool IsLibraryOpen() const { return IsOpen != 0; }
    uint32_t GetError() const { return LastError; }
    const char* GetErrorText() const { return ErrorText.GetText(); }
    // As it was given to the system; empty when closed.
    const char* GetLibraryName() const { return LibraryName.GetText(); }

private:
    uint32_t Fail(uint32_t error, const char* text);

    HMODULE Module = nullptr;
    uint32_t LastError = kDLLNoError;
    CNQString ErrorText;
    uint32_t IsOpen = 0;
    CNQString LibraryName;
};

// The file name of a companion: "nqrs" gives "nqrs3260.dll". `size` comes with the room of `out` in bytes
// and goes with the length of the name. With room for less than 32 bytes more than `shortName`, `out` is
// empty and the length 0.
void CreateName(const char* shortName, char* out, uint32_t* size);

}  // namespace tdkviz
