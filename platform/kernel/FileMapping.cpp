#include "platform/kernel/FileMapping.h"

#include <limits>
#include <map>

#include <sys/mman.h>
#include <unistd.h>

#include "platform/include/winbase.h"
#include "platform/kernel/Immortal.h"

namespace tdkp {
namespace {

constexpr uint64_t kViewGranularity = 65536;

// Sizes of the views that stand, by their addresses.
struct ViewTable {
    LayerMutex Lock;
    std::map<const void*, size_t> Sizes;
};

ViewTable& Views() {
    return Immortal<ViewTable>();
}

// The size of the view asked for, 0 if it doesn't lie in the mapping.
uint64_t ViewSize(const FileMapping& mapping, uint64_t offset, uint64_t size) {
    if (offset >= mapping.Size() || size > mapping.Size() - offset) {
        return 0;
    }
    return size != 0 ? size : mapping.Size() - offset;
}

LPVOID FailView(DWORD error) {
    SetLastError(error);
    return nullptr;
}

}  // namespace

FileMapping::~FileMapping() {
    close(descriptor_);
}

std::shared_ptr<FileMapping> FindFileMapping(HANDLE handle) {
    DispatcherGuard guard(DispatcherLock());
    return FindObjectOf<FileMapping>(guard, handle);
}

}  // namespace tdkp

HANDLE CreateFileMappingA(HANDLE file, LPSECURITY_ATTRIBUTES, DWORD protection, DWORD sizeHigh, DWORD sizeLow,
                          LPCSTR name) {
    const uint64_t size = (static_cast<uint64_t>(sizeHigh) << 32) | sizeLow;
    const bool knownProtection = protection == PAGE_READONLY || protection == PAGE_READWRITE;
    if (size == 0 || size > static_cast<uint64_t>(std::numeric_limits<off_t>::max()) || !knownProtection) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    if (file != INVALID_HANDLE_VALUE || name != nullptr) {
        SetLastError(ERROR_NOT_SUPPORTED);
        return nullptr;
    }
    const int descriptor = memfd_create("tdkplatform", MFD_CLOEXEC);
    if (descriptor < 0 || ftruncate(descriptor, static_cast<off_t>(size)) != 0) {
        if (descriptor >= 0) {
            close(descriptor);
        }
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
    const HANDLE handle =
        tdkp::OpenHandle(std::make_shared<tdkp::FileMapping>(descriptor, size, protection == PAGE_READWRITE));
    SetLastError(handle != nullptr ? NO_ERROR : ERROR_NOT_ENOUGH_MEMORY);
    return handle;
}

LPVOID MapViewOfFile(HANDLE mapping, DWORD access, DWORD offsetHigh, DWORD offsetLow, SIZE_T size) {
    const auto object = tdkp::FindFileMapping(mapping);
    if (object == nullptr) {
        return tdkp::FailView(ERROR_INVALID_HANDLE);
    }
    const uint64_t offset = (static_cast<uint64_t>(offsetHigh) << 32) | offsetLow;
    if (offset % tdkp::kViewGranularity != 0) {
        return tdkp::FailView(ERROR_MAPPED_ALIGNMENT);
    }
    const bool writable = (access & FILE_MAP_WRITE) != 0;
    const uint64_t viewSize = tdkp::ViewSize(*object, offset, size);
    if (viewSize == 0 || (writable && !object->Writable())) {
        return tdkp::FailView(ERROR_ACCESS_DENIED);
    }
    tdkp::ViewTable& views = tdkp::Views();
    tdkp::LayerGuard guard(views.Lock);
    void* view = mmap(nullptr, viewSize, writable ? PROT_READ | PROT_WRITE : PROT_READ, MAP_SHARED,
                      object->Descriptor(), static_cast<off_t>(offset));
    if (view == MAP_FAILED) {
        return tdkp::FailView(ERROR_NOT_ENOUGH_MEMORY);
    }
    views.Sizes[view] = viewSize;
    return view;
}

BOOL UnmapViewOfFile(LPCVOID view) {
    tdkp::ViewTable& views = tdkp::Views();
    tdkp::LayerGuard guard(views.Lock);
    const auto place = views.Sizes.find(view);
    if (place == views.Sizes.end()) {
        SetLastError(ERROR_INVALID_ADDRESS);
        return FALSE;
    }
    munmap(const_cast<void*>(view), place->second);
    views.Sizes.erase(place);
    return TRUE;
}
