#include "platform/registry/Registry.h"

#include <windows.h>

#include <utility>

#include "platform/kernel/Counts.h"
#include "platform/kernel/Immortal.h"
#include "platform/registry/KeyPath.h"

namespace tdkp {
namespace {

// Handles are small numbers of this distance; the roots' are far above.
constexpr uintptr_t kHandleStep = 4;

// How long one operation waits for another process, and how long when the last one has waited in vain: a program
// that writes nineteen values and finds the file locked for good must not stand still nineteen times.
constexpr int kPatienceMilliseconds = 5000;
constexpr int kLostPatienceMilliseconds = 20;

}  // namespace

Registry& Registry::Instance() {
    return Immortal<Registry>();
}

LSTATUS Registry::PathOf(HKEY key, REGSAM access, std::string* path) {
    const std::string_view root = RootName(key);
    if (!root.empty()) {
        *path = root;
        return ERROR_SUCCESS;
    }
    const auto place = keys_.find(reinterpret_cast<uintptr_t>(key));
    if (place == keys_.end()) return ERROR_INVALID_HANDLE;
    if ((place->second.access & access) != access) return ERROR_ACCESS_DENIED;
    if (FindKey(place->second.path) == nullptr) return ERROR_KEY_DELETED;
    *path = place->second.path;
    return ERROR_SUCCESS;
}

HKEY Registry::OpenKey(std::string path, REGSAM access) {
    lastHandle_ += kHandleStep;
    keys_[lastHandle_] = {std::move(path), access};
    CountHandle(1);
    return reinterpret_cast<HKEY>(lastHandle_);
}

LSTATUS Registry::CloseKey(HKEY key) {
    if (!RootName(key).empty()) return ERROR_SUCCESS;
    if (keys_.erase(reinterpret_cast<uintptr_t>(key)) == 0) return ERROR_INVALID_HANDLE;
    CountHandle(-1);
    return ERROR_SUCCESS;
}

void Registry::UseFile() {
    if (database_) return;
    std::string fileName = RegistryFileName();
    if (fileName != fileName_) {
        fileName_ = std::move(fileName);
        stamp_ = {};
        snapshot_ = {};
        isHeldUp_ = false;
    }
    OpenDatabase();
}

void Registry::OpenDatabase() {
    database_ = std::make_unique<Database>(fileName_);
    database_->WaitAtMost(isHeldUp_ ? kLostPatienceMilliseconds : kPatienceMilliseconds);
}

void Registry::Learn(DatabaseResult result) {
    const bool isBusy = result == DatabaseResult::kBusy;
    if (isBusy == isHeldUp_) return;
    isHeldUp_ = isBusy;
    database_->WaitAtMost(isHeldUp_ ? kLostPatienceMilliseconds : kPatienceMilliseconds);
}

bool Registry::BeginAnew() {
    OpenDatabase();
    if (!SetDamagedFileAside(fileName_)) return false;
    snapshot_ = {};
    // Whoever has a key open goes on with it.
    for (const auto& [handle, key] : keys_) database_->CreateKey(key.path);
    return true;
}

void Registry::EndUse() {
    if (keys_.empty()) database_.reset();
}

const Snapshot& Registry::Contents() {
    UseFile();
    if (looked_) return snapshot_;
    looked_ = true;
    const RegistryStamp now = RegistryStamp::Of(fileName_);
    if (stamp_.StillHolds(now)) return snapshot_;
    // Another file of this name: what is open is the one that was set aside.
    if (!stamp_.IsOfSameFile(now)) OpenDatabase();
    stamp_ = now;
    Snapshot read;
    DatabaseResult result = database_->Load(&read);
    if (result == DatabaseResult::kDamaged && BeginAnew()) {
        stamp_ = {};
        result = database_->Load(&read);
    }
    Learn(result);
    if (result == DatabaseResult::kDone) {
        snapshot_ = std::move(read);
    } else {
        stamp_ = {};  // tried again at the next call
    }
    return snapshot_;
}

const RegistryKeyContents* Registry::FindKey(std::string_view path) {
    const RegistryKeyContents* found = Contents().Find(path);
    if (found == nullptr && ParentOf(path).empty()) found = &snapshot_.Add(path);
    return found;
}

LSTATUS Registry::CodeOf(DatabaseResult result) {
    switch (result) {
        case DatabaseResult::kDone:
            return ERROR_SUCCESS;
        case DatabaseResult::kUnwritable:
            return ERROR_ACCESS_DENIED;
        case DatabaseResult::kDamaged:
        case DatabaseResult::kBusy:
        case DatabaseResult::kFailed:
            return ERROR_WRITE_FAULT;
    }
    return ERROR_WRITE_FAULT;
}

}  // namespace tdkp
