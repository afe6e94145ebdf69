// The registry store off Windows: one SQLite database file.
//
// Layout of the file:
//   keys(id, parent, root, path, fold)   one row per key (ids never reused); the roots are
//                                        rows 1 to 3 with an empty path.
//                                        `path` is the key's path below its
//                                        root as first spelled, `fold` the
//                                        same upper-cased, unique per root.
//   vals(key_id, fold, name, type, data) one row per value; `fold` is the
//                                        upper-cased name ("" the default).
// Opening a key is one indexed look-up of its folded path; reading a value
// one look-up of (key, folded name).
//
// Durability and concurrency: the file runs in WAL mode with synchronous
// FULL; every write is a single transaction (one statement, or BEGIN
// IMMEDIATE ... COMMIT when it touches several rows), so a process killed at
// any point leaves every committed write and none of the one in flight, and
// writers in several processes queue on the busy timeout instead of failing.
//
// A missing file is an empty store: reads find only the roots, and the first
// write creates the file (and its folder).  A file that is not a store, or
// that cannot be read, makes every call answer with a status (5, 1015, 1016)
// and LastError() names the file and the problem; the next call tries again.
#if !defined(_WIN32)

#include <fcntl.h>
#include <sqlite3.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <mutex>
#include <unordered_map>

#include "automation/Convert.hpp"
#include "platform/RegFile.hpp"
#include "platform/Registry.hpp"
#include "platform/posix/Syscalls.hpp"

namespace TessarkAO {

namespace {

constexpr std::int32_t kApplicationId = 0x544B5247;  // "TKRG"
constexpr std::int32_t kSchemaVersion = 1;
constexpr int kBusyTimeoutMs = 10000;
constexpr std::size_t kMaxKeyNameLength = 255;
constexpr std::size_t kMaxValueNameLength = 16383;

std::int64_t RootId(RegHandle root) noexcept {
  switch (root) {
    case kHkeyClassesRoot: return 1;
    case kHkeyCurrentUser: return 2;
    case kHkeyLocalMachine: return 3;
    default: return 0;
  }
}

// Win32 strings end at their first NUL.
std::string_view CString(std::string_view s) noexcept { return s.substr(0, s.find('\0')); }

// Splits and checks a subkey path: no leading backslash, no empty component,
// components of at most 255 characters; trailing backslashes are ignored.
RegStatus NormalizePath(std::string_view sub, std::string& display, std::string& fold) {
  sub = CString(sub);
  while (!sub.empty() && sub.back() == '\\') sub.remove_suffix(1);
  display.assign(sub);
  fold = UpperCase(sub);
  if (sub.empty()) return WinError::Success;
  if (sub.front() == '\\') return WinError::BadPathname;
  std::size_t start = 0;
  while (start <= sub.size()) {
    std::size_t end = sub.find('\\', start);
    if (end == std::string_view::npos) end = sub.size();
    if (end == start) return WinError::BadPathname;
    if (end - start > kMaxKeyNameLength) return WinError::InvalidParameter;
    start = end + 1;
  }
  return WinError::Success;
}

std::string Join(std::string_view a, std::string_view b) {
  if (a.empty()) return std::string(b);
  if (b.empty()) return std::string(a);
  std::string r;
  r.reserve(a.size() + 1 + b.size());
  r.append(a).append(1, '\\').append(b);
  return r;
}

enum Stmt : int {
  kFindKey,
  kGetValue,
  kPutValue,
  kInsertKey,
  kDeleteValue,
  kCountChildren,
  kDeleteKeyRow,
  kDeleteSubtreeValues,
  kDeleteSubtreeKeys,
  kEnumKey,
  kEnumValue,
  kKeyExists,
  kSubtree,
  kValuesOf,
  kStmtCount
};

constexpr const char* kSql[kStmtCount] = {
    "SELECT id, path FROM keys WHERE root = ?1 AND fold = ?2",
    // The value of a key, checking on the way that the key still has the
    // path the handle was opened with.
    "SELECT v.type, v.data FROM vals v JOIN keys k ON k.id = v.key_id "
    "WHERE v.key_id = ?1 AND v.fold = ?2 AND k.root = ?3 AND k.fold = ?4",
    "INSERT INTO vals(key_id, fold, name, type, data) SELECT ?1, ?2, ?3, ?4, ?5 "
    "WHERE EXISTS (SELECT 1 FROM keys WHERE id = ?1) "
    "ON CONFLICT(key_id, fold) DO UPDATE SET type = excluded.type, data = excluded.data",
    "INSERT INTO keys(parent, root, path, fold) VALUES (?1, ?2, ?3, ?4) ON CONFLICT(root, fold) DO NOTHING",
    "DELETE FROM vals WHERE key_id = ?1 AND fold = ?2",
    "SELECT count(*) FROM keys WHERE parent = ?1",
    "DELETE FROM keys WHERE id = ?1",
    // The subtree of a key: its folded path P and every path that starts with
    // P followed by a backslash ('\' + 1 is ']').
    "DELETE FROM vals WHERE key_id IN (SELECT id FROM keys WHERE root = ?1 AND "
    "(fold = ?2 OR (fold >= ?2 || '\\' AND fold < ?2 || ']') OR ?2 = ''))",
    "DELETE FROM keys WHERE root = ?1 AND fold <> '' AND (?3 = 0 OR fold <> ?2) AND "
    "(fold = ?2 OR (fold >= ?2 || '\\' AND fold < ?2 || ']') OR ?2 = '')",
    "SELECT path FROM keys WHERE parent = ?1 ORDER BY fold LIMIT 1 OFFSET ?2",
    "SELECT name, type, data FROM vals WHERE key_id = ?1 ORDER BY fold LIMIT 1 OFFSET ?2",
    "SELECT 1 FROM keys WHERE id = ?1",
    "SELECT id, path FROM keys WHERE root = ?1 AND "
    "(fold = ?2 OR (fold >= ?2 || '\\' AND fold < ?2 || ']') OR ?2 = '') ORDER BY fold",
    "SELECT name, type, data FROM vals WHERE key_id = ?1 ORDER BY fold",
};

constexpr const char* kSchema =
    "CREATE TABLE IF NOT EXISTS keys(id INTEGER PRIMARY KEY AUTOINCREMENT, parent INTEGER NOT NULL, root INTEGER NOT NULL,"
    " path TEXT NOT NULL, fold TEXT NOT NULL, UNIQUE(root, fold));"
    "CREATE INDEX IF NOT EXISTS keys_parent ON keys(parent, fold);"
    "CREATE TABLE IF NOT EXISTS vals(key_id INTEGER NOT NULL, fold TEXT NOT NULL, name TEXT NOT NULL,"
    " type INTEGER NOT NULL, data BLOB NOT NULL, PRIMARY KEY(key_id, fold)) WITHOUT ROWID;"
    "INSERT OR IGNORE INTO keys(id, parent, root, path, fold) VALUES"
    " (1, 0, 2147483648, '', ''), (2, 0, 2147483649, '', ''), (3, 0, 2147483650, '', '');";

// A value read by a size query, kept for the data query that follows it on
// the same handle: callers ask for the size, then read into a buffer of that
// size, and get the very data the size was measured from.  Used once, and
// dropped by any write through this store.
struct PendingValue {
  bool valid = false;
  std::uint64_t generation = 0;
  std::string fold;
  std::uint32_t type = 0;
  std::vector<std::uint8_t> data;
};
constexpr std::size_t kMaxPendingBytes = 65536;

struct OpenKeyState {
  std::int64_t id = 0;
  RegHandle root = 0;
  std::string path;  // as spelled
  std::string fold;
  std::uint32_t access = 0;
  PendingValue pending;
  bool verified = true;  // false while `id` comes from the key cache unchecked
};

// Resets a statement when the scope ends, so no read transaction stays open.
struct StmtScope {
  sqlite3_stmt* st;
  ~StmtScope() {
    if (st) sqlite3_reset(st);
  }
};

std::string ColumnText(sqlite3_stmt* st, int column) {
  return std::string(reinterpret_cast<const char*>(sqlite3_column_text(st, column)),
                     static_cast<std::size_t>(sqlite3_column_bytes(st, column)));
}

// A row of (name, type, data) from the vals table; type and data only when asked for.
void ReadValueRow(sqlite3_stmt* st, std::string& name, std::uint32_t* type, std::vector<std::uint8_t>* data) {
  name = ColumnText(st, 0);
  if (type) *type = static_cast<std::uint32_t>(sqlite3_column_int64(st, 1));
  if (data) {
    const auto* p = static_cast<const std::uint8_t*>(sqlite3_column_blob(st, 2));
    data->assign(p, p + sqlite3_column_bytes(st, 2));
  }
}

// A handle's key and the key a subkey path names below it.
struct KeyBelow {
  KeyBelow() = default;
  KeyBelow(const KeyBelow&) = delete;  // `base` may point at `rootState`
  KeyBelow& operator=(const KeyBelow&) = delete;

