// This file alone is built for processors that have AVX2.
#ifdef __AVX2__
#include "companions/qzcolor/RowLoops.h"
#else
#include "companions/qzcolor/RowTable.h"
#endif

namespace qzcolor {

const RowTable* Avx2RowTable() {
#ifdef __AVX2__
    static constexpr RowTable table = MakeRowTable();
    return __builtin_cpu_supports("avx2") ? &table : nullptr;
#else
    return nullptr;
#endif
}

}  // namespace qzcolor
