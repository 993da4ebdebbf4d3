#include "companions/qzcolor/RowTable.h"

#include <atomic>
#include <cstdlib>
#include <cstring>

namespace qzcolor {

namespace {

const RowTable& Choose() {
    const char* allowed = std::getenv("TDKVIZ_INSTRUCTION_SET");
    const bool lowered = allowed && (std::strcmp(allowed, "scalar") == 0 || std::strcmp(allowed, "128") == 0);
    return Avx2RowTable() && !lowered ? *Avx2RowTable() : PlainRowTable();
}

std::atomic<const RowTable*>& InForce() {
    static std::atomic<const RowTable*> table = &Choose();
    return table;
}

}  // namespace

const RowTable& BestRowTable() {
    return *InForce().load(std::memory_order_relaxed);
}

void UseRowTable(const RowTable& table) {
    InForce() = &table;
}

}  // namespace qzcolor
