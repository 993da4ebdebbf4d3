#include "player/host/Values.h"

#include <strings.h>

#include <iterator>

namespace tdkplay {

bool Values::CaselessLess::operator()(const std::string& a, const std::string& b) const {
    return strcasecmp(a.c_str(), b.c_str()) < 0;
}

HRESULT Values::QueryInterface(const GUID& id, void** out) {
    return GiveInterface(id, out, {{kIID_IUnknown, this}, {kIID_IKVAValues, this}});
}

HRESULT Values::SetNumber(const char* key, uint32_t value) {
    if (!key) return E_INVALIDARG;
    entries_[key].Number = value;
    return S_OK;
}

HRESULT Values::GetNumber(const char* key, uint32_t* value) {
    if (!key || !value) return E_INVALIDARG;
    const auto found = entries_.find(key);
    if (found == entries_.end() || !found->second.Number) return E_FAIL;
    *value = *found->second.Number;
    return S_OK;
}

HRESULT Values::GetFirstNumber(const char** key, uint32_t* value) {
    return NextNumber(entries_.begin(), key, value);
}

HRESULT Values::GetNextNumber(const char** key, uint32_t* value) {
    if (numberCursor_ == entries_.end()) return E_FAIL;
    return NextNumber(std::next(numberCursor_), key, value);
}

HRESULT Values::NextNumber(Entries::iterator from, const char** key, uint32_t* value) {
    while (from != entries_.end() && !from->second.Number) ++from;
    numberCursor_ = from;
    if (from == entries_.end()) return E_FAIL;
    *key = from->first.c_str();
    *value = *from->second.Number;
    return S_OK;
}

HRESULT Values::NextBuffer(Entries::iterator from, BufferSlot slot, Entries::iterator* cursor, const char** key,
                           IKVABuffer** buffer) {
    while (from != entries_.end() && !(from->second.*slot)) ++from;
    *cursor = from;
    if (from == entries_.end()) return E_FAIL;
    *key = from->first.c_str();
    *buffer = ComPtr<IKVABuffer>(from->second.*slot).Detach();
    return S_OK;
}

HRESULT Values::Set(const char* key, BufferSlot slot, IKVABuffer* buffer) {
    if (!key) return E_INVALIDARG;
    if (!buffer) return E_FAIL;
    entries_[key].*slot = ComPtr<IKVABuffer>(buffer);
    return S_OK;
}

HRESULT Values::Get(const char* key, BufferSlot slot, IKVABuffer** buffer) {
    if (!key || !buffer) return E_INVALIDARG;
    const auto found = entries_.find(key);
    if (found == entries_.end() || !(found->second.*slot)) return E_FAIL;
    *buffer = ComPtr<IKVABuffer>(found->second.*slot).Detach();
    return S_OK;
}

HRESULT Values::SetBufferValue(const char* key, IKVABuffer* buffer) {
    return Set(key, &Slots::Buffer, buffer);
}

HRESULT Values::GetBufferValue(const char* key, IKVABuffer** buffer) {
    return Get(key, &Slots::Buffer, buffer);
}

HRESULT Values::GetFirstBufferValue(const char** key, IKVABuffer** buffer) {
    return NextBuffer(entries_.begin(), &Slots::Buffer, &bufferCursor_, key, buffer);
}

HRESULT Values::GetNextBufferValue(const char** key, IKVABuffer** buffer) {
    if (bufferCursor_ == entries_.end()) return E_FAIL;
    return NextBuffer(std::next(bufferCursor_), &Slots::Buffer, &bufferCursor_, key, buffer);
}

HRESULT Values::SetTextValue(const char* key, IKVABuffer* text) {
    return Set(key, &Slots::Text, text);
}

HRESULT Values::GetTextValue(const char* key, IKVABuffer** text) {
    return Get(key, &Slots::Text, text);
}

HRESULT Values::GetFirstTextValue(const char** key, IKVABuffer** text) {
    return NextBuffer(entries_.begin(), &Slots::Text, &textCursor_, key, text);
}

HRESULT Values::GetNextTextValue(const char** key, IKVABuffer** text) {
    if (textCursor_ == entries_.end()) return E_FAIL;
    return NextBuffer(std::next(textCursor_), &Slots::Text, &textCursor_, key, text);
}

}  // namespace tdkplay
