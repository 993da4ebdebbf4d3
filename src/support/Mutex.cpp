#include "src/support/Mutex.h"

#include <new>

namespace tdkviz {

KVAWinMutex::KVAWinMutex() {
    InitializeCriticalSection(&section_);
}

KVAWinMutex::~KVAWinMutex() {
    DeleteCriticalSection(&section_);
}

HRESULT KVAWinMutex::Lock() {
    EnterCriticalSection(&section_);
    return S_OK;
}

HRESULT KVAWinMutex::Unlock() {
    LeaveCriticalSection(&section_);
    return S_OK;
}

HRESULT KVAWinMutex::TryLock() {
    return TryEnterCriticalSection(&section_) ? S_OK : E_FAIL;
}

HRESULT CreateInstanceMutex(KVAMutex** mutex) {
    *mutex = new (std::nothrow) KVAWinMutex;
    return *mutex ? S_OK : E_OUTOFMEMORY;
}

}  // namespace tdkviz
