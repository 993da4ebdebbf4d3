// Nothing is wrong with it.
#include "tests/check/plugins/GoodPlugin.h"

class Good final : public GoodPlugin {};

EXPORT_PLUGIN(Good)
