// IKVAPreferences in memory, for one plug-in of one check.
#pragma once

#include <tdkviz/values.h>

#include <map>
#include <mutex>
#include <optional>
#include <string>

#include "player/host/ComObject.h"

namespace tdkplay::check {

class MemoryPreferences final : public ComObject<IKVAPreferences> {
public:
    // Nothing is stored at first.
    MemoryPreferences() = default;
    // Each name that isn't written yet reads as this text.
    explicit MemoryPreferences(const std::string& everything) : everything_(everything) {}

    HRESULT QueryInterface(const GUID& id, void** out) override;
    HRESULT ReadValue(const char* name, IKVABuffer** buffer) override;
    HRESULT WriteValue(const char* name, IKVABuffer* buffer) override;

    // References that somebody holds beside the caller's own.
    ULONG OthersHold() const { return Holders() - 1; }

private:
    const std::optional<std::string> everything_;
    std::mutex mutex_;
    std::map<std::string, std::string> texts_;
};

}  // namespace tdkplay::check
