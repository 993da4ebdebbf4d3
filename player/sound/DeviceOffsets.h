// For each sound device the milliseconds that its latency is larger than it tells, as the user has found by eye and
// ear.
#pragma once

#include <algorithm>
#include <map>
#include <string>

namespace tdkplay {

inline constexpr int kSmallestOffset = -500;  // milliseconds: the pictures come earlier
inline constexpr int kLargestOffset = 2000;

class DeviceOffsets {
public:
    // 0 for a device that nobody has set.
    int Of(const std::string& device) const {
        const auto found = offsets_.find(device);
        return found == offsets_.end() ? 0 : found->second;
    }
    // Beyond the bounds is the bound.
    void Set(const std::string& device, int milliseconds) {
        offsets_[device] = std::clamp(milliseconds, kSmallestOffset, kLargestOffset);
    }
    const std::map<std::string, int>& All() const { return offsets_; }
    bool operator==(const DeviceOffsets&) const = default;

private:
    std::map<std::string, int> offsets_;
};

}  // namespace tdkplay
