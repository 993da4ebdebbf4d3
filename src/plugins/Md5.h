// The MD5 message digest of RFC 1321.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace tdkviz {

using Md5Digest = std::array<uint8_t, 16>;

Md5Digest ComputeMd5(const void* data, size_t size);

}  // namespace tdkviz
