// Gives its name without a terminator.
#include "tests/check/plugins/GoodPlugin.h"

class NoTerminator final : public GoodPlugin {
    HRESULT GetInfo(char* name, char*, char*) override {
        std::memcpy(name, "Test", 4);
        return S_OK;
    }
};

EXPORT_PLUGIN(NoTerminator)
