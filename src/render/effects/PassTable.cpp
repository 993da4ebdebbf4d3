#include "src/render/effects/PassTable.h"

namespace tdkviz {

namespace {

using Finder = EffectPassFunction (*)(const EffectPass&);

// In order of preference; the last serves everything.
constexpr Finder kFinders[] = {FindScalar32, FindExact32, FindBytePath};

}  // namespace

EffectPassFunction ChoosePass(const EffectPass& pass) {
    for (const Finder find : kFinders) {
        if (const EffectPassFunction function = find(pass)) return function;
    }
    return nullptr;
}

}  // namespace tdkviz