  OpenKeyState rootState;              // the state of a predefined root handle
  const OpenKeyState* base = nullptr;  // the handle's key
  // The key below: the joined path (as spelled and folded) with the access
  // asked for; id, root and verification still those of the base.
  OpenKeyState key;
  std::string display, fold;  // the subkey path as checked, and folded; empty: the base itself
};

class SqliteRegistry final : public RegistryStore {
 public:
  explicit SqliteRegistry(std::string path) : path_(std::move(path)) {}
  ~SqliteRegistry() override { CloseDb(); }

  RegStatus OpenKey(RegHandle key, std::string_view subKey, std::uint32_t access, RegHandle& result) override;
  RegStatus CreateKey(RegHandle key, std::string_view subKey, RegHandle& result) override;
  RegStatus CloseKey(RegHandle key) override;
  RegStatus QueryValue(RegHandle key, std::string_view name, std::uint32_t* type, std::uint8_t* data,
                       std::uint32_t* size) override;
  RegStatus SetValue(RegHandle key, std::string_view name, std::uint32_t type, const std::uint8_t* data,
                     std::uint32_t size) override;
  RegStatus SetKeyDefault(RegHandle key, std::string_view subKey, std::string_view text) override;
  RegStatus DeleteValue(RegHandle key, std::string_view name) override;
  RegStatus DeleteKey(RegHandle key, std::string_view subKey) override;
  RegStatus DeleteTree(RegHandle key, std::string_view subKey) override;
  RegStatus EnumKey(RegHandle key, std::uint32_t index, std::string& name) override;
  RegStatus EnumValue(RegHandle key, std::uint32_t index, std::string& name, std::uint32_t* type,
                      std::vector<std::uint8_t>* data) override;
  RegStatus ImportRegKeys(const std::vector<RegFileKey>& keys) override;
  RegStatus ExportRegKeys(RegHandle root, std::string_view subKey, std::vector<RegFileKey>& keys) override;
  std::string Location() const override { return path_; }
  void Flush() noexcept override;

 private:
  // Result of making sure the database is open: ready, or no file yet (an
  // empty store, only for reads), or a failure status.
  static constexpr RegStatus kNoFile = -1;

  RegStatus Ensure(bool forWrite);
  RegStatus CheckFile(bool& exists);
  RegStatus OpenDb(bool create);
  RegStatus InitSchema(bool create);
  void CloseDb() noexcept;
  RegStatus Fail(int rc, std::string_view what);
  sqlite3_stmt* Prepare(Stmt s);
  RegStatus Exec(const char* sql, std::string_view what);

