// Resources in the binary form of resource compilers (.res): entry after entry, each on a multiple of four
// bytes. An entry is a header (size of the data, size of the header, type, name, 16 bytes of flags) and data.
// Type and name are 0xFFFF with a number, or text. Damage ends the search; nothing is read outside the bytes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace tdkp {

using ResBytes = std::span<const uint8_t>;

// The whole first entry with these numbers, header and data; empty if there is none.
ResBytes FindResEntry(ResBytes file, uint16_t type, uint16_t name);

// The data of an entry that FindResEntry found at this address.
ResBytes ResEntryData(const uint8_t* entry);

// Strings stand in blocks of 16, each string with its length in front; the block is named by their number.
constexpr uint16_t kStringsPerBlock = 16;
constexpr uint16_t StringBlockName(uint16_t id) {
    return static_cast<uint16_t>(id / kStringsPerBlock + 1);
}
// The string at `id % kStringsPerBlock`; empty if the block doesn't hold it whole.
std::u16string StringInBlock(ResBytes block, uint16_t id);

}  // namespace tdkp
