// Its factory says that it worked.
#include <tdkviz/plugin.h>

TDKVIZ_EXPORT HRESULT MPACreateVisualization(IUnknown** out) {
    *out = nullptr;
    return S_OK;
}
