#include "platform/registry/RegistryStamp.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

namespace tdkp {
namespace {

constexpr size_t kReadVersionByte = 19;
constexpr uint8_t kWriteAheadVersion = 2;
constexpr int kMaxSetAside = 1000;

class Descriptor {
public:
    explicit Descriptor(const std::string& fileName)
        : value_(open(fileName.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)) {}
    ~Descriptor() {
        if (value_ >= 0) close(value_);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    int Get() const { return value_; }

private:
    const int value_;
};

}  // namespace

RegistryStamp RegistryStamp::Of(const std::string& fileName) {
    RegistryStamp stamp;
    const Descriptor file(fileName);
    if (file.Get() < 0) {
        stamp.trusted_ = errno == ENOENT;
        return stamp;
    }
    struct stat status;
    if (fstat(file.Get(), &status) != 0) return stamp;
    stamp.device_ = status.st_dev;
    stamp.inode_ = status.st_ino;
    stamp.size_ = status.st_size;
    stamp.writtenSeconds_ = status.st_mtim.tv_sec;
    stamp.writtenNanoseconds_ = status.st_mtim.tv_nsec;
    const ssize_t length = pread(file.Get(), stamp.header_.data(), kHeaderSize, 0);
    // Transactions of a write-ahead log don't show in the file.
    stamp.trusted_ = length == 0 || (length == static_cast<ssize_t>(kHeaderSize) &&
                                     stamp.header_[kReadVersionByte] != kWriteAheadVersion);
    return stamp;
}

bool SetDamagedFileAside(const std::string& fileName) {
    const Descriptor file(fileName);
    struct stat opened, named;
    // Of two processes that found the damage at once, the second sees here that the name means another file now.
    if (file.Get() < 0 || flock(file.Get(), LOCK_EX) != 0 || fstat(file.Get(), &opened) != 0) return false;
    if (stat(fileName.c_str(), &named) != 0 || named.st_ino != opened.st_ino || named.st_dev != opened.st_dev)
        return true;
    for (int number = 1; number <= kMaxSetAside; ++number) {
        const std::string aside = fileName + ".damaged-" + std::to_string(number);
        if (renameat2(AT_FDCWD, fileName.c_str(), AT_FDCWD, aside.c_str(), RENAME_NOREPLACE) == 0) {
            // Left where it is, the journal would be played into the new file.
            std::rename((fileName + "-journal").c_str(), (aside + "-journal").c_str());
            return true;
        }
        if (errno != EEXIST) return false;
    }
    return false;
}

}  // namespace tdkp
