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
    }
    database_ = std::make_unique<Database>(fileName_);
}

bool Registry::BeginAnew() {
    database_ = std::make_unique<Database>(fileName_);
    return SetDamagedFileAside(fileName_);
}

void Registry::EndUse() {
    if (keys_.empty()) database_.reset();
}

const Snapshot& Registry::Contents() {
    UseFile();
    const RegistryStamp now = RegistryStamp::Of(fileName_);
    if (stamp_.StillHolds(now)) return snapshot_;
    stamp_ = now;
    DatabaseResult result = database_->Load(&snapshot_);
    if (result == DatabaseResult::kDamaged) {
        snapshot_ = {};
        if (BeginAnew()) result = database_->Load(&snapshot_);
    }
    // What couldn't be read is tried again at the next call.
    if (result != DatabaseResult::kDone) stamp_ = {};
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
        case DatabaseResult::kFailed:
            return ERROR_WRITE_FAULT;
    }
    return ERROR_WRITE_FAULT;
}

}  // namespace tdkp
