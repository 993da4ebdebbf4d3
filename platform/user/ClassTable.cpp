#include "platform/user/ClassTable.h"

#include <commctrl.h>

#include <algorithm>

#include "platform/kernel/Immortal.h"
#include "platform/kernel/PathText.h"
#include "platform/user/Button.h"
#include "platform/user/DialogWindow.h"
#include "platform/user/MenuWindow.h"
#include "platform/user/Static.h"
#include "platform/user/Trackbar.h"
#include "platform/user/WindowTable.h"

namespace tdkp {
namespace {

constexpr ATOM kFirstAtom = 0xC000;
constexpr ULONG_PTR kLargestAtom = 0xFFFF;

struct Classes {
    std::vector<std::shared_ptr<WindowClass>> list;
    ATOM lastAtom = kFirstAtom;
};

ATOM Append(Classes& classes, const WNDCLASSA& info, LPCSTR name, bool builtIn) {
    auto added = std::make_shared<WindowClass>();
    added->name = name;
    added->builtIn = builtIn;
    added->info = info;
    added->info.lpszClassName = added->name.c_str();
    added->info.lpszMenuName = nullptr;
    added->atom = ++classes.lastAtom;
    classes.list.push_back(added);
    return added->atom;
}

// The classes that every process has. New controls get their line here.
Classes& TheClasses() {
    Classes& classes = Immortal<Classes>();
    if (!classes.list.empty()) return classes;
    Append(classes, ButtonClass(), "Button", true);
    Append(classes, StaticClass(), "Static", true);
    Append(classes, TrackbarClass(), TRACKBAR_CLASSA, true);
    Append(classes, DialogClass(), kDialogClass, true);
    Append(classes, MenuClass(), kMenuClass, true);
    return classes;
}

bool HasName(const WindowClass& windowClass, LPCSTR name) {
    const auto number = reinterpret_cast<ULONG_PTR>(name);
    return number <= kLargestAtom ? windowClass.atom == number : EqualsIgnoringCase(windowClass.name, name);
}

auto FindOwn(Classes& classes, LPCSTR name, HINSTANCE instance) {
    return std::find_if(classes.list.begin(), classes.list.end(), [&](const std::shared_ptr<WindowClass>& entry) {
        return entry->info.hInstance == instance && HasName(*entry, name);
    });
}

}  // namespace

std::shared_ptr<WindowClass> FindClass(const DispatcherGuard&, LPCSTR name, HINSTANCE instance) {
    Classes& classes = TheClasses();
    auto found = FindOwn(classes, name, instance);
    if (found == classes.list.end())
        found = std::find_if(classes.list.begin(), classes.list.end(),
                             [name](const std::shared_ptr<WindowClass>& entry) { return HasName(*entry, name); });
    return found == classes.list.end() ? nullptr : *found;
}

}  // namespace tdkp

using tdkp::DispatcherGuard;
using tdkp::DispatcherLock;

TDKP_API ATOM RegisterClassA(const WNDCLASSA* windowClass) {
    if (windowClass == nullptr || windowClass->lpfnWndProc == nullptr || windowClass->lpszClassName == nullptr ||
        *windowClass->lpszClassName == '\0' || windowClass->cbWndExtra < 0 || windowClass->cbClsExtra < 0) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    DispatcherGuard guard(DispatcherLock());
    tdkp::Classes& classes = tdkp::TheClasses();
    if (tdkp::FindOwn(classes, windowClass->lpszClassName, windowClass->hInstance) != classes.list.end()) {
        SetLastError(ERROR_CLASS_ALREADY_EXISTS);
        return 0;
    }
    return tdkp::Append(classes, *windowClass, windowClass->lpszClassName, false);
}

TDKP_API BOOL UnregisterClassA(LPCSTR className, HINSTANCE instance) {
    HBRUSH brush = nullptr;
    {
        DispatcherGuard guard(DispatcherLock());
        tdkp::Classes& classes = tdkp::TheClasses();
        const auto found = className != nullptr ? tdkp::FindOwn(classes, className, instance) : classes.list.end();
        const bool exists = found != classes.list.end() && !(*found)->builtIn;
        if (!exists || (*found)->windows > 0) {
            SetLastError(exists ? ERROR_CLASS_HAS_WINDOWS : ERROR_CLASS_DOES_NOT_EXIST);
            return FALSE;
        }
        brush = (*found)->info.hbrBackground;
        classes.list.erase(found);
    }
    // The brush came with the class and goes with it; those of the system stay.
    DeleteObject(brush);
    return TRUE;
}

TDKP_API BOOL GetClassInfoA(HINSTANCE instance, LPCSTR className, WNDCLASSA* windowClass) {
    if (className == nullptr || windowClass == nullptr) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    DispatcherGuard guard(DispatcherLock());
    const std::shared_ptr<tdkp::WindowClass> found = tdkp::FindClass(guard, className, instance);
    if (!found) {
        SetLastError(ERROR_CLASS_DOES_NOT_EXIST);
        return FALSE;
    }
    *windowClass = found->info;
    return TRUE;
}
