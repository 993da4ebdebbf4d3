// The factory throws.
#include "tests/plugins/testplugins/TestPlugin.h"

TDKVIZ_EXPORT HRESULT MPACreateVisualization(IUnknown**) {
    throw 1;
}