  // The key a handle denotes (roots included); nullptr for a handle not open.
  OpenKeyState* Lookup(RegHandle key, OpenKeyState& rootState);
  // Checks a handle and a subkey path below it (6, or the path's status).
  RegStatus Resolve(RegHandle handle, std::string_view subKey, std::uint32_t access, KeyBelow& out);
  RegHandle NewHandle(OpenKeyState state);
  // Finds the key `fold` below `root`; 0 when it does not exist.
  RegStatus FindKey(RegHandle root, const std::string& fold, std::int64_t& id, std::string* path);
  // Creates every missing key of `display` below `base`, inside a transaction.
  RegStatus CreatePath(const OpenKeyState& base, std::string_view display, std::int64_t& id,
                       std::string& fullPath, std::string& fullFold);
  RegStatus PutValue(std::int64_t id, std::string_view name, std::uint32_t type, const std::uint8_t* data,
                     std::uint32_t size);
  RegStatus DeleteSubtree(RegHandle root, const std::string& fold, bool keepSelf);
  // Deletes the value `name` (as given) of key `id`; 2 when there is none.
  RegStatus RemoveValue(std::int64_t id, std::string_view name);
  // DeleteKey (`tree` false: a key without subkeys) and DeleteTree.
  RegStatus RemoveKey(RegHandle key, std::string_view subKey, bool tree);
  // Ensure(false) for a read: `absent` when there is no store yet.
  RegStatus ReadyToRead(RegStatus absent);
  // The key a handle denotes for a call that reads through it or deletes a
  // value: checks the handle, the `access` it needs (0 for none), that the
  // store is there (`absent` when not) and that the key still exists.
  RegStatus UsableKey(RegHandle key, std::uint32_t access, RegStatus absent, OpenKeyState& rootState,
                      OpenKeyState*& k);
  // Steps the enumeration statement `s` of key `id` to its row `index`
  // (held reset by `scope`): 259 past the last row.
  RegStatus EnumRow(Stmt s, std::int64_t id, std::uint32_t index, StmtScope& scope);

