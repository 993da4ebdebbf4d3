// Tells without SQLite whether the registry's file is still the one that was read.
#pragma once

#include <sys/types.h>

#include <array>
#include <cstdint>
#include <string>

namespace tdkp {

// Which file it is, how long, when written, and its first bytes, among which is the count of transactions.
class RegistryStamp {
public:
    // The file as it stands now. Not while a transaction of this process runs: closing a file takes the
    // process's locks on it away.
    static RegistryStamp Of(const std::string& fileName);

    // False if the two differ, or if equal stamps say nothing.
    bool StillHolds(const RegistryStamp& now) const { return trusted_ && now.trusted_ && *this == now; }
    bool operator==(const RegistryStamp&) const = default;
    bool IsOfSameFile(const RegistryStamp& other) const { return device_ == other.device_ && inode_ == other.inode_; }

private:
    static constexpr size_t kHeaderSize = 100;  // of a SQLite file

    bool trusted_ = false;
    dev_t device_ = 0;
    ino_t inode_ = 0;
    off_t size_ = -1;  // -1: there is no file
    int64_t writtenSeconds_ = 0;
    int64_t writtenNanoseconds_ = 0;
    std::array<uint8_t, kHeaderSize> header_ = {};
};

// Renames a damaged file within its folder, its journal with it, so that nothing is lost and a new one can be
// begun. Two processes may do so at once. False if it couldn't be done.
bool SetDamagedFileAside(const std::string& fileName);

}  // namespace tdkp
