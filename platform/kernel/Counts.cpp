#include "platform/kernel/Counts.h"

#include <atomic>

#include "platform/include/tdkplatform.h"

namespace tdkp {
namespace {

std::atomic<int32_t> handles{0};
std::atomic<int32_t> windows{0};
std::atomic<int32_t> gdiObjects{0};
std::atomic<int32_t> threads{0};
std::atomic<int32_t> directDraw{0};

}  // namespace

void CountHandle(int32_t change) {
    handles.fetch_add(change, std::memory_order_relaxed);
}
void CountWindow(int32_t change) {
    windows.fetch_add(change, std::memory_order_relaxed);
}
void CountGdiObject(int32_t change) {
    gdiObjects.fetch_add(change, std::memory_order_relaxed);
}
void CountThread(int32_t change) {
    threads.fetch_add(change, std::memory_order_relaxed);
}
void CountDirectDraw(int32_t change) {
    directDraw.fetch_add(change, std::memory_order_relaxed);
}

static void ReadCounts(TdkpCounts& counts) {
    counts.handles = handles.load(std::memory_order_relaxed);
    counts.windows = windows.load(std::memory_order_relaxed);
    counts.gdiObjects = gdiObjects.load(std::memory_order_relaxed);
    counts.threads = threads.load(std::memory_order_relaxed);
    counts.directDraw = directDraw.load(std::memory_order_relaxed);
}

}  // namespace tdkp

void TdkpCount(TdkpCounts* counts) {
    if (counts != nullptr) {
        tdkp::ReadCounts(*counts);
    }
}
