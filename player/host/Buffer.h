// The player's IKVABuffer: in it each block of audio goes to the hooks, and text into a bag of values.
#pragma once

#include <tdkviz/buffer.h>

#include <string>
#include <vector>

#include "player/host/ComObject.h"

namespace tdkplay {

class Buffer final : public ComObject<IKVABuffer> {
public:
    // A buffer that holds `text` with its terminator, as a text slot of IKVAValues wants it.
    static ComPtr<Buffer> FromText(const std::string& text);

    // A holder beside the caller exists, so the contents must not change any more.
    bool IsShared() const { return Holders() > 1; }

    HRESULT QueryInterface(const GUID& id, void** out) override;
    HRESULT GetContents(void** data, uint32_t* size) override;
    // Memory once grown is kept: contents of the same size allocate nothing.
    HRESULT SetContents(const void* data, uint32_t size) override;
    HRESULT SetSize(uint32_t size) override;
    uint32_t GetSize() override { return static_cast<uint32_t>(bytes_.size()); }
    void* GetBuffer() override { return bytes_.data(); }

private:
    std::vector<unsigned char> bytes_;
};

}  // namespace tdkplay
