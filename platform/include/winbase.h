// Handles, threads, waits, locks, time, files, file mappings and libraries.
#pragma once

#include "tdkcrt.h"
#include "windef.h"

// ---- Errors. Kept for each thread apart. ----

#define NO_ERROR 0u
#define ERROR_SUCCESS 0u
#define ERROR_FILE_NOT_FOUND 2u
#define ERROR_PATH_NOT_FOUND 3u
#define ERROR_ACCESS_DENIED 5u
#define ERROR_INVALID_HANDLE 6u
#define ERROR_NOT_ENOUGH_MEMORY 8u
#define ERROR_NO_MORE_FILES 18u
#define ERROR_NOT_SUPPORTED 50u
#define ERROR_INVALID_PARAMETER 87u
#define ERROR_INSUFFICIENT_BUFFER 122u
#define ERROR_MOD_NOT_FOUND 126u
#define ERROR_PROC_NOT_FOUND 127u
#define ERROR_BAD_EXE_FORMAT 193u

TDKP_API DWORD GetLastError(void);
TDKP_API void SetLastError(DWORD error);

#define SEM_FAILCRITICALERRORS 0x0001u
#define SEM_NOGPFAULTERRORBOX 0x0002u
#define SEM_NOOPENFILEERRORBOX 0x8000u
// Kept and given back; the layer shows no boxes in any mode.
TDKP_API UINT SetErrorMode(UINT mode);

// ---- Handles ----

#define INVALID_HANDLE_VALUE (reinterpret_cast<HANDLE>(static_cast<LONG_PTR>(-1)))

struct SECURITY_ATTRIBUTES {
    DWORD nLength;
    LPVOID lpSecurityDescriptor;
    BOOL bInheritHandle;
};
using LPSECURITY_ATTRIBUTES = SECURITY_ATTRIBUTES*;

// Events, threads and file mappings. A thread runs on without its handle; a bitmap stays without its mapping.
TDKP_API BOOL CloseHandle(HANDLE object);

// ---- Events. Names are not supported: a name other than null fails with ERROR_NOT_SUPPORTED. ----

TDKP_API HANDLE CreateEventA(LPSECURITY_ATTRIBUTES attributes, BOOL manualReset, BOOL initialState, LPCSTR name);
TDKP_API BOOL SetEvent(HANDLE event);
TDKP_API BOOL ResetEvent(HANDLE event);

// ---- Threads ----

using LPTHREAD_START_ROUTINE = DWORD(WINAPI*)(LPVOID argument);
using PTHREAD_START_ROUTINE = LPTHREAD_START_ROUTINE;

#define STILL_ACTIVE 259u
#define STACK_SIZE_PARAM_IS_A_RESERVATION 0x00010000u

// Starts at once: CREATE_SUSPENDED is not supported. Stack size 0 takes the system's usual size.
TDKP_API HANDLE CreateThread(LPSECURITY_ATTRIBUTES attributes, SIZE_T stackSize, LPTHREAD_START_ROUTINE entry,
                             LPVOID argument, DWORD flags, LPDWORD threadId);
TDKP_API DWORD GetCurrentThreadId(void);
TDKP_API BOOL GetExitCodeThread(HANDLE thread, LPDWORD exitCode);
// Stops the thread where it stands: no destructor of it runs, its stack is not unwound, locks of the
// program that it holds stay locked. The layer's own locks it gives back first. Comes back when it has gone.
TDKP_API BOOL TerminateThread(HANDLE thread, DWORD exitCode);

// ---- Waits ----

#define INFINITE 0xFFFFFFFFu
#define WAIT_OBJECT_0 0u
#define WAIT_TIMEOUT 258u
#define WAIT_FAILED 0xFFFFFFFFu
#define MAXIMUM_WAIT_OBJECTS 64

TDKP_API DWORD WaitForSingleObject(HANDLE object, DWORD milliseconds);
TDKP_API DWORD WaitForMultipleObjects(DWORD count, const HANDLE* objects, BOOL waitAll, DWORD milliseconds);
// MsgWaitForMultipleObjects is in winuser.h.
TDKP_API void Sleep(DWORD milliseconds);

