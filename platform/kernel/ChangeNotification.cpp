#include "platform/kernel/ChangeNotification.h"

#include <memory>
#include <utility>

#include "platform/include/winbase.h"
#include "platform/kernel/ChangeReader.h"
#include "platform/kernel/PathText.h"

namespace tdkp {

DWORD ChangeNotification::Open() {
    if (const DWORD error = watch_.Open(); error != NO_ERROR) {
        return error;
    }
    if (!TheChangeReader().Add(*this)) {
        return ERROR_NOT_ENOUGH_MEMORY;
    }
    DispatcherGuard guard(DispatcherLock());
    isOpen_ = true;
    return NO_ERROR;
}

void ChangeNotification::Close() {
    {
        DispatcherGuard guard(DispatcherLock());
        if (!std::exchange(isOpen_, false)) {
            return;
        }
    }
    TheChangeReader().Remove(*this);
}

bool ChangeNotification::Arm(DispatcherGuard& guard) {
    if (lost_) {
        return false;
    }
    signalled_ = std::exchange(changedSince_, false);
    if (signalled_) {
        WakeWaiters(guard);
    }
    return true;
}

void ChangeNotification::TakeNews() {
    const ChangeNews news = watch_.Read();
    if (news == ChangeNews::kNone) {
        return;
    }
    DispatcherGuard guard(DispatcherLock());
    lost_ = lost_ || news == ChangeNews::kLost;
    (signalled_ ? changedSince_ : signalled_) = true;
    WakeWaiters(guard);
}

namespace {

HANDLE Fail(DWORD error) {
    SetLastError(error);
    return INVALID_HANDLE_VALUE;
}

std::shared_ptr<ChangeNotification> FindNotification(DispatcherGuard& guard, HANDLE handle) {
    auto notification = FindObjectOf<ChangeNotification>(guard, handle);
    if (notification == nullptr) {
        SetLastError(ERROR_INVALID_HANDLE);
    }
    return notification;
}

}  // namespace
}  // namespace tdkp

HANDLE FindFirstChangeNotificationA(LPCSTR folder, BOOL withSubfolders, DWORD filter) {
    if (folder == nullptr || filter != FILE_NOTIFY_CHANGE_FILE_NAME) {
        return tdkp::Fail(ERROR_INVALID_PARAMETER);
    }
    const auto notification = std::make_shared<tdkp::ChangeNotification>(tdkp::AbsolutePath(tdkp::NativePath(folder)),
                                                                         withSubfolders != FALSE);
    if (const DWORD error = notification->Open(); error != NO_ERROR) {
        return tdkp::Fail(error);
    }
    const HANDLE handle = tdkp::OpenHandle(notification);
    return handle != nullptr ? handle : tdkp::Fail(ERROR_NOT_ENOUGH_MEMORY);
}

BOOL FindNextChangeNotification(HANDLE handle) {
    std::shared_ptr<tdkp::ChangeNotification> notification;
    tdkp::DispatcherGuard guard(tdkp::DispatcherLock());
    notification = tdkp::FindNotification(guard, handle);
    if (notification == nullptr) {
        return FALSE;
    }
    if (!notification->Arm(guard)) {
        SetLastError(ERROR_ACCESS_DENIED);
        return FALSE;
    }
    return TRUE;
}

BOOL FindCloseChangeNotification(HANDLE handle) {
    std::shared_ptr<tdkp::ChangeNotification> notification;
    {
        tdkp::DispatcherGuard guard(tdkp::DispatcherLock());
        notification = tdkp::FindNotification(guard, handle);
    }
    if (notification == nullptr || !tdkp::ReleaseHandle(handle)) {
        return FALSE;
    }
    notification->Close();
    return TRUE;
}
