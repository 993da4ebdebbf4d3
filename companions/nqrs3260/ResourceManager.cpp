#include "companions/nqrs3260/ResourceManager.h"

#include <algorithm>
#include <climits>
#include <mutex>
#include <new>

namespace {

constexpr int kTagShift = 16;
constexpr uint32_t kNumberMask = 0xFFFF;

std::mutex lock;  // guards all below and all of the manager
ResourceManager* theManager = nullptr;

}  // namespace

ResourceManager* ResourceManager::Acquire() {
    const std::lock_guard guard(lock);
    if (!theManager) theManager = new (std::nothrow) ResourceManager;
    if (theManager) ++theManager->references_;
    return theManager;
}

HRESULT ResourceManager::QueryInterface(const GUID& id, void** out) {
    if (!out) return E_POINTER;
    *out = nullptr;
    if (id != kIID_IUnknown) return E_NOINTERFACE;
    *out = static_cast<INQResourceManager*>(this);
    AddRef();
    return S_OK;
}

ULONG ResourceManager::AddRef() {
    const std::lock_guard guard(lock);
    return ++references_;
}

ULONG ResourceManager::Release() {
    const std::lock_guard guard(lock);
    const ULONG left = --references_;
    if (left == 0) {
        theManager = nullptr;
        delete this;
    }
    return left;
}

void ResourceManager::AddModule(HMODULE module, uint32_t tag) {
    const std::lock_guard guard(lock);
    std::erase_if(entries_, [&](const Entry& entry) { return entry.module == module && entry.tag == tag; });
    try {
        entries_.insert(entries_.begin(), {module, tag});
    } catch (const std::bad_alloc&) {
        // The module stays unknown, as if it held nothing.
    }
}

void ResourceManager::RemoveModule(HMODULE module) {
    const std::lock_guard guard(lock);
    std::erase_if(entries_, [&](const Entry& entry) { return entry.module == module; });
}

template <typename Ask>
auto ResourceManager::FirstAnswer(uint32_t id, Ask ask) {
    const std::lock_guard guard(lock);
    const uint32_t number = id & kNumberMask;
    decltype(ask(HMODULE{}, number)) answer{};
    for (const Entry& entry : entries_) {
        if (entry.tag == id >> kTagShift && (answer = ask(entry.module, number))) break;
    }
    return answer;
}

HBITMAP ResourceManager::LoadBitmap(uint32_t id) {
    return FirstAnswer(id,
                       [](HMODULE module, uint32_t number) { return ::LoadBitmapA(module, MAKEINTRESOURCEA(number)); });
}

int32_t ResourceManager::LoadString(uint32_t id, char* buffer, uint32_t size) {
    if (!buffer || size == 0) return 0;
    buffer[0] = '\0';
    const int room = static_cast<int>(std::min<uint32_t>(size, INT_MAX));
    return FirstAnswer(
        id, [=](HMODULE module, uint32_t number) -> int32_t { return ::LoadStringA(module, number, buffer, room); });
}

HMODULE ResourceManager::GetResourceInstance(uint32_t id, uint32_t kind) {
    if (kind != kResourceKindDialog) return nullptr;
    return FirstAnswer(id, [](HMODULE module, uint32_t number) {
        return ::FindResourceA(module, MAKEINTRESOURCEA(number), RT_DIALOG) ? module : nullptr;
    });
}
