#include <algorithm>
#include <climits>
#include <cstring>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include <dlfcn.h>
#include <link.h>
#include <unistd.h>

#include "platform/include/tdkplatform.h"
#include "platform/include/winbase.h"
#include "platform/kernel/Dispatcher.h"
#include "platform/kernel/Immortal.h"
#include "platform/kernel/LibraryFile.h"
#include "platform/kernel/PathText.h"

namespace tdkp {
namespace {

// A module handle is the loader's own, which is the address of its record of the module. Only handles that
// were given out are taken back: the loader itself believes any address.
struct Module {
    std::string Path;
    int32_t References = 0;
};

struct ModuleTable {
    LayerMutex Lock;  // never held across a call of the loader, which runs code of the modules
    std::map<HMODULE, Module> Modules;
    std::string ProgramPath;  // counts as the executable's; empty: its own
};

constexpr std::string_view kWindowsExtension = ".dll";
constexpr std::string_view kNativeExtension = ".so";
constexpr uintptr_t kLastOrdinal = 0xFFFF;

ModuleTable& Table() {
    return Immortal<ModuleTable>();
}

std::string ExecutablePath() {
    std::string path(PATH_MAX, '\0');
    const ssize_t length = readlink("/proc/self/exe", path.data(), path.size());
    path.resize(length > 0 ? static_cast<size_t>(length) : 0);
    return path;
}

std::string ProgramPath() {
    ModuleTable& table = Table();
    LayerGuard guard(table.Lock);
    return table.ProgramPath.empty() ? ExecutablePath() : table.ProgramPath;
}

HMODULE ExecutableModule() {
    // The executable is never unloaded, so the reference doesn't matter.
    static void* const module = dlopen(nullptr, RTLD_LAZY);
    return static_cast<HMODULE>(module);
}

std::string PathOf(const link_map& module) {
    return module.l_name == nullptr || module.l_name[0] == '\0' ? ExecutablePath() : AbsolutePath(module.l_name);
}

bool IsKnown(HMODULE handle) {
    ModuleTable& table = Table();
    LayerGuard guard(table.Lock);
    return table.Modules.count(handle) != 0;
}

// Null if there is none.
link_map* ModuleAt(const void* address) {
    Dl_info info{};
    void* module = nullptr;
    if (dladdr1(address, &info, &module, RTLD_DL_LINKMAP) == 0) {
        return nullptr;
    }
    return static_cast<link_map*>(module);
}

std::string FolderOf(const std::string& path) {
    return path.substr(0, NameStart(path));
}

// The folders in which a bare name is looked for; the last, empty one leaves it to the loader.
std::vector<std::string> SearchFolders() {
    std::vector<std::string> folders{FolderOf(ExecutablePath())};
    if (const link_map* layer = ModuleAt(reinterpret_cast<const void*>(&LoadLibraryA))) {
        folders.push_back(FolderOf(PathOf(*layer)));
    }
    folders.emplace_back();
    return folders;
}

std::vector<std::string> Candidates(const std::string& name) {
    std::vector<std::string> names{name};
    const std::string_view text(name);
    const size_t dot = text.find_last_of('.');
    if (dot == std::string_view::npos || dot < NameStart(text)) {
        names.push_back(name + std::string(kNativeExtension));
    } else if (EqualsIgnoringCase(text.substr(dot), kWindowsExtension)) {
        names.push_back(name.substr(0, dot) + std::string(kNativeExtension));
    }
    return names;
}

constexpr int kLoadFlags = RTLD_NOW | RTLD_LOCAL;
constexpr int kFindFlags = RTLD_LAZY | RTLD_NOLOAD;  // takes a reference too

// The loader's handle; null, with `refused` set if there was a file that it didn't take.
void* Open(const std::string& path, int flags, bool& refused) {
    const bool hasFolder = path.find('/') != std::string::npos;
    if (hasFolder && access(path.c_str(), F_OK) != 0) {
        return nullptr;
    }
    const bool isBroken = hasFolder && flags == kLoadFlags && IsCutShort(path);
    void* module = isBroken ? nullptr : dlopen(path.c_str(), flags);
    refused = refused || (module == nullptr && hasFolder);
    return module;
}

void* OpenByName(const std::string& name, int flags, bool& refused) {
    const bool bare = NameStart(name) == 0;
    for (const std::string& folder : bare ? SearchFolders() : std::vector<std::string>(1)) {
        for (const std::string& candidate : Candidates(name)) {
            const std::string path = bare ? folder + candidate : AbsolutePath(NativePath(candidate));
            if (void* module = Open(path, flags, refused)) {
                return module;
            }
        }
    }
    return nullptr;
}

// Enters a reference of the loader's that the program shall have.
HMODULE TakeModule(void* loaderHandle, int32_t references) {
    const auto handle = static_cast<HMODULE>(loaderHandle);
    if (handle == nullptr) {
        return nullptr;
    }
    link_map* record = nullptr;
    const bool named = dlinfo(loaderHandle, RTLD_DI_LINKMAP, &record) == 0 && record != nullptr;
    const std::string path = named ? PathOf(*record) : std::string();
    ModuleTable& table = Table();
    LayerGuard guard(table.Lock);
    Module& module = table.Modules[handle];
    module.Path = path;
    module.References += references;
    return handle;
}

// Gives one reference back; false if there is none to give.
bool DropModule(HMODULE handle) {
    ModuleTable& table = Table();
    std::string path;
    {
        LayerGuard guard(table.Lock);
        const auto place = table.Modules.find(handle);
        if (place == table.Modules.end() || place->second.References == 0) {
            return false;
        }
        path = place->second.Path;
        --place->second.References;
    }
    dlclose(handle);
    if (void* stillLoaded = dlopen(path.c_str(), kFindFlags)) {
        dlclose(stillLoaded);
        return true;
    }
    LayerGuard guard(table.Lock);
    const auto place = table.Modules.find(handle);
    if (place != table.Modules.end() && place->second.References == 0) {
        table.Modules.erase(place);
    }
    return true;
}

DWORD CopyPath(const std::string& path, LPSTR target, DWORD size) {
    if (size == 0) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return 0;
    }
    const size_t length = std::min<size_t>(path.size(), size - 1);
    std::memcpy(target, path.data(), length);
    target[length] = '\0';
    const bool whole = length == path.size();
    SetLastError(whole ? NO_ERROR : ERROR_INSUFFICIENT_BUFFER);
    return whole ? static_cast<DWORD>(length) : size;
}

// Takes a reference of the loader's, but for the executable, which needs none.
void* FindLoaded(LPCSTR name) {
    bool refused = false;
    return name == nullptr ? ExecutableModule() : OpenByName(name, kFindFlags, refused);
}

BOOL FailModule(DWORD error) {
    SetLastError(error);
    return FALSE;
}

}  // namespace
}  // namespace tdkp