  std::string path_;
  mutable std::mutex mutex_;
  sqlite3* db_ = nullptr;
  bool schemaReady_ = false;  // the tables exist
  bool broken_ = false;       // close and reopen before the next use
  sqlite3_stmt* stmts_[kStmtCount] = {};
  std::unordered_map<RegHandle, OpenKeyState> handles_;
  std::uint64_t writeGeneration_ = 0;  // counts writes through this store
  // Ids of keys looked up before, by root and folded path, so that opening a
  // key for a read costs no look-up of its own.  An id from here is checked
  // by the read itself, or before any other use of the handle (Verify).
  std::unordered_map<std::string, std::pair<std::int64_t, std::string>> keyCache_;
  static constexpr std::size_t kMaxCachedKeys = 4096;
  static std::string CacheKey(RegHandle root, std::string_view fold) {
    std::string k = std::to_string(root);
    k.push_back(':');
    k.append(fold);
    return k;
  }
  void Remember(RegHandle root, const std::string& fold, std::int64_t id, const std::string& path) {
    if (keyCache_.size() >= kMaxCachedKeys) keyCache_.clear();
    keyCache_[CacheKey(root, fold)] = {id, path};
  }
  // Makes sure a handle's key id is current; 2 when its key is gone.
  RegStatus Verify(OpenKeyState& k);
  RegHandle nextHandle_ = 0x100;
};

// ---------------------------------------------------------------------------
// Opening the file.

RegStatus SqliteRegistry::CheckFile(bool& exists) {
  exists = false;
  struct ::stat st;
  if (PosixCalls().stat(path_.c_str(), &st) != 0) {
    const int err = errno;
    if (err == ENOENT) return WinError::Success;
    lastError_ = "registry store " + path_ + ": cannot read: " + std::strerror(err);
    return err == EACCES || err == EPERM ? WinError::AccessDenied : WinError::RegistryIoFailed;
  }
  if (S_ISDIR(st.st_mode)) {
    lastError_ = "registry store " + path_ + ": is a folder, not a registry store file";
    return WinError::AccessDenied;
  }
  exists = true;
  // The first bytes tell an SQLite database from anything else before
  // SQLite is asked to open it.
  const int fd = PosixCalls().open(path_.c_str(), O_RDONLY | O_CLOEXEC, 0);
  if (fd < 0) {
    const int err = errno;
    lastError_ = "registry store " + path_ + ": cannot read: " + std::strerror(err);
    return err == EACCES || err == EPERM ? WinError::AccessDenied : WinError::RegistryIoFailed;
  }
  char header[16] = {};
  std::size_t got = 0;
  int readErr = 0;
  while (got < sizeof header) {
    const ssize_t n = PosixCalls().read(fd, header + got, sizeof header - got);
    if (n < 0) {
      if (errno == EINTR) continue;
      readErr = errno;
      break;
    }
    if (n == 0) break;
    got += static_cast<std::size_t>(n);
  }
  PosixCalls().close(fd);
  if (readErr != 0) {
    lastError_ = "registry store " + path_ + ": cannot read: " + std::strerror(readErr);
    return readErr == EACCES || readErr == EPERM || readErr == EISDIR ? WinError::AccessDenied
                                                                        : WinError::RegistryIoFailed;
  }
  if (got == 0) return WinError::Success;  // an empty file is an empty store
  if (got < sizeof header || std::memcmp(header, "SQLite format 3", 16) != 0) {
    lastError_ = "registry store " + path_ + ": the file is corrupt (not an SQLite database)";
    return WinError::RegistryCorrupt;
  }
  return WinError::Success;
}

RegStatus SqliteRegistry::Ensure(bool forWrite) {
  if (broken_) {
    CloseDb();
    broken_ = false;
  }
  if (!db_) {
    bool exists = false;
    if (RegStatus status = CheckFile(exists); status != WinError::Success) return status;
    if (!exists) {
      if (!forWrite) return kNoFile;
      // Create the folders on the way to the file.
      for (std::size_t slash = path_.find('/', 1); slash != std::string::npos; slash = path_.find('/', slash + 1)) {
        const std::string dir = path_.substr(0, slash);
        if (PosixCalls().mkdir(dir.c_str(), 0700) != 0 && errno != EEXIST) {
          const int err = errno;
          lastError_ = "registry store " + path_ + ": cannot create folder " + dir + ": " + std::strerror(err);
          return err == EACCES || err == EPERM || err == EROFS ? WinError::AccessDenied : WinError::PathNotFound;
        }
      }
    }
    if (RegStatus status = OpenDb(!exists); status != WinError::Success) return status;
  }
  if (!schemaReady_) {
    if (RegStatus status = InitSchema(forWrite); status != WinError::Success) {
      CloseDb();
      return status;
    }
    if (!schemaReady_) return kNoFile;  // a file without the tables yet: still an empty store
  }
  return WinError::Success;
}

RegStatus SqliteRegistry::OpenDb(bool create) {
  const int flags = SQLITE_OPEN_READWRITE | (create ? SQLITE_OPEN_CREATE : 0) | SQLITE_OPEN_NOMUTEX;
  int rc = sqlite3_open_v2(path_.c_str(), &db_, flags, nullptr);
  if (rc != SQLITE_OK) {
    const RegStatus s = Fail(rc, "cannot open");
    CloseDb();
    return s;
  }
  sqlite3_extended_result_codes(db_, 1);
  sqlite3_busy_timeout(db_, kBusyTimeoutMs);
  if (RegStatus s = Exec("PRAGMA journal_mode=WAL; PRAGMA synchronous=FULL;", "cannot set up"); s != 0) {
    CloseDb();
    return s;
  }
  return WinError::Success;
}

RegStatus SqliteRegistry::InitSchema(bool create) {
  // Reading the header pages is where SQLite first notices a damaged file.
  sqlite3_stmt* st = nullptr;
  int rc = sqlite3_prepare_v2(db_, "PRAGMA application_id; ", -1, &st, nullptr);
  std::int64_t appId = 0, version = 0;
  if (rc == SQLITE_OK && (rc = sqlite3_step(st)) == SQLITE_ROW) appId = sqlite3_column_int64(st, 0);
  sqlite3_finalize(st);
  if (rc != SQLITE_ROW) return Fail(rc, "cannot read");
  rc = sqlite3_prepare_v2(db_, "PRAGMA user_version", -1, &st, nullptr);
  if (rc == SQLITE_OK && (rc = sqlite3_step(st)) == SQLITE_ROW) version = sqlite3_column_int64(st, 0);
  sqlite3_finalize(st);
  if (rc != SQLITE_ROW) return Fail(rc, "cannot read");

  if (appId != 0 && appId != kApplicationId) {
    lastError_ = "registry store " + path_ + ": the file is an SQLite database of another program, not a registry store";
    return WinError::RegistryCorrupt;
  }
  if (version > kSchemaVersion) {
    lastError_ = "registry store " + path_ + ": written by a newer version of the library (format " +
                 std::to_string(version) + ")";
    return WinError::RegistryCorrupt;
  }
  if (version == kSchemaVersion) {
    schemaReady_ = true;
    return WinError::Success;
  }
  if (!create) return WinError::Success;  // no tables yet: an empty store until the first write
  if (RegStatus s = Exec("BEGIN IMMEDIATE", "cannot write"); s != 0) return s;
  std::string sql = std::string(kSchema) + "PRAGMA application_id=" + std::to_string(kApplicationId) +
                    "; PRAGMA user_version=" + std::to_string(kSchemaVersion) + ";";
  if (RegStatus s = Exec(sql.c_str(), "cannot create the tables"); s != 0) {
    sqlite3_exec(db_, "ROLLBACK", nullptr, nullptr, nullptr);
    return s;
  }
  if (RegStatus s = Exec("COMMIT", "cannot write"); s != 0) return s;
  schemaReady_ = true;
  return WinError::Success;
}

void SqliteRegistry::Flush() noexcept {
  std::lock_guard lock(mutex_);
  if (!db_) return;
  // TRUNCATE also empties the log, so nothing committed lives only there;
  // another process still reading may hold it back, and then the close
  // below leaves the log for the last connection to fold in.
  sqlite3_wal_checkpoint_v2(db_, nullptr, SQLITE_CHECKPOINT_TRUNCATE, nullptr, nullptr);
  CloseDb();
}

void SqliteRegistry::CloseDb() noexcept {
  schemaReady_ = false;
  for (sqlite3_stmt*& s : stmts_) {
    sqlite3_finalize(s);
    s = nullptr;
  }
  if (db_) sqlite3_close_v2(db_);
  db_ = nullptr;
}

RegStatus SqliteRegistry::Fail(int rc, std::string_view what) {
  const int primary = rc & 0xFF;
  std::string detail = db_ ? sqlite3_errmsg(db_) : sqlite3_errstr(rc);
  RegStatus status;
  switch (primary) {
    case SQLITE_NOTADB:
    case SQLITE_CORRUPT:
      detail = "the file is corrupt (" + detail + ")";
      status = WinError::RegistryCorrupt;
      break;
    case SQLITE_CANTOPEN:
    case SQLITE_PERM:
    case SQLITE_AUTH:
    case SQLITE_READONLY:
      status = WinError::AccessDenied;
      break;
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
      status = WinError::Busy;
      break;
    case SQLITE_FULL:
      status = WinError::DiskFull;
      break;
    case SQLITE_NOMEM:
      status = WinError::OutOfMemory;
      break;
    case SQLITE_TOOBIG:
      status = WinError::InvalidParameter;
      break;
    default:
      status = WinError::RegistryIoFailed;
      break;
  }
  lastError_ = "registry store " + path_ + ": " + std::string(what) + ": " + detail;
  // A damaged or vanished file: start afresh on the next call (not now: a
  // transaction object may still refer to the connection).
  if (status == WinError::RegistryCorrupt || primary == SQLITE_IOERR || primary == SQLITE_CANTOPEN) broken_ = true;
  return status;
}

sqlite3_stmt* SqliteRegistry::Prepare(Stmt s) {
  if (!stmts_[s]) {
    if (sqlite3_prepare_v3(db_, kSql[s], -1, SQLITE_PREPARE_PERSISTENT, &stmts_[s], nullptr) != SQLITE_OK)
      return nullptr;
  } else {
    sqlite3_reset(stmts_[s]);
    sqlite3_clear_bindings(stmts_[s]);
  }
  return stmts_[s];
}

RegStatus SqliteRegistry::Exec(const char* sql, std::string_view what) {
  const int rc = sqlite3_exec(db_, sql, nullptr, nullptr, nullptr);
  return rc == SQLITE_OK ? WinError::Success : Fail(rc, what);
}

// A write transaction that rolls back unless committed.
class Transaction {
 public:
  explicit Transaction(sqlite3* db) : db_(db) {}
  int Begin() {
    const int rc = sqlite3_exec(db_, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr);
    open_ = rc == SQLITE_OK;
    return rc;
  }
  int Commit() {
    const int rc = sqlite3_exec(db_, "COMMIT", nullptr, nullptr, nullptr);
    if (rc == SQLITE_OK) open_ = false;
    return rc;
  }
  ~Transaction() {
    if (open_ && db_) sqlite3_exec(db_, "ROLLBACK", nullptr, nullptr, nullptr);
  }

