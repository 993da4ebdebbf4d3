// Needs a function that nobody has.
#include <tdkviz/plugin.h>

extern "C" HRESULT FunctionThatNobodyHas(IUnknown** out);

TDKVIZ_EXPORT HRESULT MPACreateVisualization(IUnknown** out) {
    return FunctionThatNobodyHas(out);
}
