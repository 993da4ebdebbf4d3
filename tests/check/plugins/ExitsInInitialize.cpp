// Takes the player with it.
#include "tests/check/plugins/GoodPlugin.h"

class ExitsInInitialize final : public GoodPlugin {
    HRESULT Initialize(IUnknown*) override { std::exit(3); }
};

EXPORT_PLUGIN(ExitsInInitialize)
