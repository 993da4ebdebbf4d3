#include "companions/qzcolor/RowLoops.h"

namespace qzcolor {

const RowTable& PlainRowTable() {
    static constexpr RowTable table = MakeRowTable();
    return table;
}

}  // namespace qzcolor
