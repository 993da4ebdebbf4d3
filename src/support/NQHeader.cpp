#include "src/support/NQHeader.h"

#include <windows.h>

#include <algorithm>
#include <cstring>
#include <new>

namespace tdkviz {

CNQHeader* CNQHeader::Create() {
    auto* header = new (std::nothrow) CNQHeader;
    if (header) header->AddRef();
    return header;
}

HRESULT CNQHeader::QueryInterface(const GUID& id, void** out) {
    if (!out) return E_POINTER;
    const bool isOurs = id == kIID_IUnknown || id == kIID_IKVAValues;
    *out = isOurs ? static_cast<IKVAValues*>(this) : nullptr;
    if (!isOurs) return E_NOINTERFACE;
    AddRef();
    return S_OK;
}

ULONG CNQHeader::AddRef() {
    return RefCount.Add();
}

ULONG CNQHeader::Release() {
    const int32_t left = RefCount.Remove();
    if (left == 0) delete this;
    return static_cast<ULONG>(left);
}

HRESULT CNQHeader::SetNumber(const char* key, uint32_t value) {
    if (!key) return E_FAIL;
    Entry* entry = FindOrInsert(key);
    if (!entry) return E_OUTOFMEMORY;
    entry->Number = value;
    entry->HasNumber = true;
    return S_OK;
}

HRESULT CNQHeader::GetNumber(const char* key, uint32_t* value) {
    const Entry* entry = Find(key);
    if (!entry || !entry->HasNumber || !value) return E_FAIL;
    *value = entry->Number;
    return S_OK;
}

HRESULT CNQHeader::GetFirstNumber(const char** key, uint32_t* value) {
    return NumberFrom(0, key, value);
}

HRESULT CNQHeader::GetNextNumber(const char** key, uint32_t* value) {
    return NumberCursor == kAtEnd ? E_FAIL : NumberFrom(NumberCursor + 1, key, value);
}

HRESULT CNQHeader::SetBufferValue(const char* key, IKVABuffer* buffer) {
    return SetSlot(&Entry::Buffer, key, buffer);
}

HRESULT CNQHeader::GetBufferValue(const char* key, IKVABuffer** buffer) {
    return GetSlot(&Entry::Buffer, key, buffer);
}

HRESULT CNQHeader::GetFirstBufferValue(const char** key, IKVABuffer** buffer) {
    return SlotFrom(BufferCursor, 0, &Entry::Buffer, key, buffer);
}

HRESULT CNQHeader::GetNextBufferValue(const char** key, IKVABuffer** buffer) {
    return BufferCursor == kAtEnd ? E_FAIL : SlotFrom(BufferCursor, BufferCursor + 1, &Entry::Buffer, key, buffer);
}

HRESULT CNQHeader::SetTextValue(const char* key, IKVABuffer* text) {
    return SetSlot(&Entry::Text, key, text);
}

HRESULT CNQHeader::GetTextValue(const char* key, IKVABuffer** text) {
    return GetSlot(&Entry::Text, key, text);
}

HRESULT CNQHeader::GetFirstTextValue(const char** key, IKVABuffer** text) {
    return SlotFrom(TextCursor, 0, &Entry::Text, key, text);
}

HRESULT CNQHeader::GetNextTextValue(const char** key, IKVABuffer** text) {
    return TextCursor == kAtEnd ? E_FAIL : SlotFrom(TextCursor, TextCursor + 1, &Entry::Text, key, text);
}

int CNQHeader::Compare(const char* a, const char* b) const {
    return CaseSensitive ? std::strcmp(a, b) : _stricmp(a, b);
}

size_t CNQHeader::LowerBound(const char* key) const {
    const auto isBelow = [this](const Entry& entry, const char* wanted) {
        return Compare(entry.Key.get(), wanted) < 0;
    };
    return static_cast<size_t>(std::lower_bound(Entries.begin(), Entries.end(), key, isBelow) - Entries.begin());
}

const CNQHeader::Entry* CNQHeader::Find(const char* key) const {
    if (!key) return nullptr;
    const size_t place = LowerBound(key);
    return place < Entries.size() && Compare(key, Entries[place].Key.get()) >= 0 ? &Entries[place] : nullptr;
}

CNQHeader::Entry* CNQHeader::FindOrInsert(const char* key) {
    NumberCursor = BufferCursor = TextCursor = kAtEnd;
    if (const Entry* found = Find(key)) return const_cast<Entry*>(found);
    try {
        const size_t size = std::strlen(key) + 1;
        Entry entry;
        entry.Key = std::make_unique<char[]>(size);
        std::memcpy(entry.Key.get(), key, size);
        const auto place = Entries.begin() + static_cast<ptrdiff_t>(LowerBound(key));
        return &*Entries.insert(place, std::move(entry));
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

HRESULT CNQHeader::SetSlot(Slot slot, const char* key, IKVABuffer* buffer) {
    if (!key || !buffer) return E_FAIL;
    Entry* entry = FindOrInsert(key);
    if (!entry) return E_OUTOFMEMORY;
    entry->*slot = RefPtr<IKVABuffer>(buffer);
    return S_OK;
}

HRESULT CNQHeader::GetSlot(Slot slot, const char* key, IKVABuffer** buffer) const {
    const Entry* entry = Find(key);
    if (!entry || !(entry->*slot) || !buffer) return E_FAIL;
    *buffer = RefPtr<IKVABuffer>(entry->*slot).Detach();
    return S_OK;
}

HRESULT CNQHeader::NumberFrom(size_t start, const char** key, uint32_t* value) {
    const auto found = std::find_if(Entries.begin() + static_cast<ptrdiff_t>(start), Entries.end(),
                                    [](const Entry& entry) { return entry.HasNumber; });
    NumberCursor = found == Entries.end() ? kAtEnd : static_cast<size_t>(found - Entries.begin());
    if (found == Entries.end()) return E_FAIL;
    if (key) *key = found->Key.get();
    if (value) *value = found->Number;
    return S_OK;
}

HRESULT CNQHeader::SlotFrom(size_t& cursor, size_t start, Slot slot, const char** key, IKVABuffer** buffer) {
    const auto found = std::find_if(Entries.begin() + static_cast<ptrdiff_t>(start), Entries.end(),
                                    [slot](const Entry& entry) { return static_cast<bool>(entry.*slot); });
    cursor = found == Entries.end() ? kAtEnd : static_cast<size_t>(found - Entries.begin());
    if (found == Entries.end()) return E_FAIL;
    if (key) *key = found->Key.get();
    if (buffer) *buffer = RefPtr<IKVABuffer>((*found).*slot).Detach();
    return S_OK;
}

}  // namespace tdkviz
