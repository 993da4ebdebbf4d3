#include "platform/kernel/LibraryFile.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <fstream>

#include <elf.h>

namespace tdkp {

bool IsCutShort(const std::string& path) {
    std::ifstream file(path, std::ios::binary | std::ios::ate);
    const auto size = static_cast<uint64_t>(std::max<std::streamoff>(file.tellg(), 0));
    Elf64_Ehdr header{};
    file.seekg(0).read(reinterpret_cast<char*>(&header), sizeof(header));
    if (!file || std::memcmp(header.e_ident, ELFMAG, SELFMAG) != 0 || header.e_ident[EI_CLASS] != ELFCLASS64) {
        return false;  // the loader refuses it by itself
    }
    uint64_t needed = header.e_shoff + uint64_t{header.e_shnum} * header.e_shentsize;
    file.seekg(static_cast<std::streamoff>(header.e_phoff));
    for (int i = 0; i < header.e_phnum; ++i) {
        Elf64_Phdr segment{};
        if (!file.read(reinterpret_cast<char*>(&segment), sizeof(segment))) {
            return true;
        }
        if (segment.p_type == PT_LOAD) {
            needed = std::max(needed, segment.p_offset + segment.p_filesz);
        }
    }
    return needed > size;
}

}  // namespace tdkp
