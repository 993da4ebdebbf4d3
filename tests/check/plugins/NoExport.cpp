// A library, and no plug-in.
#include <tdkviz/plugin.h>

TDKVIZ_EXPORT HRESULT CreateVisualization(IUnknown**) {
    return S_OK;
}
