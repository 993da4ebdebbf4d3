#include "player/check/LibraryFault.h"

#include <dlfcn.h>
#include <elf.h>

#include <cstring>
#include <filesystem>
#include <fstream>

namespace tdkplay::check {
namespace {

constexpr char kWindowsMagic[] = "MZ";

// The loader puts the file's path in front.
std::string LoaderSays(const std::string& path) {
    const char* const text = dlerror();
    std::string reason = text ? text : "the loader doesn't say why";
    const std::string before = path + ": ";
    if (reason.rfind(before, 0) == 0) reason.erase(0, before.size());
    return reason;
}

}  // namespace

std::string WhyItDoesNotLoad(const std::string& path) {
    std::error_code error;
    const uintmax_t size = std::filesystem::file_size(path, error);
    if (error) return error.message();
    if (size == 0) return "the file is empty";
    Elf64_Ehdr header = {};
    std::ifstream(path, std::ios::binary).read(reinterpret_cast<char*>(&header), sizeof header);
    if (std::memcmp(header.e_ident, kWindowsMagic, std::strlen(kWindowsMagic)) == 0)
        return "wrong format: a library for Windows";
    if (std::memcmp(header.e_ident, ELFMAG, SELFMAG) != 0) return "wrong format: not a library at all";
    if (header.e_ident[EI_CLASS] != ELFCLASS64) return "wrong format: not for a 64-bit system";
    if (header.e_shoff + uintmax_t{header.e_shnum} * header.e_shentsize > size) return "the file is cut short";
    if (void* const library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL)) {
        dlclose(library);
        return "the loader took it at the second try only";
    }
    return LoaderSays(path);
}

}  // namespace tdkplay::check
