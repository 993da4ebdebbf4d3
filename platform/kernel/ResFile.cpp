#include "platform/kernel/ResFile.h"

#include <algorithm>
#include <cstring>

namespace tdkp {
namespace {

constexpr size_t kAlignment = 4;
constexpr size_t kSizes = 2 * sizeof(uint32_t);
constexpr size_t kFlags = 16;
constexpr size_t kSmallestHeader = kSizes + 2 * sizeof(uint32_t) + kFlags;
constexpr uint16_t kNumberMark = 0xFFFF;
constexpr int32_t kNoNumber = -1;

template <typename T>
T Read(const uint8_t* from) {
    T value;
    std::memcpy(&value, from, sizeof value);
    return value;
}

// Takes one type or name off the front; false if it isn't whole. A text gives kNoNumber.
bool TakeName(ResBytes& bytes, int32_t* number) {
    *number = kNoNumber;
    for (bool first = true; bytes.size() >= sizeof(uint16_t); first = false) {
        const auto unit = Read<uint16_t>(bytes.data());
        bytes = bytes.subspan(sizeof unit);
        if (first && unit == kNumberMark) {
            if (bytes.size() < sizeof(uint16_t)) return false;
            *number = Read<uint16_t>(bytes.data());
            bytes = bytes.subspan(sizeof(uint16_t));
            return true;
        }
        if (unit == 0) return true;
    }
    return false;
}

bool HasNames(ResBytes header, uint16_t type, uint16_t name) {
    int32_t foundType = kNoNumber, foundName = kNoNumber;
    return TakeName(header, &foundType) && TakeName(header, &foundName) && foundType == type && foundName == name;
}

}  // namespace

ResBytes FindResEntry(ResBytes file, uint16_t type, uint16_t name) {
    while (file.size() >= kSmallestHeader) {
        const uint64_t dataSize = Read<uint32_t>(file.data());
        const uint64_t headerSize = Read<uint32_t>(file.data() + sizeof(uint32_t));
        const uint64_t size = headerSize + dataSize;
        if (headerSize < kSmallestHeader || size > file.size()) break;
        if (HasNames(file.subspan(kSizes, headerSize - kSizes - kFlags), type, name)) return file.first(size);
        file = file.subspan(std::min<uint64_t>((size + kAlignment - 1) / kAlignment * kAlignment, file.size()));
    }
    return {};
}

ResBytes ResEntryData(const uint8_t* entry) {
    return {entry + Read<uint32_t>(entry + sizeof(uint32_t)), Read<uint32_t>(entry)};
}

std::u16string StringInBlock(ResBytes block, uint16_t id) {
    for (uint16_t before = id % kStringsPerBlock; block.size() >= sizeof(uint16_t); --before) {
        const size_t bytes = Read<uint16_t>(block.data()) * sizeof(char16_t);
        block = block.subspan(sizeof(uint16_t));
        if (bytes > block.size()) break;
        if (before == 0) {
            std::u16string text(bytes / sizeof(char16_t), u'\0');
            std::memcpy(text.data(), block.data(), bytes);
            return text;
        }
        block = block.subspan(bytes);
    }
    return {};
}

}  // namespace tdkp
