// DLLAccessPath: the module's table of the folders in which the host keeps libraries, by kind.
#pragma once

#include <cstdint>
#include <memory>

#include <tdkviz/com.h>
#include <tdkviz/viz.h>

#include "src/support/Mutex.h"
#include "src/support/NQMaps.h"
#include "src/support/NQString.h"
#include "src/support/RefPtr.h"

namespace tdkviz {

enum class DLLKind : uint32_t {
    NotDef,  // leaves the search to the system
    Plugins,
    Codecs,
    EncSDK,
    Common,
    Update_OB,
    Objbrokr,
    KCAPlugins,
    Count,
};

// Any thread; texts given out stay good until they are replaced.
class DLLAccessPath {
public:
    DLLAccessPath() = default;
    virtual ~DLLAccessPath() = default;
    virtual uint32_t AddRef();
    // Gives the new count. The one object is static and never destroyed by its count.
    virtual uint32_t Release();

    // Stores `folder` with a separator at its end, replacing what was there; null or empty stores nothing. S_OK.
    HRESULT SetPath(const char* name, const char* folder);
    // E_FAIL for a kind that doesn't exist.
    HRESULT SetPath(DLLKind kind, const char* folder);
    // The stored folder, good until it is replaced, or null.
    const char* GetPath(const char* name) const;
    const char* GetPath(DLLKind kind) const;
    // The same as the caller's own text, whoever replaces it meanwhile; empty if there is none.
    CNQString CopyPath(DLLKind kind) const;

    // Takes in a run of zero-terminated Name=Folder strings, closed by an empty one; null does nothing. S_OK.
    HRESULT SetFromBlock(const char* block);
    // Calls `function` with the table in that form, unless it is empty. S_OK, or E_FAIL without memory.
    HRESULT PassTo(SetDLLAccessPathFunction function) const;

private:
    // The table as a path block; null if it is empty. S_OK, or E_FAIL without memory.
    HRESULT WriteBlock(std::unique_ptr<char[]>& block) const;

    static constexpr uint32_t kMapBlockSize = 10;

    tdkviz::RefCount RefCount;
    mutable KVAWinMutex mutex_;  // a window's converter and the host may come at once
    CNQMapStringToString Paths{kMapBlockSize};
};

// The module's one table.
DLLAccessPath* GetDLLAccessPath();

}  // namespace tdkviz