HMODULE LoadLibraryA(LPCSTR name) {
    if (name == nullptr || *name == '\0') {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    bool refused = false;
    const HMODULE module = tdkp::TakeModule(tdkp::OpenByName(name, tdkp::kLoadFlags, refused), 1);
    if (module == nullptr) {
        SetLastError(refused ? ERROR_BAD_EXE_FORMAT : ERROR_MOD_NOT_FOUND);
    }
    return module;
}

FARPROC GetProcAddress(HMODULE module, LPCSTR name) {
    if (!tdkp::IsKnown(module)) {
        SetLastError(ERROR_INVALID_HANDLE);
        return nullptr;
    }
    const bool isName = reinterpret_cast<uintptr_t>(name) > tdkp::kLastOrdinal;
    void* const symbol = isName ? dlsym(module, name) : nullptr;
    // The loader also looks through what the module depends on; an export is the module's own.
    if (symbol == nullptr || static_cast<void*>(tdkp::ModuleAt(symbol)) != static_cast<void*>(module)) {
        SetLastError(ERROR_PROC_NOT_FOUND);
        return nullptr;
    }
    return reinterpret_cast<FARPROC>(symbol);
}

BOOL FreeLibrary(HMODULE module) {
    if (module != nullptr && module == tdkp::ExecutableModule()) {
        return TRUE;
    }
    return tdkp::DropModule(module) ? TRUE : tdkp::FailModule(ERROR_INVALID_HANDLE);
}

void TdkpUseProgramPath(const char* path) {
    tdkp::ModuleTable& table = tdkp::Table();
    tdkp::LayerGuard guard(table.Lock);
    table.ProgramPath = path != nullptr ? path : "";
}

DWORD GetModuleFileNameA(HMODULE module, LPSTR path, DWORD size) {
    if (path == nullptr) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    if (module == nullptr || module == tdkp::ExecutableModule()) {
        return tdkp::CopyPath(tdkp::ProgramPath(), path, size);
    }
    std::string text;
    {
        tdkp::ModuleTable& table = tdkp::Table();
        tdkp::LayerGuard guard(table.Lock);
        const auto place = table.Modules.find(module);
        if (place == table.Modules.end()) {
            SetLastError(ERROR_MOD_NOT_FOUND);
            return 0;
        }
        text = place->second.Path;
    }
    return tdkp::CopyPath(text, path, size);
}

HMODULE GetModuleHandleA(LPCSTR name) {
    HMODULE module = nullptr;
    GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT, name, &module);
    return module;
}

BOOL GetModuleHandleExA(DWORD flags, LPCSTR name, HMODULE* module) {
    if (module == nullptr) {
        return tdkp::FailModule(ERROR_INVALID_PARAMETER);
    }
    const bool keepsCount = (flags & GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT) != 0;
    // With PIN the loader's reference stays, and nobody can give it back.
    const bool pins = (flags & GET_MODULE_HANDLE_EX_FLAG_PIN) != 0;
    void* found = nullptr;
    const bool ownsReference = !keepsCount || pins;
    if ((flags & GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS) != 0) {
        // Without a reference the loader isn't called: a module may ask while it is being loaded or unloaded.
        link_map* const record = tdkp::ModuleAt(name);
        found = record != nullptr && ownsReference && record->l_name[0] != '\0'
                    ? dlopen(record->l_name, tdkp::kFindFlags)
                    : static_cast<void*>(record);
    } else {
        found = tdkp::FindLoaded(name);
        if (found != nullptr && !ownsReference && found != tdkp::ExecutableModule()) {
            dlclose(found);
        }
    }
    const bool counts = ownsReference && !pins && found != tdkp::ExecutableModule();
    *module = tdkp::TakeModule(found, counts ? 1 : 0);
    return *module != nullptr ? TRUE : tdkp::FailModule(ERROR_MOD_NOT_FOUND);
}
