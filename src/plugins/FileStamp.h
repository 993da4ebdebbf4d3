// The stamp of a plug-in file: a digest of its status record, not of its contents.
#pragma once

#include <cstdint>

namespace tdkviz {

inline constexpr uint32_t kChecksumSize = 33;  // 32 hexadecimal digits and the terminator

// Writes the stamp of the file at `path`: the MD5 digest (RFC 1321) of its 36-byte status record, upper case.
// `size` comes with the room of `out` in bytes; if that is too small or `out` null, it goes as kChecksumSize
// and the answer is false. False as well if the status can't be had.
bool ComputeChecksum(const char* path, char* out, uint32_t* size);

}  // namespace tdkviz
