// The player's IKVAValues. The class factory makes it for the add-on; the player fills one to configure
// the add-on and keeps one as the engine's preferences.
#pragma once

#include <tdkviz/values.h>

#include <map>
#include <optional>
#include <string>

#include "player/host/ComObject.h"

namespace tdkplay {

class Values final : public ComObject<IKVAValues> {
public:
    HRESULT QueryInterface(const GUID& id, void** out) override;
    HRESULT SetNumber(const char* key, uint32_t value) override;
    HRESULT GetNumber(const char* key, uint32_t* value) override;
    HRESULT GetFirstNumber(const char** key, uint32_t* value) override;
    HRESULT GetNextNumber(const char** key, uint32_t* value) override;
    HRESULT SetBufferValue(const char* key, IKVABuffer* buffer) override;
    HRESULT GetBufferValue(const char* key, IKVABuffer** buffer) override;
    HRESULT GetFirstBufferValue(const char** key, IKVABuffer** buffer) override;
    HRESULT GetNextBufferValue(const char** key, IKVABuffer** buffer) override;
    HRESULT SetTextValue(const char* key, IKVABuffer* text) override;
    HRESULT GetTextValue(const char* key, IKVABuffer** text) override;
    HRESULT GetFirstTextValue(const char** key, IKVABuffer** text) override;
    HRESULT GetNextTextValue(const char** key, IKVABuffer** text) override;

private:
    struct CaselessLess {
        bool operator()(const std::string& a, const std::string& b) const;
    };
    struct Slots {
        std::optional<uint32_t> Number;
        ComPtr<IKVABuffer> Buffer;
        ComPtr<IKVABuffer> Text;
    };
    // Entries are never taken out, and a map keeps its entries in place: a cursor stays good through a Set.
    using Entries = std::map<std::string, Slots, CaselessLess>;
    using BufferSlot = ComPtr<IKVABuffer> Slots::*;

    HRESULT NextNumber(Entries::iterator from, const char** key, uint32_t* value);
    HRESULT NextBuffer(Entries::iterator from, BufferSlot slot, Entries::iterator* cursor, const char** key,
                       IKVABuffer** buffer);
    HRESULT Set(const char* key, BufferSlot slot, IKVABuffer* buffer);
    HRESULT Get(const char* key, BufferSlot slot, IKVABuffer** buffer);

    Entries entries_;
    Entries::iterator numberCursor_ = entries_.end();
    Entries::iterator bufferCursor_ = entries_.end();
    Entries::iterator textCursor_ = entries_.end();
};

}  // namespace tdkplay
