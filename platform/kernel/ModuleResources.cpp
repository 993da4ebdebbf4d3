#include "platform/kernel/ModuleResources.h"

#include <cstring>
#include <string_view>

#include <dlfcn.h>
#include <link.h>

#include "platform/kernel/Dispatcher.h"

namespace tdkp {
namespace {

using std::string_view_literals::operator""sv;

constexpr std::string_view kOwner = "TdkRes\0"sv;
constexpr uint32_t kType = 1;

struct Search {
    const void* module;
    ResBytes found;
};

constexpr size_t PaddedTo(size_t alignment, size_t size) {
    return (size + alignment - 1) / alignment * alignment;
}

ResBytes FindNote(ResBytes notes, size_t alignment) {
    ElfW(Nhdr) note;
    while (notes.size() >= sizeof note) {
        std::memcpy(&note, notes.data(), sizeof note);
        const size_t nameEnd = sizeof note + note.n_namesz;
        const size_t data = PaddedTo(alignment, nameEnd);
        const size_t end = PaddedTo(alignment, data + note.n_descsz);
        if (nameEnd > notes.size() || data + note.n_descsz > notes.size()) break;
        const std::string_view owner(reinterpret_cast<const char*>(notes.data()) + sizeof note, note.n_namesz);
        if (owner == kOwner && note.n_type == kType) return notes.subspan(data, note.n_descsz);
        if (end >= notes.size()) break;
        notes = notes.subspan(end);
    }
    return {};
}

// The loader's record of a module is its handle. It is looked up by an address of the module, since a handle
// may have gone stale and must not be followed.
const void* HandleOf(const dl_phdr_info& module) {
    for (ElfW(Half) i = 0; i < module.dlpi_phnum; ++i) {
        const ElfW(Phdr)& segment = module.dlpi_phdr[i];
        dl_find_object object{};
        if (segment.p_type == PT_LOAD &&
            _dl_find_object(reinterpret_cast<void*>(module.dlpi_addr + segment.p_vaddr), &object) == 0)
            return object.dlfo_link_map;
    }
    return nullptr;
}

int Visit(dl_phdr_info* module, size_t, void* argument) {
    Search& search = *static_cast<Search*>(argument);
    if (HandleOf(*module) != search.module) return 0;
    for (ElfW(Half) i = 0; i < module->dlpi_phnum && search.found.empty(); ++i) {
        const ElfW(Phdr)& segment = module->dlpi_phdr[i];
        if (segment.p_type != PT_NOTE) continue;
        const auto* start = reinterpret_cast<const uint8_t*>(module->dlpi_addr + segment.p_vaddr);
        const size_t alignment = segment.p_align == 8 ? 8 : 4;
        search.found = FindNote({start, segment.p_memsz}, alignment);
    }
    return 1;
}

}  // namespace

ResBytes ModuleResources(HMODULE module) {
    const TerminationDeferral deferral;  // the loader's lock is held
    Search search{module, {}};
    if (module == nullptr) {
        search.module = dlopen(nullptr, RTLD_LAZY);  // never unloaded, so the reference doesn't matter
    }
    if (search.module != nullptr) dl_iterate_phdr(&Visit, &search);
    return search.found;
}

}  // namespace tdkp
