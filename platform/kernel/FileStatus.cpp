#include <cerrno>

#include <sys/stat.h>

#include "platform/include/tdkcrt.h"
#include "platform/kernel/PathText.h"

int _stat32(const char* path, struct _stat32* record) {
    if (path == nullptr || record == nullptr) {
        errno = EINVAL;
        return -1;
    }
    struct stat status {};
    if (stat(tdkp::NativePath(path).c_str(), &status) != 0) {
        return -1;
    }
    record->st_dev = static_cast<uint32_t>(status.st_dev);
    record->st_ino = static_cast<uint16_t>(status.st_ino);
    record->st_mode = static_cast<uint16_t>(status.st_mode);
    record->st_nlink = static_cast<int16_t>(status.st_nlink);
    record->st_uid = static_cast<int16_t>(status.st_uid);
    record->st_gid = static_cast<int16_t>(status.st_gid);
    record->st_rdev = static_cast<uint32_t>(status.st_rdev);
    record->st_size = static_cast<int32_t>(status.st_size);
    record->st_atim.tv_sec = static_cast<int32_t>(status.st_mtim.tv_sec);
    record->st_mtim.tv_sec = static_cast<int32_t>(status.st_mtim.tv_sec);
    record->st_ctim.tv_sec = static_cast<int32_t>(status.st_ctim.tv_sec);
    return 0;
}
