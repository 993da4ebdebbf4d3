#include "platform/registry/Database.h"

#include <fcntl.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <iterator>
#include <system_error>

#include "platform/registry/KeyPath.h"

namespace tdkp {
namespace {

constexpr int kOpenFlags = SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_URI;

constexpr const char* kJournal =
    "PRAGMA journal_mode=DELETE;"
    "PRAGMA synchronous=NORMAL;";
constexpr const char* kSchema =
    "CREATE TABLE IF NOT EXISTS keys(path TEXT PRIMARY KEY COLLATE NOCASE) WITHOUT ROWID;"
    "CREATE TABLE IF NOT EXISTS vals(path TEXT COLLATE NOCASE, name TEXT COLLATE NOCASE, type INTEGER NOT NULL,"
    " data BLOB NOT NULL, PRIMARY KEY(path, name)) WITHOUT ROWID;"
    "PRAGMA user_version=1;";
constexpr const char* kInsertKey = "INSERT OR IGNORE INTO keys(path) VALUES(?1)";
constexpr const char* kSetValue =
    "INSERT INTO vals(path, name, type, data) VALUES(?1, ?2, ?3, ?4)"
    " ON CONFLICT(path, name) DO UPDATE SET type = excluded.type, data = excluded.data";
constexpr const char* kAllKeys = "SELECT path FROM keys";
constexpr const char* kAllValues = "SELECT path, name, type, data FROM vals";

void BindText(sqlite3_stmt* statement, int index, std::string_view text) {
    sqlite3_bind_text(statement, index, text.data(), static_cast<int>(text.size()), SQLITE_STATIC);
}

std::string_view ColumnBytes(sqlite3_stmt* statement, int column) {
    const void* bytes = sqlite3_column_blob(statement, column);
    const int size = sqlite3_column_bytes(statement, column);
    return bytes != nullptr ? std::string_view(static_cast<const char*>(bytes), static_cast<size_t>(size)) : "";
}

bool Exists(const std::string& fileName) {
    struct stat status;
    return stat(fileName.c_str(), &status) == 0;
}

// A file that may be written and yet counts as read-only is one whose header says so, which none of ours does.
bool MayWrite(const std::string& fileName) {
    return faccessat(AT_FDCWD, fileName.c_str(), W_OK, AT_EACCESS) == 0;
}

// The name of the file as one that nobody changes: the last way to read it when no lock can be had.
std::string ImmutableName(const std::string& fileName) {
    std::string name = "file:";
    for (const char letter : fileName) {
        if (letter == '%' || letter == '?' || letter == '#') {
            constexpr char kDigits[] = "0123456789ABCDEF";
            name += {'%', kDigits[letter >> 4], kDigits[letter & 0xF]};
        } else {
            name += letter;
        }
    }
    return name + "?immutable=1";
}

}  // namespace

void Database::StatementCloser::operator()(sqlite3_stmt* statement) const {
    sqlite3_finalize(statement);
}

Database::~Database() {
    Close();
}

void Database::Close() {
    insertKey_.reset();
    setValue_.reset();
    sqlite3_close(connection_);
    connection_ = nullptr;
    writable_ = false;
}

void Database::WaitAtMost(int milliseconds) {
    patience_ = milliseconds;
    if (connection_ != nullptr) sqlite3_busy_timeout(connection_, patience_);
}

DatabaseResult Database::ResultOf(int code) const {
    switch (code & 0xFF) {
        case SQLITE_OK:
        case SQLITE_ROW:
        case SQLITE_DONE:
            return DatabaseResult::kDone;
        case SQLITE_CORRUPT:
        case SQLITE_NOTADB:
            return DatabaseResult::kDamaged;
        case SQLITE_READONLY:
        case SQLITE_CANTOPEN:
        case SQLITE_PERM:
            return DatabaseResult::kUnwritable;
        case SQLITE_BUSY:
            return DatabaseResult::kBusy;
        default:
            return DatabaseResult::kFailed;
    }
}

DatabaseResult Database::Run(const char* sql) {
    return ResultOf(sqlite3_exec(connection_, sql, nullptr, nullptr, nullptr));
}

DatabaseResult Database::Prepare(Statement& statement, const char* sql) {
    if (statement) return DatabaseResult::kDone;
    sqlite3_stmt* made = nullptr;
    const DatabaseResult result = ResultOf(sqlite3_prepare_v2(connection_, sql, -1, &made, nullptr));
    statement.reset(made);
    return result;
}

DatabaseResult Database::Step(Statement& statement) {
    const DatabaseResult result = ResultOf(sqlite3_step(statement.get()));
    sqlite3_reset(statement.get());
    return result;
}

DatabaseResult Database::Open(const std::string& name, int flags) {
    Close();
    const DatabaseResult result = ResultOf(sqlite3_open_v2(name.c_str(), &connection_, flags | kOpenFlags, nullptr));
    if (result != DatabaseResult::kDone) {
        Close();
        return result;
    }
    sqlite3_busy_timeout(connection_, patience_);
    return DatabaseResult::kDone;
}

// ---- Reading ----

DatabaseResult Database::Load(Snapshot* snapshot) {
    *snapshot = Snapshot();
    if (connection_ != nullptr) return LoadOpened(snapshot);
    if (!Exists(fileName_)) return DatabaseResult::kDone;
    // For writing even here, since a journal that a killed process left has to be rolled back. SQLite itself
    // falls back to reading.
    DatabaseResult result = Open(fileName_, SQLITE_OPEN_READWRITE);
    if (result == DatabaseResult::kDone) result = LoadOpened(snapshot);
    if (result != DatabaseResult::kUnwritable) return result;
    *snapshot = Snapshot();
    result = Open(ImmutableName(fileName_), SQLITE_OPEN_READONLY);
    if (result == DatabaseResult::kDone) result = LoadOpened(snapshot);
    Close();
    return result;
}

DatabaseResult Database::LoadOpened(Snapshot* snapshot) {
    DatabaseResult result = Run("BEGIN");
    if (result != DatabaseResult::kDone) return result;
    bool empty = false;
    const auto forEach = [&](const char* sql, auto take) {
        Statement statement;
        if (result == DatabaseResult::kDone && !empty) result = Prepare(statement, sql);
        int code = SQLITE_ROW;
        while (result == DatabaseResult::kDone && !empty && (code = sqlite3_step(statement.get())) == SQLITE_ROW)
            take(statement.get());
        if (result == DatabaseResult::kDone) result = ResultOf(code);
    };
    // A file that was made and never written has no tables.
    forEach("SELECT count(*) FROM sqlite_master", [&](sqlite3_stmt* row) { empty = sqlite3_column_int(row, 0) == 0; });
    // This can be asked of every database; a file of which it can't has a header that says it is of no known form.
    if (sqlite3_errcode(connection_) == SQLITE_ERROR) result = DatabaseResult::kDamaged;
    forEach(kAllKeys, [&](sqlite3_stmt* row) { snapshot->Add(ColumnBytes(row, 0)); });
    forEach(kAllValues, [&](sqlite3_stmt* row) {
        const std::string name(ColumnBytes(row, 1));
        snapshot->Add(ColumnBytes(row, 0)).values[FoldCase(name)] = {
            name, static_cast<uint32_t>(sqlite3_column_int64(row, 2)), std::string(ColumnBytes(row, 3))};
    });
    Run("COMMIT");
    return result;
}

// ---- Writing ----

DatabaseResult Database::OpenForWriting() {
    if (writable_) return DatabaseResult::kDone;
    std::error_code ignored;
    const std::filesystem::path folder = std::filesystem::path(fileName_).parent_path();
    if (!folder.empty()) std::filesystem::create_directories(folder, ignored);
    DatabaseResult result = Open(fileName_, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
    if (result == DatabaseResult::kDone) result = Run(kJournal);
    if (result == DatabaseResult::kDone && sqlite3_db_readonly(connection_, "main") != 0)
        result = MayWrite(fileName_) ? DatabaseResult::kDamaged : DatabaseResult::kUnwritable;
    if (result != DatabaseResult::kDone) Close();
    writable_ = result == DatabaseResult::kDone;
    return result;
}

template <typename Work>
DatabaseResult Database::Transact(Work work) {
    DatabaseResult result = OpenForWriting();
    if (result == DatabaseResult::kDone) result = Run("BEGIN IMMEDIATE");
    if (result != DatabaseResult::kDone) return result;
    Statement version;
    result = Prepare(version, "PRAGMA user_version");
    if (result == DatabaseResult::kDone) {
        const int code = sqlite3_step(version.get());
        result = ResultOf(code);
        const bool fresh = code == SQLITE_ROW && sqlite3_column_int(version.get(), 0) == 0;
        version.reset();
        if (fresh) result = Run(kSchema);
    }
    if (result == DatabaseResult::kDone) result = work();
    if (result == DatabaseResult::kDone) result = Run("COMMIT");
    if (sqlite3_get_autocommit(connection_) == 0) Run("ROLLBACK");
    return result;
}

DatabaseResult Database::InsertKey(std::string_view path) {
    DatabaseResult result = Prepare(insertKey_, kInsertKey);
    for (; result == DatabaseResult::kDone && !path.empty(); path = ParentOf(path)) {
        BindText(insertKey_.get(), 1, path);
        result = Step(insertKey_);
        // What was there already has its parents.
        if (sqlite3_changes(connection_) == 0) break;
    }
    return result;
}

DatabaseResult Database::CreateKey(std::string_view path) {
    return Transact([&] { return InsertKey(path); });
}

DatabaseResult Database::SetValue(std::string_view path, std::string_view name, uint32_t type, std::string_view data) {
    return Transact([&] {
        DatabaseResult result = InsertKey(path);
        if (result == DatabaseResult::kDone) result = Prepare(setValue_, kSetValue);
        if (result != DatabaseResult::kDone) return result;
        BindText(setValue_.get(), 1, path);
        BindText(setValue_.get(), 2, name);
        sqlite3_bind_int64(setValue_.get(), 3, type);
        sqlite3_bind_blob(setValue_.get(), 4, data.empty() ? "" : data.data(), static_cast<int>(data.size()),
                          SQLITE_STATIC);
        return Step(setValue_);
    });
}

DatabaseResult Database::DeleteTree(std::string_view path, bool keepKey) {
    return Transact([&] {
        // Everything below sorts between the path with its separator and with the character behind that.
        constexpr const char* kDeletes[] = {
            "DELETE FROM vals WHERE path = ?1",
            "DELETE FROM vals WHERE path > ?1 || char(92) AND path < ?1 || char(93)",
            "DELETE FROM keys WHERE path > ?1 || char(92) AND path < ?1 || char(93)",
            "DELETE FROM keys WHERE path = ?1",
        };
        DatabaseResult result = DatabaseResult::kDone;
        for (const char* sql : kDeletes) {
            if (result != DatabaseResult::kDone || (keepKey && sql == std::end(kDeletes)[-1])) break;
            Statement statement;
            result = Prepare(statement, sql);
            if (result != DatabaseResult::kDone) break;
            BindText(statement.get(), 1, path);
            result = Step(statement);
        }
        return result;
    });
}

}  // namespace tdkp
