// Goes to another folder.
#include <unistd.h>

#include "tests/check/plugins/GoodPlugin.h"

class ChangesFolder final : public GoodPlugin {
    HRESULT Initialize(IUnknown*) override { return chdir("/") == 0 ? S_OK : E_FAIL; }
};

EXPORT_PLUGIN(ChangesFolder)
