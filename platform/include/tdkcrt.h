// The few names of the Windows C runtime that have no counterpart under the same name here. On Windows
// they come from <string.h>, <stdlib.h> and <sys/stat.h>.
#pragma once

// The system's header makes macros of the time fields (st_atime is st_atim.tv_sec); `_stat32` below is
// laid out so that those macros name its fields.
#include <string.h>
#include <sys/stat.h>

#include "windef.h"

#define _MAX_PATH 260
#define _MAX_DRIVE 3
#define _MAX_DIR 256
#define _MAX_FNAME 256
#define _MAX_EXT 256

// Comparison of byte text without regard to the case of the letters A to Z. A null text sorts first.
TDKP_API int _stricmp(const char* left, const char* right);

// Cuts a path into drive ("C:"), directory with its closing separator, name, and extension with its dot.
// Backslash and slash both separate. Any part may be null; the others hold _MAX_DRIVE, _MAX_DIR,
// _MAX_FNAME and _MAX_EXT bytes, and a longer part is cut to that.
TDKP_API void _splitpath(const char* path, char* drive, char* directory, char* name, char* extension);

struct TdkpStatTime {
    int32_t tv_sec;
};

// The status record of a file, 36 bytes; each field is cut to its width.
struct _stat32 {
    uint32_t st_dev;
    uint16_t st_ino;
    uint16_t st_mode;
    int16_t st_nlink;
    int16_t st_uid;
    int16_t st_gid;
    uint32_t st_rdev;
    int32_t st_size;
    TdkpStatTime st_atim;  // st_atime; carries the modification time: reading a file must not change its record
    TdkpStatTime st_mtim;  // st_mtime
    TdkpStatTime st_ctim;  // st_ctime
};
static_assert(sizeof(struct _stat32) == 36, "the record is hashed as it stands");

// 0, or -1 with errno set. Both separators are taken. The record's padding is left as it was.
// The record and the call share one name, as they always did.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wshadow"
TDKP_API int _stat32(const char* path, struct _stat32* record);
#pragma GCC diagnostic pop
