#include "src/plugins/FileStamp.h"

#include <windows.h>

#include <sys/stat.h>

#include <cstring>

#include "src/plugins/Md5.h"

namespace tdkviz {

bool ComputeChecksum(const char* path, char* out, uint32_t* size) {
    if (!out || *size < kChecksumSize) {
        *size = kChecksumSize;
        return false;
    }
    struct _stat32 record;
    static_assert(sizeof record == 36);
    std::memset(&record, 0, sizeof record);  // its padding is part of the stamp
    if (_stat32(path, &record) != 0) return false;

    constexpr char kDigits[] = "0123456789ABCDEF";
    constexpr int kNibbleBits = 4;
    constexpr int kNibbleMask = 15;
    for (const uint8_t byte : ComputeMd5(&record, sizeof record)) {
        *out++ = kDigits[byte >> kNibbleBits];
        *out++ = kDigits[byte & kNibbleMask];
    }
    *out = 0;
    *size = kChecksumSize;
    return true;
}

}  // namespace tdkviz