// ---- Critical sections: recursive, and outside the layer's waits ----

struct CRITICAL_SECTION {
    alignas(void*) BYTE Storage[64];
};
using LPCRITICAL_SECTION = CRITICAL_SECTION*;

TDKP_API void InitializeCriticalSection(LPCRITICAL_SECTION section);
TDKP_API void EnterCriticalSection(LPCRITICAL_SECTION section);
TDKP_API BOOL TryEnterCriticalSection(LPCRITICAL_SECTION section);
TDKP_API void LeaveCriticalSection(LPCRITICAL_SECTION section);
TDKP_API void DeleteCriticalSection(LPCRITICAL_SECTION section);

// ---- Interlocked operations: full barriers. The first two give the new value, the others the old one. ----

inline LONG InterlockedIncrement(LONG volatile* value) {
    return __atomic_add_fetch(value, 1, __ATOMIC_SEQ_CST);
}
inline LONG InterlockedDecrement(LONG volatile* value) {
    return __atomic_sub_fetch(value, 1, __ATOMIC_SEQ_CST);
}
inline LONG InterlockedExchange(LONG volatile* target, LONG value) {
    return __atomic_exchange_n(target, value, __ATOMIC_SEQ_CST);
}
inline LONG InterlockedExchangeAdd(LONG volatile* target, LONG value) {
    return __atomic_fetch_add(target, value, __ATOMIC_SEQ_CST);
}
inline LONG InterlockedCompareExchange(LONG volatile* target, LONG value, LONG comparand) {
    __atomic_compare_exchange_n(target, &comparand, value, false, __ATOMIC_SEQ_CST, __ATOMIC_SEQ_CST);
    return comparand;
}
inline PVOID InterlockedExchangePointer(PVOID volatile* target, PVOID value) {
    return __atomic_exchange_n(target, value, __ATOMIC_SEQ_CST);
}
inline PVOID InterlockedCompareExchangePointer(PVOID volatile* target, PVOID value, PVOID comparand) {
    __atomic_compare_exchange_n(target, &comparand, value, false, __ATOMIC_SEQ_CST, __ATOMIC_SEQ_CST);
    return comparand;
}

// ---- Time ----

union LARGE_INTEGER {
    __extension__ struct {
        DWORD LowPart;
        LONG HighPart;
    };
    LONGLONG QuadPart;
};

TDKP_API BOOL QueryPerformanceCounter(LARGE_INTEGER* count);
TDKP_API BOOL QueryPerformanceFrequency(LARGE_INTEGER* frequency);
TDKP_API DWORD GetTickCount(void);

// ---- Power ----

using EXECUTION_STATE = DWORD;

#define ES_SYSTEM_REQUIRED 0x00000001u
#define ES_DISPLAY_REQUIRED 0x00000002u
#define ES_CONTINUOUS 0x80000000u

// What the calling thread needs until its next call or its end; without ES_CONTINUOUS it isn't supported. While any
// thread needs the display and the process has a window, the screen saver of the X server is held off; what a desktop
// does beside that, and the sleep of the machine, are not the layer's. Gives the former state of the thread, 0 for
// what isn't supported.
TDKP_API EXECUTION_STATE SetThreadExecutionState(EXECUTION_STATE state);

// ---- Files. Backslash and slash both separate. ----

#define FILE_ATTRIBUTE_READONLY 0x00000001u
#define FILE_ATTRIBUTE_DIRECTORY 0x00000010u
#define FILE_ATTRIBUTE_NORMAL 0x00000080u

struct FILETIME {
    DWORD dwLowDateTime;
    DWORD dwHighDateTime;
};

struct WIN32_FIND_DATAA {
    DWORD dwFileAttributes;
    FILETIME ftCreationTime;
    FILETIME ftLastAccessTime;
    FILETIME ftLastWriteTime;
    DWORD nFileSizeHigh;
    DWORD nFileSizeLow;
    DWORD dwReserved0;
    DWORD dwReserved1;
    CHAR cFileName[MAX_PATH];
    CHAR cAlternateFileName[14];
};
using LPWIN32_FIND_DATAA = WIN32_FIND_DATAA*;

