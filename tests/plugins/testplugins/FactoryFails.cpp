// The factory gives an object and fails all the same.
#include "tests/plugins/testplugins/TestPlugin.h"

TDKVIZ_EXPORT HRESULT MPACreateVisualization(IUnknown** out) {
    *out = static_cast<IMPAVisualization2*>(new TestPlugin({}));
    return E_FAIL;
}
