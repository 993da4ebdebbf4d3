// Loses a file with each start.
#include <fcntl.h>

#include "tests/check/plugins/GoodPlugin.h"

class LeaksEachStart final : public GoodPlugin {
    HRESULT Initialize(IUnknown*) override { return open("/dev/null", O_RDONLY) < 0 ? E_FAIL : S_OK; }
};

EXPORT_PLUGIN(LeaksEachStart)