// The last part of the pattern may hold * and ?; "*.*" matches every name. Entries come as ".", "..", then
// sorted by name, byte for byte. INVALID_HANDLE_VALUE with ERROR_PATH_NOT_FOUND if there is no such folder,
// with ERROR_FILE_NOT_FOUND if nothing in it matches.
TDKP_API HANDLE FindFirstFileA(LPCSTR pattern, LPWIN32_FIND_DATAA data);
TDKP_API BOOL FindNextFileA(HANDLE search, LPWIN32_FIND_DATAA data);
TDKP_API BOOL FindClose(HANDLE search);

// ---- Change notifications ----

#define FILE_NOTIFY_CHANGE_FILE_NAME 0x00000001u

// A handle for waits, signalled when a file of the folder, or of one below it if `withSubfolders`, is made,
// deleted or renamed; a file that isn't closed yet when it is made signals once more when it is. It stays
// signalled until FindNext, and what happens meanwhile signals it again then. INVALID_HANDLE_VALUE if there is
// no such folder. No other filter than FILE_NOTIFY_CHANGE_FILE_NAME is supported.
TDKP_API HANDLE FindFirstChangeNotificationA(LPCSTR folder, BOOL withSubfolders, DWORD filter);
// FALSE with ERROR_ACCESS_DENIED if the folder itself was deleted or moved, which signals too.
TDKP_API BOOL FindNextChangeNotification(HANDLE notification);
TDKP_API BOOL FindCloseChangeNotification(HANDLE notification);

// ---- File mappings: memory of its own only (INVALID_HANDLE_VALUE), without a name, for CreateDIBSection ----

#define PAGE_READWRITE 0x04u

TDKP_API HANDLE CreateFileMappingA(HANDLE file, LPSECURITY_ATTRIBUTES attributes, DWORD protection, DWORD sizeHigh,
                                   DWORD sizeLow, LPCSTR name);

// ---- Libraries. A module handle is an address. ----

using FARPROC = INT_PTR(WINAPI*)();

#define GET_MODULE_HANDLE_EX_FLAG_PIN 0x00000001u
#define GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT 0x00000002u
#define GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS 0x00000004u

// Tries the name as it stands, then with ".so" in place of ".dll". A bare name is looked for beside the
// executable, beside this library, and by the system's loader.
TDKP_API HMODULE LoadLibraryA(LPCSTR name);
TDKP_API FARPROC GetProcAddress(HMODULE module, LPCSTR name);
TDKP_API BOOL FreeLibrary(HMODULE module);
// The full path; null names the executable. Gives the length, or `size` if the path had to be cut.
TDKP_API DWORD GetModuleFileNameA(HMODULE module, LPSTR path, DWORD size);
// Null gives the executable.
TDKP_API HMODULE GetModuleHandleA(LPCSTR name);
// With FROM_ADDRESS: the module that holds the address `name`; a module's constructor gets its own handle so.
TDKP_API BOOL GetModuleHandleExA(DWORD flags, LPCSTR name, HMODULE* module);

// ---- Resources, by number only. They live in the module, as long as it does. ----

#define ERROR_RESOURCE_NAME_NOT_FOUND 1814u

// Null names the executable. Null with ERROR_RESOURCE_NAME_NOT_FOUND if there is no such resource.
TDKP_API HRSRC FindResourceA(HMODULE module, LPCSTR name, LPCSTR type);
TDKP_API HGLOBAL LoadResource(HMODULE module, HRSRC resource);
TDKP_API LPVOID LockResource(HGLOBAL data);
TDKP_API DWORD SizeofResource(HMODULE module, HRSRC resource);

// ---- Text ----

// The next character; stays on the terminating zero.
TDKP_API LPSTR CharNextA(LPCSTR text);
