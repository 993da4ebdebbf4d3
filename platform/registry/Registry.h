// The open keys and the registry behind them.
//
// 1. Everything is guarded by one lock; no thread is terminated while it holds it.
// 2. Reads are answered from a snapshot of the whole file, which is taken anew when the file's stamp has changed,
//    so that a change by another process is seen at the next read. While the file can't be read, the last snapshot
//    of it stands.
// 3. The file is chosen when the first key is opened, and the connection to it closed with the last key.
#pragma once

#include <winreg.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

#include "platform/kernel/Dispatcher.h"
#include "platform/registry/Database.h"
#include "platform/registry/RegistryStamp.h"
#include "platform/registry/Snapshot.h"

namespace tdkp {

class Registry {
public:
    static Registry& Instance();

    // One call of the program: holds the lock, and ends the use of the file if no key is open afterwards.
    class Session {
    public:
        Session() : registry_(Instance()), guard_(registry_.mutex_) { registry_.looked_ = false; }
        ~Session() { registry_.EndUse(); }
        Session(const Session&) = delete;
        Session& operator=(const Session&) = delete;
        Registry* operator->() const { return &registry_; }

    private:
        Registry& registry_;
        LayerGuard guard_;
    };

    // The rest within a session. Result codes are ERROR_ numbers.

    // The path of an open key or a root. ERROR_INVALID_HANDLE, ERROR_KEY_DELETED, or ERROR_ACCESS_DENIED if the
    // key wasn't opened for `access`.
    LSTATUS PathOf(HKEY key, REGSAM access, std::string* path);
    HKEY OpenKey(std::string path, REGSAM access);
    LSTATUS CloseKey(HKEY key);

    // Looks at the file once in a session, and once more after each write.
    const Snapshot& Contents();
    // Null if there is no such key; roots are always there.
    const RegistryKeyContents* FindKey(std::string_view path);

    // Runs one writing operation of the database; a damaged file is set aside, and the operation runs on the new one.
    template <typename... Parameters, typename... Arguments>
    LSTATUS Write(DatabaseResult (Database::*operation)(Parameters...), Arguments&&... arguments) {
        UseFile();
        looked_ = false;
        DatabaseResult result = (database_.get()->*operation)(arguments...);
        if (result == DatabaseResult::kDamaged && BeginAnew()) result = (database_.get()->*operation)(arguments...);
        Learn(result);
        return CodeOf(result);
    }

private:
    struct OpenedKey {
        std::string path;
        REGSAM access;
    };

    void UseFile();
    void OpenDatabase();
    void Learn(DatabaseResult result);
    bool BeginAnew();
    void EndUse();
    static LSTATUS CodeOf(DatabaseResult result);

    // Guarded by mutex_, all of them.
    LayerMutex mutex_;
    std::unordered_map<uintptr_t, OpenedKey> keys_;
    uintptr_t lastHandle_ = 0;
    std::string fileName_;
    std::unique_ptr<Database> database_;  // null while the file is not in use
    bool isHeldUp_ = false;               // the last use of the file waited for another process in vain
    bool looked_ = false;                 // the snapshot stands for the rest of the session
    RegistryStamp stamp_;                 // of the file that `snapshot_` was read from
    Snapshot snapshot_;
};

}  // namespace tdkp
