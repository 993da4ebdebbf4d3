#include "src/support/DLLAccessPath.h"

#include <cstring>
#include <iterator>
#include <memory>
#include <new>

#include "src/support/PathName.h"

namespace tdkviz {
namespace {

constexpr const char* kKindNames[] = {
    "DT_NotDef", "DT_Plugins", "DT_Codecs", "DT_EncSDK", "DT_Common", "DT_Update_OB", "DT_Objbrokr", "DT_KCAPlugins",
};
static_assert(std::size(kKindNames) == static_cast<size_t>(DLLKind::Count));

constexpr char kAssign = '=';

bool EndsInSeparator(const char* folder) {
    const char* last = folder;
    for (const char* p = folder; *p; p = NextChar(p)) last = p;
    return *last == '\\' || (*last != 0 && *last == PathSeparator());
}

char* WriteText(char* place, const CNQString& text) {
    const auto length = static_cast<size_t>(text.GetLength());
    std::memcpy(place, text.GetText(), length);
    return place + length;
}

}  // namespace

uint32_t DLLAccessPath::AddRef() {
    return RefCount.Add();
}

uint32_t DLLAccessPath::Release() {
    return static_cast<uint32_t>(RefCount.Remove());
}

HRESULT DLLAccessPath::SetPath(const char* name, const char* folder) {
    if (!folder || *folder == 0) return S_OK;
    const MutexLock lock(&mutex_);
    CNQString stored(folder);
    if (!EndsInSeparator(folder)) stored = stored + SeparatorFor(folder);
    Paths.Set(name, stored);
    return S_OK;
}

HRESULT DLLAccessPath::SetPath(DLLKind kind, const char* folder) {
    return kind < DLLKind::Count ? SetPath(kKindNames[static_cast<size_t>(kind)], folder) : E_FAIL;
}

const char* DLLAccessPath::GetPath(const char* name) const {
    const MutexLock lock(&mutex_);
    const CNQString* folder = Paths.Find(name);
    return folder ? folder->GetText() : nullptr;
}

const char* DLLAccessPath::GetPath(DLLKind kind) const {
    return kind < DLLKind::Count ? GetPath(kKindNames[static_cast<size_t>(kind)]) : nullptr;
}

CNQString DLLAccessPath::CopyPath(DLLKind kind) const {
    const MutexLock lock(&mutex_);
    return CNQString(GetPath(kind));  // from the text: a copied value would share its block beyond the lock
}

HRESULT DLLAccessPath::SetFromBlock(const char* block) {
    if (!block) return S_OK;
    for (const char* entry = block; *entry; entry += std::strlen(entry) + 1) {
        const char* assign = FindChar(entry, kAssign);
        if (!assign) continue;
        const CNQString name(entry, static_cast<int32_t>(assign - entry));
        SetPath(name.GetText(), assign + 1);
    }
    return S_OK;
}

HRESULT DLLAccessPath::PassTo(SetDLLAccessPathFunction function) const {
    std::unique_ptr<char[]> block;
    const HRESULT result = WriteBlock(block);
    if (block) function(block.get());
    return result;
}

HRESULT DLLAccessPath::WriteBlock(std::unique_ptr<char[]>& block) const {
    const MutexLock lock(&mutex_);
    if (Paths.GetCount() == 0) return S_OK;
    size_t size = 1;
    CNQString name;
    CNQString folder;
    for (intptr_t position = Paths.GetStartPosition(); position != 0;) {
        Paths.GetNext(position, name, folder);
        size += static_cast<size_t>(name.GetLength()) + static_cast<size_t>(folder.GetLength()) + 2;
    }
    block.reset(new (std::nothrow) char[size]);
    if (!block) return E_FAIL;
    char* place = block.get();
    for (intptr_t position = Paths.GetStartPosition(); position != 0;) {
        Paths.GetNext(position, name, folder);
        place = WriteText(place, name);
        *place++ = kAssign;
        place = WriteText(place, folder);
        *place++ = 0;
    }
    *place = 0;
    return S_OK;
}

DLLAccessPath* GetDLLAccessPath() {
    static DLLAccessPath table;
    return &table;
}

}  // namespace tdkviz
