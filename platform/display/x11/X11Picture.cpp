#include "platform/display/x11/X11Picture.h"

#include <sys/ipc.h>
#include <sys/shm.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <new>
#include <vector>

#include "platform/display/x11/X11Reply.h"
#include "platform/gdi/Rects.h"

namespace tdkp {
namespace {

constexpr int kMaxSide = 32767;
constexpr int kOwnerOnly = 0600;

int32_t PaddedBytes(const X11Visual& visual, int width) {
    const int bits = width * visual.bitsPerPixel;
    return (bits + visual.scanlinePad - 1) / visual.scanlinePad * visual.scanlinePad / 8;
}

}  // namespace

std::shared_ptr<X11Picture> X11Picture::Make(std::shared_ptr<X11Connection> connection, int width, int height) {
    if (width <= 0 || height <= 0 || width > kMaxSide || height > kMaxSide) return nullptr;
    std::shared_ptr<X11Picture> picture(new X11Picture(std::move(connection)));
    const X11Visual& visual = picture->connection_->Visual();
    const int32_t pitch = PaddedBytes(visual, width);
    const size_t bytes = static_cast<size_t>(pitch) * static_cast<size_t>(height);
    if (!picture->Share(bytes)) {
        picture->plain_.reset(new (std::nothrow) uint8_t[bytes]());
        if (!picture->plain_) return nullptr;
    }
    uint8_t* pixels = picture->segment_ != 0 ? static_cast<uint8_t*>(picture->shared_) : picture->plain_.get();
    picture->raster_ = {pixels, pitch, width, height, visual.format, picture->connection_->Palette()};
    return picture;
}

X11Picture::~X11Picture() {
    if (segment_ != 0) {
        xcb_shm_detach(connection_->Get(), segment_);
        connection_->Flush();
        shmdt(shared_);
    }
}

bool X11Picture::Share(size_t bytes) {
    if (!connection_->sharesMemory.load(std::memory_order_relaxed)) return false;
    const int id = shmget(IPC_PRIVATE, bytes, IPC_CREAT | kOwnerOnly);
    if (id < 0) return false;
    void* const memory = shmat(id, nullptr, 0);
    bool attached = false;
    if (memory != reinterpret_cast<void*>(-1)) {
        xcb_connection_t* const connection = connection_->Get();
        const xcb_shm_seg_t segment = xcb_generate_id(connection);
        const auto cookie = xcb_shm_attach_checked(connection, segment, static_cast<uint32_t>(id), 0);
        const auto error = X11Reply(xcb_request_check(connection, cookie));
        attached = !error && xcb_connection_has_error(connection) == 0;
        if (attached) {
            segment_ = segment;
            shared_ = memory;
        } else {
            // A server on another machine, or in another container.
            connection_->sharesMemory.store(false, std::memory_order_relaxed);
            shmdt(memory);
        }
    }
    // Both sides hold it now, or none: it goes with the last of them, however they end.
    shmctl(id, IPC_RMID, nullptr);
    return attached;
}

void X11Picture::Put(xcb_window_t window, const RECT& rect) const {
    const RECT part = Intersect(rect, BoundsOf(raster_));
    if (IsEmpty(part)) return;
    if (segment_ != 0)
        PutShared(window, part);
    else
        PutSlices(window, part);
}

void X11Picture::PutShared(xcb_window_t window, const RECT& rect) const {
    xcb_shm_put_image_request_t put = {};
    put.drawable = window;
    put.gc = connection_->Gc();
    put.total_width = static_cast<uint16_t>(raster_.width);
    put.total_height = static_cast<uint16_t>(raster_.height);
    put.src_x = static_cast<uint16_t>(rect.left);
    put.src_y = static_cast<uint16_t>(rect.top);
    put.src_width = static_cast<uint16_t>(rect.right - rect.left);
    put.src_height = static_cast<uint16_t>(rect.bottom - rect.top);
    put.dst_x = static_cast<int16_t>(rect.left);
    put.dst_y = static_cast<int16_t>(rect.top);
    put.depth = connection_->Visual().depth;
    put.format = XCB_IMAGE_FORMAT_Z_PIXMAP;
    put.shmseg = segment_;
    if (!connection_->Puts().Put(put)) PutSlices(window, rect);
}

void X11Picture::PutSlices(xcb_window_t window, const RECT& rect) const {
    const X11Visual& visual = connection_->Visual();
    const int width = rect.right - rect.left;
    const int32_t rowBytes = PaddedBytes(visual, width);
    const int rowsAtOnce = std::max(1, static_cast<int>(connection_->MaxPixelBytes()) / rowBytes);
    const size_t usedBytes = static_cast<size_t>(width) * visual.bitsPerPixel / 8;
    std::vector<uint8_t> slice(static_cast<size_t>(rowBytes) * std::min(rowsAtOnce, rect.bottom - rect.top));
    for (int top = rect.top; top < rect.bottom; top += rowsAtOnce) {
        const int rows = std::min(rowsAtOnce, rect.bottom - top);
        const uint8_t* from = raster_.topRow + ptrdiff_t{top} * raster_.pitch + rect.left * visual.bitsPerPixel / 8;
        for (int row = 0; row < rows; ++row)
            std::memcpy(&slice[static_cast<size_t>(row) * rowBytes], from + ptrdiff_t{row} * raster_.pitch, usedBytes);
        xcb_put_image(connection_->Get(), XCB_IMAGE_FORMAT_Z_PIXMAP, window, connection_->Gc(),
                      static_cast<uint16_t>(width), static_cast<uint16_t>(rows), static_cast<int16_t>(rect.left),
                      static_cast<int16_t>(top), 0, visual.depth, static_cast<uint32_t>(rowBytes * rows), slice.data());
    }
    connection_->Flush();
}

}  // namespace tdkp
