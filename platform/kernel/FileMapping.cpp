#include "platform/kernel/FileMapping.h"

#include <limits>

#include <sys/mman.h>
#include <unistd.h>

#include "platform/include/winbase.h"

namespace tdkp {

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
    if (size == 0 || size > static_cast<uint64_t>(std::numeric_limits<off_t>::max()) || protection != PAGE_READWRITE) {
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
    const HANDLE handle = tdkp::OpenHandle(std::make_shared<tdkp::FileMapping>(descriptor, size));
    SetLastError(handle != nullptr ? NO_ERROR : ERROR_NOT_ENOUGH_MEMORY);
    return handle;
}
