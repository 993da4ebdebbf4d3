// The factory succeeds without an object.
#include "tests/plugins/testplugins/TestPlugin.h"

TDKVIZ_EXPORT HRESULT MPACreateVisualization(IUnknown**) {
    return S_OK;
}