 private:
  sqlite3* db_;
  bool open_ = false;
};

void BindText(sqlite3_stmt* st, int i, std::string_view s) {
  sqlite3_bind_text(st, i, s.data(), static_cast<int>(s.size()), SQLITE_TRANSIENT);
}

// ---------------------------------------------------------------------------
// Handles.

OpenKeyState* SqliteRegistry::Lookup(RegHandle key, OpenKeyState& rootState) {
  if (const std::int64_t id = RootId(key)) {
    rootState = OpenKeyState{id, key, {}, {}, RegAccess::AllAccess, {}};
    return &rootState;
  }
  auto it = handles_.find(key);
  return it == handles_.end() ? nullptr : &it->second;
}

RegStatus SqliteRegistry::Resolve(RegHandle handle, std::string_view subKey, std::uint32_t access, KeyBelow& out) {
  out.base = Lookup(handle, out.rootState);
  if (!out.base) return WinError::InvalidHandle;
  if (RegStatus s = NormalizePath(subKey, out.display, out.fold); s != 0) return s;
  const OpenKeyState& base = *out.base;
  out.key = OpenKeyState{base.id, base.root, Join(base.path, out.display), Join(base.fold, out.fold), access, {}};
  out.key.verified = base.verified;
  return WinError::Success;
}

RegHandle SqliteRegistry::NewHandle(OpenKeyState state) {
  // Handles count up from 0x100 in steps of 4, as the system's do, and never
  // reach the predefined roots' range.
  RegHandle h;
  do {
    h = nextHandle_;
    nextHandle_ = nextHandle_ >= 0x7FFFFFF0u ? 0x100 : nextHandle_ + 4;
  } while (handles_.count(h) != 0);
  handles_.emplace(h, std::move(state));
  return h;
}

RegStatus SqliteRegistry::FindKey(RegHandle root, const std::string& fold, std::int64_t& id, std::string* path) {
  id = 0;
  sqlite3_stmt* st = Prepare(kFindKey);
  if (!st) return Fail(sqlite3_errcode(db_), "cannot read");
  StmtScope scope{st};
  sqlite3_bind_int64(st, 1, root);
  BindText(st, 2, fold);
  const int rc = sqlite3_step(st);
  if (rc == SQLITE_ROW) {
    id = sqlite3_column_int64(st, 0);
    std::string spelled = ColumnText(st, 1);
    Remember(root, fold, id, spelled);
    if (path) *path = std::move(spelled);
    return WinError::Success;
  }
  if (rc == SQLITE_DONE) return WinError::FileNotFound;
  return Fail(rc, "cannot read");
}

RegStatus SqliteRegistry::Verify(OpenKeyState& k) {
  if (k.verified) return WinError::Success;
  std::int64_t id = 0;
  if (RegStatus s = FindKey(k.root, k.fold, id, &k.path); s != 0) return s;
  k.id = id;
  k.verified = true;
  return WinError::Success;
}

RegStatus SqliteRegistry::ReadyToRead(RegStatus absent) {
  const RegStatus ready = Ensure(false);
  return ready == kNoFile ? absent : ready;
}

RegStatus SqliteRegistry::UsableKey(RegHandle key, std::uint32_t access, RegStatus absent,
                                    OpenKeyState& rootState, OpenKeyState*& k) {
  k = Lookup(key, rootState);
  if (!k) return WinError::InvalidHandle;
  if ((k->access & access) != access) return WinError::AccessDenied;
  if (RegStatus s = ReadyToRead(absent); s != WinError::Success) return s;
  return Verify(*k);
}

RegStatus SqliteRegistry::OpenKey(RegHandle key, std::string_view subKey, std::uint32_t access, RegHandle& result) {
  std::lock_guard lock(mutex_);
  lastError_.clear();
  result = 0;
  KeyBelow below;
  if (RegStatus s = Resolve(key, subKey, access, below); s != 0) return s;
  OpenKeyState& state = below.key;
  if (!below.fold.empty()) {
    state.verified = true;
    if (RegStatus s = ReadyToRead(WinError::FileNotFound); s != WinError::Success) return s;
    if (auto it = keyCache_.find(CacheKey(state.root, state.fold)); it != keyCache_.end()) {
      state.id = it->second.first;
      state.path = it->second.second;
      state.verified = false;
    } else if (RegStatus s = FindKey(state.root, state.fold, state.id, &state.path); s != 0) {
      return s;
    }
  }
  result = NewHandle(std::move(state));
  return WinError::Success;
}

RegStatus SqliteRegistry::CreatePath(const OpenKeyState& base, std::string_view display, std::int64_t& id,
                                     std::string& fullPath, std::string& fullFold) {
  std::int64_t parent = base.id;
  std::string path = base.path, fold = base.fold;
  std::size_t start = 0;
  while (start < display.size()) {
    std::size_t end = display.find('\\', start);
    if (end == std::string_view::npos) end = display.size();
    const std::string_view part = display.substr(start, end - start);
    path = Join(path, part);
    fold = Join(fold, UpperCase(part));
    sqlite3_stmt* st = Prepare(kInsertKey);
    if (!st) return Fail(sqlite3_errcode(db_), "cannot write");
    {
      StmtScope scope{st};
      sqlite3_bind_int64(st, 1, parent);
      sqlite3_bind_int64(st, 2, base.root);
      BindText(st, 3, path);
      BindText(st, 4, fold);
      if (const int rc = sqlite3_step(st); rc != SQLITE_DONE) return Fail(rc, "cannot write");
    }
    // The key may have been there already, spelled another way.
    if (RegStatus s = FindKey(base.root, fold, parent, &path); s != 0) return s;
    start = end + 1;
  }
  id = parent;
  fullPath = std::move(path);
  fullFold = std::move(fold);
  return WinError::Success;
}

RegStatus SqliteRegistry::CreateKey(RegHandle key, std::string_view subKey, RegHandle& result) {
  std::lock_guard lock(mutex_);
  lastError_.clear();
  result = 0;
  KeyBelow below;
  if (RegStatus s = Resolve(key, subKey, RegAccess::AllAccess, below); s != 0) return s;
  OpenKeyState& state = below.key;
  if (below.fold.empty()) {
    result = NewHandle(std::move(state));
    return WinError::Success;
  }
  state.verified = true;  // its id is found or made below
  // Most creations find the key there already: look before taking the write lock.
  RegStatus ready = Ensure(false);
  if (ready == WinError::Success) {
    RegStatus s = FindKey(state.root, state.fold, state.id, &state.path);
    if (s == WinError::Success) {
      result = NewHandle(std::move(state));
      return WinError::Success;
    }
    if (s != WinError::FileNotFound) return s;
  } else if (ready != kNoFile) {
    return ready;
  }
  if (RegStatus s = Ensure(true); s != 0) return s;
  OpenKeyState baseCopy = *below.base;
  Transaction tx(db_);
  if (const int rc = tx.Begin(); rc != SQLITE_OK) return Fail(rc, "cannot write");
  if (baseCopy.fold.size() > 0) {
    // The key the handle names must still be there.
    if (RegStatus s = FindKey(baseCopy.root, baseCopy.fold, baseCopy.id, nullptr); s != 0)
      return s == WinError::FileNotFound ? WinError::KeyDeleted : s;
  }
  if (RegStatus s = CreatePath(baseCopy, below.display, state.id, state.path, state.fold); s != 0) return s;
  if (const int rc = tx.Commit(); rc != SQLITE_OK) return Fail(rc, "cannot write");
  result = NewHandle(std::move(state));
  return WinError::Success;
}

RegStatus SqliteRegistry::CloseKey(RegHandle key) {
  std::lock_guard lock(mutex_);
  if (RootId(key) != 0) return WinError::Success;
  return handles_.erase(key) ? WinError::Success : WinError::InvalidHandle;
}

// ---------------------------------------------------------------------------
// Values.

RegStatus SqliteRegistry::QueryValue(RegHandle key, std::string_view name, std::uint32_t* type,
                                     std::uint8_t* data, std::uint32_t* size) {
  std::lock_guard lock(mutex_);
  lastError_.clear();
  OpenKeyState rootState;
  OpenKeyState* k = Lookup(key, rootState);
  if (!k) return WinError::InvalidHandle;
  if ((k->access & RegAccess::QueryValue) == 0) return WinError::AccessDenied;
  if (data && !size) return WinError::InvalidParameter;
  std::string fold = UpperCase(CString(name));

  // The data query right after a size query of the same value.
  PendingValue& pending = k->pending;
  const bool usePending =
      data && pending.valid && pending.generation == writeGeneration_ && pending.fold == fold;
  pending.valid = false;
  std::uint32_t t = 0, n = 0;
  const void* blob = nullptr;
  StmtScope scope{nullptr};
  if (usePending) {
    t = pending.type;
    n = static_cast<std::uint32_t>(pending.data.size());
    blob = pending.data.data();
  } else {
    if (RegStatus s = ReadyToRead(WinError::FileNotFound); s != WinError::Success) return s;
    sqlite3_stmt* st = nullptr;
    int rc;
    for (;;) {
      st = Prepare(kGetValue);
      if (!st) return Fail(sqlite3_errcode(db_), "cannot read");
      sqlite3_bind_int64(st, 1, k->id);
      BindText(st, 2, fold);
      sqlite3_bind_int64(st, 3, k->root);
      BindText(st, 4, k->fold);
      rc = sqlite3_step(st);
      if (rc != SQLITE_DONE || k->verified) break;
      // Not found through a remembered key id: the key may have been
      // deleted or made anew since.  Look it up and try once more.
      sqlite3_reset(st);
      const std::int64_t before = k->id;
      if (RegStatus s = Verify(*k); s != 0) return s;
      if (k->id == before) break;
    }
    scope.st = st;
    if (rc == SQLITE_DONE) return WinError::FileNotFound;
    if (rc != SQLITE_ROW) return Fail(rc, "cannot read");
    k->verified = true;
    t = static_cast<std::uint32_t>(sqlite3_column_int64(st, 0));
    blob = sqlite3_column_blob(st, 1);
    n = static_cast<std::uint32_t>(sqlite3_column_bytes(st, 1));
  }
  if (type) *type = t;
  if (!data) {
    if (size) *size = n;
    if (k != &rootState && n <= kMaxPendingBytes) {
      const auto* bytes = static_cast<const std::uint8_t*>(blob);
      pending.data.assign(bytes, bytes + n);
      pending.fold = std::move(fold);
      pending.type = t;
      pending.generation = writeGeneration_;
      pending.valid = true;
    }
    return WinError::Success;
  }
  const std::uint32_t capacity = *size;
  *size = n;
  if (capacity < n) return WinError::MoreData;
  if (n) std::memcpy(data, blob, n);
  // The system ends string data that was stored without its NUL with one,
  // when the buffer has room for it.
  const bool isString = t == RegType::String || t == RegType::ExpandString || t == RegType::MultiString;
  if (isString && n > 0 && n < capacity && data[n - 1] != 0) data[n] = 0;
  return WinError::Success;
}

RegStatus SqliteRegistry::PutValue(std::int64_t id, std::string_view name, std::uint32_t type,
                                   const std::uint8_t* data, std::uint32_t size) {
  ++writeGeneration_;
  sqlite3_stmt* st = Prepare(kPutValue);
  if (!st) return Fail(sqlite3_errcode(db_), "cannot write");
  StmtScope scope{st};
  sqlite3_bind_int64(st, 1, id);
  BindText(st, 2, UpperCase(name));
  BindText(st, 3, name);
  sqlite3_bind_int64(st, 4, type);
  sqlite3_bind_blob(st, 5, size ? static_cast<const void*>(data) : static_cast<const void*>(""),
                    static_cast<int>(size), SQLITE_TRANSIENT);
  const int rc = sqlite3_step(st);
  if (rc != SQLITE_DONE) return Fail(rc, "cannot write");
  return sqlite3_changes(db_) == 0 ? WinError::KeyDeleted : WinError::Success;
}

RegStatus SqliteRegistry::SetValue(RegHandle key, std::string_view name, std::uint32_t type,
                                   const std::uint8_t* data, std::uint32_t size) {
  std::lock_guard lock(mutex_);
  lastError_.clear();
  OpenKeyState rootState;
  OpenKeyState* k = Lookup(key, rootState);
  if (!k) return WinError::InvalidHandle;
  if ((k->access & RegAccess::SetValue) == 0) return WinError::AccessDenied;
  name = CString(name);
  if (name.size() > kMaxValueNameLength) return WinError::InvalidParameter;
  if (size > 0 && !data) return WinError::InvalidParameter;
  if (size > 0x7FFFFFFEu) return WinError::InvalidParameter;
  // NT stores a string whose length leaves out the NUL right after it with
  // that NUL; the registry reads of the library rely on it.
  const bool isString = type == RegType::String || type == RegType::ExpandString || type == RegType::MultiString;
  if (isString && size > 0 && data[size - 1] != 0 && data[size] == 0) ++size;
  if (RegStatus s = Ensure(true); s != 0) return s;
  if (RegStatus s = Verify(*k); s != 0) return s == WinError::FileNotFound ? WinError::KeyDeleted : s;
  // One statement: its own transaction, one durable commit.
  return PutValue(k->id, name, type, data, size);
}

RegStatus SqliteRegistry::SetKeyDefault(RegHandle key, std::string_view subKey, std::string_view text) {
  RegHandle sub = 0;
  if (RegStatus s = CreateKey(key, subKey, sub); s != 0) return s;
  const std::string_view t = CString(text);
  std::string bytes(t);
  bytes.push_back('\0');
  RegStatus s = WinError::Success;
  {
    std::lock_guard lock(mutex_);
    OpenKeyState rootState;
    const OpenKeyState* k = Lookup(sub, rootState);
    s = k ? PutValue(k->id, "", RegType::String, reinterpret_cast<const std::uint8_t*>(bytes.data()),
                     static_cast<std::uint32_t>(bytes.size()))
          : WinError::InvalidHandle;
  }
  CloseKey(sub);
  return s;
}

RegStatus SqliteRegistry::DeleteValue(RegHandle key, std::string_view name) {
  std::lock_guard lock(mutex_);
  lastError_.clear();
  OpenKeyState rootState;
  OpenKeyState* k = nullptr;
  if (RegStatus s = UsableKey(key, RegAccess::SetValue, WinError::FileNotFound, rootState, k); s != 0) return s;
  return RemoveValue(k->id, CString(name));
}

RegStatus SqliteRegistry::RemoveValue(std::int64_t id, std::string_view name) {
  ++writeGeneration_;
  sqlite3_stmt* st = Prepare(kDeleteValue);
  if (!st) return Fail(sqlite3_errcode(db_), "cannot write");
  StmtScope scope{st};
  sqlite3_bind_int64(st, 1, id);
  BindText(st, 2, UpperCase(name));
  if (const int rc = sqlite3_step(st); rc != SQLITE_DONE) return Fail(rc, "cannot write");
  return sqlite3_changes(db_) == 0 ? WinError::FileNotFound : WinError::Success;
}

// ---------------------------------------------------------------------------
// Deleting keys.

RegStatus SqliteRegistry::DeleteSubtree(RegHandle root, const std::string& fold, bool keepSelf) {
  ++writeGeneration_;
  keyCache_.clear();
  for (Stmt s : {kDeleteSubtreeValues, kDeleteSubtreeKeys}) {
    sqlite3_stmt* st = Prepare(s);
    if (!st) return Fail(sqlite3_errcode(db_), "cannot write");
    StmtScope scope{st};
    sqlite3_bind_int64(st, 1, root);
    BindText(st, 2, fold);
    if (s == kDeleteSubtreeKeys) sqlite3_bind_int(st, 3, keepSelf ? 1 : 0);
    if (const int rc = sqlite3_step(st); rc != SQLITE_DONE) return Fail(rc, "cannot write");
  }
  return WinError::Success;
}

RegStatus SqliteRegistry::DeleteKey(RegHandle key, std::string_view subKey) {
  return RemoveKey(key, subKey, false);
}

RegStatus SqliteRegistry::DeleteTree(RegHandle key, std::string_view subKey) {
  return RemoveKey(key, subKey, true);
}

RegStatus SqliteRegistry::RemoveKey(RegHandle key, std::string_view subKey, bool tree) {
  std::lock_guard lock(mutex_);
  lastError_.clear();
  KeyBelow below;
  if (RegStatus s = Resolve(key, subKey, 0, below); s != 0) return s;
  const std::string& full = below.key.fold;
  if (!tree && full.empty()) return WinError::AccessDenied;  // a root cannot be deleted
  const RegHandle root = below.key.root;
  const bool ownKey = below.fold.empty();
  // DeleteTree of a handle's own key with no store yet has nothing to do.
  if (RegStatus s = ReadyToRead(tree && ownKey ? kNoFile : WinError::FileNotFound); s != 0)
    return s == kNoFile ? WinError::Success : s;
  if (RegStatus s = Ensure(true); s != 0) return s;
  Transaction tx(db_);
  if (const int rc = tx.Begin(); rc != SQLITE_OK) return Fail(rc, "cannot write");
  std::int64_t id = 0;
  if (!full.empty())
    if (RegStatus s = FindKey(root, full, id, nullptr); s != 0) return s;
  if (!tree) {
    sqlite3_stmt* st = Prepare(kCountChildren);
    if (!st) return Fail(sqlite3_errcode(db_), "cannot read");
    StmtScope scope{st};
    sqlite3_bind_int64(st, 1, id);
    if (const int rc = sqlite3_step(st); rc != SQLITE_ROW) return Fail(rc, "cannot read");
    // Only a key without subkeys can be deleted this way, as on Windows.
    if (sqlite3_column_int64(st, 0) > 0) return WinError::AccessDenied;
  }
  // DeleteTree with no subkey keeps the key itself and empties it, as on Windows.
  if (RegStatus s = DeleteSubtree(root, full, tree && ownKey); s != 0) return s;
  if (const int rc = tx.Commit(); rc != SQLITE_OK) return Fail(rc, "cannot write");
  return WinError::Success;
}

// ---------------------------------------------------------------------------
// Enumeration.

RegStatus SqliteRegistry::EnumRow(Stmt s, std::int64_t id, std::uint32_t index, StmtScope& scope) {
  sqlite3_stmt* st = Prepare(s);
  if (!st) return Fail(sqlite3_errcode(db_), "cannot read");
  scope.st = st;
  sqlite3_bind_int64(st, 1, id);
  sqlite3_bind_int64(st, 2, index);
  const int rc = sqlite3_step(st);
  if (rc == SQLITE_DONE) return WinError::NoMoreItems;
  return rc == SQLITE_ROW ? WinError::Success : Fail(rc, "cannot read");
}

RegStatus SqliteRegistry::EnumKey(RegHandle key, std::uint32_t index, std::string& name) {
  std::lock_guard lock(mutex_);
  lastError_.clear();
  OpenKeyState rootState;
  OpenKeyState* k = nullptr;
  if (RegStatus s = UsableKey(key, 0, WinError::NoMoreItems, rootState, k); s != 0) return s;
  StmtScope scope{nullptr};
  if (RegStatus s = EnumRow(kEnumKey, k->id, index, scope); s != 0) return s;
  const std::string path = ColumnText(scope.st, 0);
  const std::size_t slash = path.rfind('\\');
  name = slash == std::string::npos ? path : path.substr(slash + 1);
  return WinError::Success;
}

RegStatus SqliteRegistry::EnumValue(RegHandle key, std::uint32_t index, std::string& name, std::uint32_t* type,
                                    std::vector<std::uint8_t>* data) {
  std::lock_guard lock(mutex_);
  lastError_.clear();
  OpenKeyState rootState;
  OpenKeyState* k = nullptr;
  if (RegStatus s = UsableKey(key, RegAccess::QueryValue, WinError::NoMoreItems, rootState, k); s != 0) return s;
  StmtScope scope{nullptr};
  if (RegStatus s = EnumRow(kEnumValue, k->id, index, scope); s != 0) return s;
  ReadValueRow(scope.st, name, type, data);
  return WinError::Success;
}

// ---------------------------------------------------------------------------
// .reg files.

RegStatus SqliteRegistry::ImportRegKeys(const std::vector<RegFileKey>& keys) {
  std::lock_guard lock(mutex_);
  lastError_.clear();
  for (const RegFileKey& k : keys) {
    std::string display, fold;
    if (RegStatus s = NormalizePath(k.path, display, fold); s != 0) {
      lastError_ = "invalid key path '" + k.path + "'";
      return s;
    }
  }
  if (RegStatus s = Ensure(true); s != 0) return s;
  Transaction tx(db_);
  if (const int rc = tx.Begin(); rc != SQLITE_OK) return Fail(rc, "cannot write");
  for (const RegFileKey& k : keys) {
    std::string display, fold;
    NormalizePath(k.path, display, fold);
    if (k.remove) {
      if (!fold.empty())
        if (RegStatus s = DeleteSubtree(k.root, fold, false); s != 0) return s;
      continue;
    }
    const OpenKeyState root{RootId(k.root), k.root, {}, {}, RegAccess::AllAccess, {}};
    std::int64_t id = root.id;
    std::string path, f;
    if (RegStatus s = CreatePath(root, display, id, path, f); s != 0) return s;
    for (const RegFileValue& v : k.values) {
      if (v.remove) {
        // A value the file removes need not be there.
        if (RegStatus s = RemoveValue(id, v.name); s != 0 && s != WinError::FileNotFound) return s;
      } else if (RegStatus s = PutValue(id, v.name, v.type, v.data.data(),
                                        static_cast<std::uint32_t>(v.data.size()));
                 s != 0) {
        return s;
      }
    }
  }
  if (const int rc = tx.Commit(); rc != SQLITE_OK) return Fail(rc, "cannot write");
  return WinError::Success;
}

RegStatus SqliteRegistry::ExportRegKeys(RegHandle root, std::string_view subKey, std::vector<RegFileKey>& keys) {
  std::lock_guard lock(mutex_);
  lastError_.clear();
  keys.clear();
  std::vector<RegHandle> roots;
  if (root == 0)
    roots = {kHkeyClassesRoot, kHkeyCurrentUser, kHkeyLocalMachine};
  else if (RootId(root) != 0)
    roots = {root};
  else
    return WinError::InvalidHandle;
  std::string display, fold;
  if (RegStatus s = NormalizePath(subKey, display, fold); s != 0) return s;
  // With no store yet, the export of a whole root is empty.
  if (RegStatus s = ReadyToRead(fold.empty() ? kNoFile : WinError::FileNotFound); s != 0)
    return s == kNoFile ? WinError::Success : s;
  // One read transaction, so the export is one consistent picture.
  if (RegStatus s = Exec("BEGIN", "cannot read"); s != 0) return s;
  struct EndRead {
    sqlite3* db;
    ~EndRead() {
      if (db) sqlite3_exec(db, "COMMIT", nullptr, nullptr, nullptr);
    }
  } endRead{db_};
  for (RegHandle r : roots) {
    if (!fold.empty()) {
      std::int64_t id = 0;
      if (RegStatus s = FindKey(r, fold, id, nullptr); s != 0) return s;
    }
    std::vector<std::pair<std::int64_t, std::string>> keyRows;
    {
      sqlite3_stmt* st = Prepare(kSubtree);
      if (!st) return Fail(sqlite3_errcode(db_), "cannot read");
      StmtScope scope{st};
      sqlite3_bind_int64(st, 1, r);
      BindText(st, 2, fold);
      int rc;
      while ((rc = sqlite3_step(st)) == SQLITE_ROW)
        keyRows.emplace_back(sqlite3_column_int64(st, 0), ColumnText(st, 1));
      if (rc != SQLITE_DONE) return Fail(rc, "cannot read");
    }
    for (const auto& [id, path] : keyRows) {
      RegFileKey key;
      key.root = r;
      key.path = path;
      sqlite3_stmt* st = Prepare(kValuesOf);
      if (!st) return Fail(sqlite3_errcode(db_), "cannot read");
      StmtScope scope{st};
      sqlite3_bind_int64(st, 1, id);
      int rc;
      while ((rc = sqlite3_step(st)) == SQLITE_ROW) {
        RegFileValue v;
        ReadValueRow(st, v.name, &v.type, &v.data);
        key.values.push_back(std::move(v));
      }
      if (rc != SQLITE_DONE) return Fail(rc, "cannot read");
      // A root is written only when it holds values of its own.
      if (path.empty() && key.values.empty()) continue;
      keys.push_back(std::move(key));
    }
  }
  return WinError::Success;
}

}  // namespace

std::unique_ptr<RegistryStore> OpenRegistryStore(std::string path) {
  return std::make_unique<SqliteRegistry>(std::move(path));
}

}  // namespace TessarkAO

#endif
