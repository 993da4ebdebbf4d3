#include "src/render/effects/PassTable.h"

namespace tdkviz {

namespace {

struct Implementation {
    InstructionSet needs;
    EffectPassFunction (*find)(const EffectPass&);
};

// In order of preference; the last serves everything.
constexpr Implementation kImplementations[] = {
    {InstructionSet::kVector512, FindVector512}, {InstructionSet::kVector256, FindVector256},
    {InstructionSet::kVector128, FindVector128}, {InstructionSet::kScalar, FindScalar32},
    {InstructionSet::kScalar, FindExact32},      {InstructionSet::kScalar, FindBytePath},
};

}  // namespace

EffectPassFunction ChoosePass(const EffectPass& pass, InstructionSet set) {
    for (const Implementation& implementation : kImplementations) {
        if (implementation.needs > set) continue;
        if (const EffectPassFunction function = implementation.find(pass)) return function;
    }
    return nullptr;
}

}  // namespace tdkviz
