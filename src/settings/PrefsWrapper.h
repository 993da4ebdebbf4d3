// CIKVAPrefsWrapper: text values that plug-ins keep between runs.
#pragma once

#include <tdkviz/values.h>

#include "src/support/NQString.h"
#include "src/support/RefPtr.h"

namespace tdkviz {

// Each call opens and closes a registry key of its own, so any thread may call. Made with a count of 0;
// the last Release destroys it.
class CIKVAPrefsWrapper final : public IKVAPreferences {
public:
    // `keyPath` is relative to the current user's root.
    explicit CIKVAPrefsWrapper(const char* keyPath) : KeyPath(keyPath) {}

    HRESULT QueryInterface(const GUID& id, void** out) override;
    ULONG AddRef() override;
    ULONG Release() override;

    HRESULT ReadValue(const char* name, IKVABuffer** buffer) override;
    HRESULT WriteValue(const char* name, IKVABuffer* buffer) override;

private:
    ~CIKVAPrefsWrapper() = default;

    const CNQString KeyPath;
    RefCount References;
};

}  // namespace tdkviz
