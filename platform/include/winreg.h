// The registry: keys and values in one SQLite file, which TDKVIZ_REGISTRY names, else corvane/registry.db in
// $XDG_CONFIG_HOME (~/.config). Any thread may call anything. Names are compared without regard to case of
// ASCII letters. Every function gives an ERROR_ code, ERROR_SUCCESS if all went well.
#pragma once

#include "windef.h"

using LSTATUS = LONG;
using REGSAM = DWORD;
struct SECURITY_ATTRIBUTES;
struct FILETIME;

#define HKEY_CLASSES_ROOT (reinterpret_cast<HKEY>(static_cast<ULONG_PTR>(static_cast<LONG>(0x80000000))))
#define HKEY_CURRENT_USER (reinterpret_cast<HKEY>(static_cast<ULONG_PTR>(static_cast<LONG>(0x80000001))))
#define HKEY_LOCAL_MACHINE (reinterpret_cast<HKEY>(static_cast<ULONG_PTR>(static_cast<LONG>(0x80000002))))
#define HKEY_USERS (reinterpret_cast<HKEY>(static_cast<ULONG_PTR>(static_cast<LONG>(0x80000003))))

#ifndef ERROR_WRITE_FAULT
#define ERROR_WRITE_FAULT 29u
#endif
#ifndef ERROR_MORE_DATA
#define ERROR_MORE_DATA 234u
#endif
#ifndef ERROR_NO_MORE_ITEMS
#define ERROR_NO_MORE_ITEMS 259u
#endif
#ifndef ERROR_KEY_DELETED
#define ERROR_KEY_DELETED 1018u
#endif

// Kinds of value.
#define REG_NONE 0u
#define REG_SZ 1u
#define REG_EXPAND_SZ 2u
#define REG_BINARY 3u
#define REG_DWORD 4u
#define REG_MULTI_SZ 7u
#define REG_QWORD 11u

// Access that a key is opened for. A key that isn't opened for writing refuses writes.
#ifndef KEY_READ
#define KEY_QUERY_VALUE 0x0001u
#define KEY_SET_VALUE 0x0002u
#define KEY_CREATE_SUB_KEY 0x0004u
#define KEY_ENUMERATE_SUB_KEYS 0x0008u
#define KEY_NOTIFY 0x0010u
#define KEY_READ 0x20019u
#define KEY_WRITE 0x20006u
#define KEY_ALL_ACCESS 0xF003Fu
#endif
#define REG_OPTION_NON_VOLATILE 0u
#define REG_CREATED_NEW_KEY 1u
#define REG_OPENED_EXISTING_KEY 2u

// `subKey` may name several levels; missing ones are made. If the file can't be written, a key that doesn't
// exist can't be made (ERROR_ACCESS_DENIED), and one that does is opened all the same.
TDKP_API LSTATUS RegCreateKeyExA(HKEY key, LPCSTR subKey, DWORD reserved, LPSTR keyClass, DWORD options, REGSAM access,
                                 const SECURITY_ATTRIBUTES* security, HKEY* out, DWORD* disposition);
TDKP_API LSTATUS RegOpenKeyExA(HKEY key, LPCSTR subKey, DWORD options, REGSAM access, HKEY* out);
TDKP_API LSTATUS RegCloseKey(HKEY key);

// Values. Without `data` only kind and size are told; with too small a buffer the answer is ERROR_MORE_DATA and
// `size` the size needed.
TDKP_API LSTATUS RegQueryValueExA(HKEY key, LPCSTR name, DWORD* reserved, DWORD* type, BYTE* data, DWORD* size);
TDKP_API LSTATUS RegSetValueExA(HKEY key, LPCSTR name, DWORD reserved, DWORD type, const BYTE* data, DWORD size);

// Lengths of names are without their terminating zero when told, with it when given as a buffer's size.
TDKP_API LSTATUS RegEnumValueA(HKEY key, DWORD index, LPSTR name, DWORD* nameLength, DWORD* reserved, DWORD* type,
                               BYTE* data, DWORD* size);
TDKP_API LSTATUS RegEnumKeyExA(HKEY key, DWORD index, LPSTR name, DWORD* nameLength, DWORD* reserved, LPSTR keyClass,
                               DWORD* classLength, FILETIME* lastWrite);

// Takes a key with all below it; with a null `subKey` it empties the key itself.
TDKP_API LSTATUS RegDeleteTreeA(HKEY key, LPCSTR subKey);
