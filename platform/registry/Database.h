// The registry's SQLite file.
//
// It is kept with a rollback journal, not a write-ahead log: at rest the registry is one file that can be copied,
// it can be read in a folder that can't be written, and its header changes with every transaction, which lets
// readers see without SQLite that nothing is new (RegistryStamp). A process that is killed in a write leaves the
// journal behind, and whoever opens the file next rolls back. Two processes wait for each other. Every write
// is a transaction of its own, synchronous, so that a power cut leaves either the old value or the new one.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "platform/registry/Snapshot.h"

struct sqlite3;
struct sqlite3_stmt;

namespace tdkp {

enum class DatabaseResult : uint8_t {
    kDone,
    kUnwritable,  // the file, or the folder that it is to be in
    kDamaged,     // what is in the file is no database, or a broken one
    kBusy,        // another process kept it locked for longer than we wait
    kFailed,      // anything else, as no room on the disk
};

// One connection. Not for two threads at once.
class Database {
public:
    explicit Database(std::string fileName) : fileName_(std::move(fileName)) {}
    ~Database();
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    // For other processes, in each operation from now on.
    void WaitAtMost(int milliseconds);

    // Reads everything. A missing file is an empty registry.
    DatabaseResult Load(Snapshot* snapshot);

    // Paths are complete, roots' names included. A key that isn't there is made, with its parents.
    DatabaseResult CreateKey(std::string_view path);
    DatabaseResult SetValue(std::string_view path, std::string_view name, uint32_t type, std::string_view data);
    // The key, unless only what is in and below it is to go.
    DatabaseResult DeleteTree(std::string_view path, bool keepKey);

private:
    struct StatementCloser {
        void operator()(sqlite3_stmt* statement) const;
    };
    using Statement = std::unique_ptr<sqlite3_stmt, StatementCloser>;

    template <typename Work>
    DatabaseResult Transact(Work work);
    DatabaseResult OpenForWriting();
    DatabaseResult Open(const std::string& name, int flags);
    DatabaseResult LoadOpened(Snapshot* snapshot);
    DatabaseResult InsertKey(std::string_view path);
    void Close();
    DatabaseResult Run(const char* sql);
    DatabaseResult Prepare(Statement& statement, const char* sql);
    DatabaseResult Step(Statement& statement);
    DatabaseResult ResultOf(int code) const;

    const std::string fileName_;
    sqlite3* connection_ = nullptr;
    int patience_ = 0;  // milliseconds
    bool writable_ = false;
    Statement insertKey_;
    Statement setValue_;
};

}  // namespace tdkp
