// The store's database, its schema and the in-memory copy that reads are served from.
//
// Schema (PRAGMA application_id 'QLMH', user_version 1). Text is UTF-8; names that Windows
// compares without case are COLLATE NOCASE, which folds ASCII letters as Windows' registry
// and spooler do for the names this system uses, and keeps the case first written.
//
//   settings(name PRIMARY KEY, value)           user name, metric, system version
//   printers(id, name UNIQUE NOCASE, driver, port, comment, location, attributes,
//            devmode BLOB NULL)                  NULL devmode: the queue has no stored record
//   printer_data(id, printer -> printers, key NOCASE, name NOCASE, type, data,
//                UNIQUE(printer, key, name))
//   ports(name PRIMARY KEY NOCASE, monitor, description)
//   reg_keys(id, parent, name NOCASE, UNIQUE(parent, name))
//            parent 0 marks the root of a hive, named "HKLM" or "HKCU:<user>"
//   reg_values(id, key -> reg_keys, name NOCASE, type, data, UNIQUE(key, name))
//            id order is insertion order; an overwrite keeps the id (an upsert), as the
//            registry keeps a value's place in RegEnumValueW
//
// Ids are AUTOINCREMENT so that an id is never reused: a handle holding the id of a deleted
// key or printer can tell it is gone rather than meet a newcomer.
//
// Concurrency: file stores run in WAL mode with a busy timeout, and every write is one
// BEGIN IMMEDIATE transaction, so writers from several processes queue instead of losing
// each other's changes, and the last to commit wins. The copy is reloaded whenever
// PRAGMA data_version shows a commit by another connection; that check runs again inside each
// write transaction, so a change is always computed against what is in the file
// (RegCreateKeyExW sees a key another process has just made).
//
// Cheap reads. PRAGMA data_version opens a read transaction (file locks, system calls) that
// costs several times the look-up it guards, and the driver reads a hundred printer data values
// per call. So a read first compares the WAL-index header, the first 96 bytes of the database's
// shared memory ("store.db-shm"): two copies of a 48-byte header that a commit rewrites, by any
// connection of any process, before it returns; rewriting it is what makes the commit visible to
// other connections (SQLite's unix WAL format, header version 3007000). The store reads SQLite's
// own mapping of it (the file's xShmMap, reached with SQLITE_FCNTL_FILE_POINTER), so it opens no
// file of its own: closing one would drop the POSIX locks SQLite holds on the shared memory.
//  - The check runs only when the header differs from the one taken just before the last
//    check. Taking it before means a commit that lands between the two is either in the check
//    or changes the header again.
//  - A header whose two copies differ (a commit under way, or a writer that crashed in it) or
//    of an unknown version is not kept, so the next read checks again.
//  - Writers take no part: older hosts and the sqlite3 shell rewrite the header as well, and no
//    counter of our own can be left behind by a crash. A commit whose header was never written
//    is invisible to SQLite's readers too, until a recovery rewrites the header.
//  - Our own commits change the header as well; the next read pays one check, which finds
//    data_version unmoved (it counts other connections' commits only).
//  - The mapping lasts as long as the connection: SQLite unmaps it only when it closes the WAL,
//    and no other process resets the shared memory while a connection holds its lock on it.
//  - A store in memory has no other connection and is never checked. A file store that did not
//    get WAL mode, or whose header cannot be had, is checked on every read.
#include "store.h"

#include <sqlite3.h>

#include <pthread.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <new>

namespace host::detail {

namespace {

constexpr int kApplicationId = 0x514C4D48; // "QLMH"
constexpr int kSchemaVersion = 1;
constexpr int kBusyTimeoutMs = 5000;
// The WAL-index: SQLite maps its shared memory in regions of 32 KiB; the header opens region 0
// with its version number, and byte 12 of each copy says it was initialised.
constexpr int kWalIndexRegionSize = 32768;
constexpr uint32_t kWalIndexVersion = 3007000;
constexpr size_t kWalIndexInitByte = 12;

const char kSchema[] = R"(
CREATE TABLE settings(name TEXT PRIMARY KEY, value TEXT NOT NULL);
CREATE TABLE printers(
    id INTEGER PRIMARY KEY AUTOINCREMENT,
    name TEXT NOT NULL UNIQUE COLLATE NOCASE,
    driver TEXT NOT NULL DEFAULT '',
    port TEXT NOT NULL DEFAULT '',
    comment TEXT NOT NULL DEFAULT '',
    location TEXT NOT NULL DEFAULT '',
    attributes INTEGER NOT NULL DEFAULT 0,
    devmode BLOB);
CREATE TABLE printer_data(
    id INTEGER PRIMARY KEY AUTOINCREMENT,
    printer INTEGER NOT NULL REFERENCES printers(id) ON DELETE CASCADE,
    key TEXT NOT NULL COLLATE NOCASE,
    name TEXT NOT NULL COLLATE NOCASE,
    type INTEGER NOT NULL,
    data BLOB NOT NULL,
    UNIQUE(printer, key, name));
CREATE TABLE ports(
    name TEXT PRIMARY KEY COLLATE NOCASE,
    monitor TEXT NOT NULL DEFAULT '',
    description TEXT NOT NULL DEFAULT '');
CREATE TABLE reg_keys(
    id INTEGER PRIMARY KEY AUTOINCREMENT,
    parent INTEGER NOT NULL,
    name TEXT NOT NULL COLLATE NOCASE,
    UNIQUE(parent, name));
CREATE TABLE reg_values(
    id INTEGER PRIMARY KEY AUTOINCREMENT,
    key INTEGER NOT NULL REFERENCES reg_keys(id) ON DELETE CASCADE,
    name TEXT NOT NULL COLLATE NOCASE,
    type INTEGER NOT NULL,
    data BLOB NOT NULL,
    UNIQUE(key, name));
)";

// Store values may have been damaged by hand: anything that is not a 32-bit number reads as 0.
DWORD ToDword(int64_t value)
{
    return (value < 0 || value > 0xFFFFFFFFLL) ? 0 : static_cast<DWORD>(value);
}

} // namespace

// ---- Model look-ups ---------------------------------------------------------------------

const PrinterRow* Model::FindPrinter(const std::u16string& name) const
{
    auto it = printerIds.find(Fold(name));
    return it == printerIds.end() ? nullptr : PrinterById(it->second);
}

const PrinterRow* Model::PrinterById(int64_t id) const
{
    auto it = printers.find(id);
    return it == printers.end() ? nullptr : &it->second;
}

const RegKeyRow* Model::Key(int64_t id) const
{
    auto it = keys.find(id);
    return it == keys.end() ? nullptr : &it->second;
}

int64_t Model::Child(int64_t parent, const std::u16string& name) const
{
    const RegKeyRow* key = Key(parent);
    if (!key) {
        return 0;
    }
    auto it = key->children.find(Fold(name));
    return it == key->children.end() ? 0 : it->second;
}

bool DevModeSizes(const uint8_t* bytes, size_t size, size_t* total)
{
    if (!bytes || size < kMinDevModeSize) {
        return false;
    }
    WORD dmSize, dmDriverExtra;
    std::memcpy(&dmSize, bytes + offsetof(DEVMODEW, dmSize), sizeof dmSize);
    std::memcpy(&dmDriverExtra, bytes + offsetof(DEVMODEW, dmDriverExtra), sizeof dmDriverExtra);
    size_t sum = size_t(dmSize) + dmDriverExtra;
    if (dmSize < kMinDevModeSize || sum > size) {
        return false;
    }
    *total = sum;
    return true;
}

Bytes CheckedDevMode(Bytes stored)
{
    size_t total = 0;
    if (!DevModeSizes(stored.data(), stored.size(), &total)) {
        return {};
    }
    stored.resize(total);
    return stored;
}

// ---- Statements ---------------------------------------------------------------------------

void Exec(sqlite3* db, const char* text)
{
    char* message = nullptr;
    if (sqlite3_exec(db, text, nullptr, nullptr, &message) != SQLITE_OK) {
        std::string what = message ? message : sqlite3_errmsg(db);
        sqlite3_free(message);
        throw StoreError(what);
    }
}

Sql::Sql(sqlite3* db, const char* text) : db_(db)
{
    if (sqlite3_prepare_v2(db, text, -1, &stmt_, nullptr) != SQLITE_OK) {
        throw StoreError(sqlite3_errmsg(db));
    }
}

Sql::~Sql()
{
    sqlite3_finalize(stmt_);
}

Sql& Sql::Bind(int index, int64_t value)
{
    sqlite3_bind_int64(stmt_, index, value);
    return *this;
}

Sql& Sql::Bind(int index, const std::u16string& text)
{
    return Bind(index, Utf16ToUtf8(text));
}

Sql& Sql::Bind(int index, const std::string& text)
{
    sqlite3_bind_text(stmt_, index, text.data(), int(text.size()), SQLITE_TRANSIENT);
    return *this;
}

Sql& Sql::Bind(int index, const Bytes& blob)
{
    // A null pointer would bind NULL; an empty value is a zero-length blob.
    if (blob.empty()) {
        sqlite3_bind_zeroblob(stmt_, index, 0);
    } else {
        sqlite3_bind_blob(stmt_, index, blob.data(), int(blob.size()), SQLITE_TRANSIENT);
    }
    return *this;
}

Sql& Sql::BindNull(int index)
{
    sqlite3_bind_null(stmt_, index);
    return *this;
}

bool Sql::Step()
{
    int rc = sqlite3_step(stmt_);
    if (rc == SQLITE_ROW) {
        return true;
    }
    if (rc == SQLITE_DONE) {
        return false;
    }
    throw StoreError(sqlite3_errmsg(db_));
}

void Sql::Run()
{
    while (Step()) {
    }
}

int64_t Sql::Int(int column)
{
    return sqlite3_column_int64(stmt_, column);
}

std::string Sql::Utf8(int column)
{
    const auto* text = sqlite3_column_text(stmt_, column);
    int size = sqlite3_column_bytes(stmt_, column);
    return text ? std::string(reinterpret_cast<const char*>(text), size_t(size)) : std::string();
}

std::u16string Sql::Text(int column)
{
    return Utf8ToUtf16(Utf8(column));
}

Bytes Sql::Blob(int column)
{
    const auto* data = static_cast<const uint8_t*>(sqlite3_column_blob(stmt_, column));
    int size = sqlite3_column_bytes(stmt_, column);
    return data ? Bytes(data, data + size) : Bytes();
}

bool Sql::IsNull(int column)
{
    return sqlite3_column_type(stmt_, column) == SQLITE_NULL;
}

// ---- Printer data -------------------------------------------------------------------------

void PutPrinterData(sqlite3* db, Model& model, int64_t printer, const std::u16string& key,
                    const std::u16string& name, DWORD type, Bytes data)
{
    Sql upsert(db, "INSERT INTO printer_data(printer, key, name, type, data) "
                   "VALUES(?1, ?2, ?3, ?4, ?5) ON CONFLICT(printer, key, name) "
                   "DO UPDATE SET type = excluded.type, data = excluded.data");
    upsert.Bind(1, printer).Bind(2, key).Bind(3, name).Bind(4, int64_t(type)).Bind(5, data);
    upsert.Run();
    auto it = model.printerData.find(PrinterDataKey{printer, Fold(key), Fold(name)});
    if (it != model.printerData.end()) {
        it->second.type = type;
        it->second.data = std::move(data);
    } else {
        PrinterDataRow row{
            sqlite3_last_insert_rowid(db), printer, key, name, type, std::move(data)};
        model.printerData.emplace(PrinterDataKey{printer, Fold(key), Fold(name)}, std::move(row));
    }
}

// ---- Registry key rows --------------------------------------------------------------------

int64_t FindHive(const Model& model, const std::u16string& hive)
{
    auto it = model.hives.find(Fold(hive));
    return it == model.hives.end() ? 0 : it->second;
}

int64_t CreateKey(sqlite3* db, Model& model, int64_t parent, const std::u16string& name)
{
    Sql insert(db, "INSERT INTO reg_keys(parent, name) VALUES(?1, ?2)");
    insert.Bind(1, parent).Bind(2, name).Run();
    int64_t id = sqlite3_last_insert_rowid(db);
    RegKeyRow row;
    row.id = id;
    row.parent = parent;
    row.name = name;
    model.keys[id] = std::move(row);
    if (parent == 0) {
        model.hives[Fold(name)] = id;
    } else {
        model.keys[parent].children[Fold(name)] = id;
    }
    return id;
}

int64_t CreateHive(sqlite3* db, Model& model, const std::u16string& hive)
{
    int64_t id = FindHive(model, hive);
    return id ? id : CreateKey(db, model, 0, hive);
}

std::vector<std::u16string> SplitKeyPath(const std::u16string& path)
{
    std::vector<std::u16string> parts;
    size_t start = 0;
    while (start <= path.size()) {
        size_t end = path.find(u'\\', start);
        if (end == std::u16string::npos) {
            end = path.size();
        }
        if (end > start) {
            parts.push_back(path.substr(start, end - start));
        }
        start = end + 1;
    }
    return parts;
}

int64_t WalkKeyPath(const Model& model, int64_t from, const std::vector<std::u16string>& parts)
{
    int64_t id = from;
    for (const auto& part : parts) {
        if (!id) {
            break;
        }
        id = model.Child(id, part);
    }
    return id;
}

std::u16string CurrentUserHive()
{
    return u"HKCU:" + UserName();
}

// ---- The store ----------------------------------------------------------------------------

Store& Store::Instance()
{
    static Store* store = new Store; // never destroyed: Win32 calls may come from destructors
    return *store;
}

Store::Store()
{
    pthread_atfork(nullptr, nullptr, &Store::AfterForkInChild);
}

// SQLite forbids using a connection in a child of the process that opened it; closing it
// there could even delete the parent's WAL. The child abandons it, unclosed, and opens its own
// when it next needs the store. Handles inherited from the parent die with the generation.
void Store::AfterForkInChild()
{
    Store& store = Instance();
    store.db_ = nullptr;
    store.dataVersion_ = nullptr;
    store.walHeader_ = nullptr; // the parent's connection's, as the rest
    store.seenHeaderValid_ = false;
    store.stale_ = true;
    store.inWrite_ = false;
    ++store.generation_;
}

void Store::Report(const std::string& message)
{
    if (message != lastReport_) {
        std::fprintf(stderr, "qlmhost: %s\n", message.c_str());
        lastReport_ = message;
    }
}

bool Store::Open(const std::string& path, std::string* error)
{
    Close();
    ++generation_;
    sqlite3* db = nullptr;
    int rc =
        sqlite3_open_v2(path.c_str(), &db, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr);
    auto fail = [&](const std::string& why) {
        std::string message = "cannot open the store " + path + ": " + why;
        if (error) {
            *error = message;
        }
        sqlite3_close(db);
        return false;
    };
    if (rc != SQLITE_OK) {
        return fail(db ? sqlite3_errmsg(db) : sqlite3_errstr(rc));
    }
    sqlite3_extended_result_codes(db, 1);
    sqlite3_busy_timeout(db, kBusyTimeoutMs);
    bool inTransaction = false, isPrivate = false, walMode = false;
    try {
        // A file that is no database fails at its first read, in one of these statements.
        Exec(db, "PRAGMA foreign_keys=ON");
        const char* file = sqlite3_db_filename(db, "main");
        isPrivate = !file || !*file;
        if (!isPrivate) {
            Sql mode(db, "PRAGMA journal_mode=WAL");
            walMode = mode.Step() && mode.Utf8(0) == "wal";
            Exec(db, "PRAGMA synchronous=NORMAL");
        }
        Exec(db, "BEGIN IMMEDIATE");
        inTransaction = true;
        int64_t applicationId = 0, userVersion = 0, objects = 0;
        {
            Sql q(db, "PRAGMA application_id");
            if (q.Step()) {
                applicationId = q.Int(0);
            }
        }
        {
            Sql q(db, "PRAGMA user_version");
            if (q.Step()) {
                userVersion = q.Int(0);
            }
        }
        {
            Sql q(db, "SELECT count(*) FROM sqlite_master");
            if (q.Step()) {
                objects = q.Int(0);
            }
        }
        if (applicationId == kApplicationId) {
            if (userVersion > kSchemaVersion) {
                Exec(db, "ROLLBACK");
                return fail("it was written by a newer host (schema " +
                            std::to_string(userVersion) + ")");
            }
        } else if (applicationId == 0 && objects == 0) {
            Exec(db, kSchema);
            Exec(db, ("PRAGMA application_id=" + std::to_string(kApplicationId) +
                      "; PRAGMA user_version=" + std::to_string(kSchemaVersion))
                         .c_str());
        } else {
            Exec(db, "ROLLBACK");
            return fail("it is an SQLite database of some other program, not a store");
        }
        Exec(db, "COMMIT");
        inTransaction = false;
    } catch (const StoreError& e) {
        if (inTransaction) {
            sqlite3_exec(db, "ROLLBACK", nullptr, nullptr, nullptr);
        }
        return fail(e.what());
    }
    db_ = db;
    private_ = isPrivate;
    stale_ = true;
    try {
        Load(false);
    } catch (const StoreError& e) {
        Close();
        return fail(e.what());
    }
    FindWalHeader(walMode);
    lastReport_.clear();
    return true;
}

// Called after a read transaction, so SQLite has mapped region 0 already; this only asks for
// its address. Without it, every read checks.
void Store::FindWalHeader(bool walMode)
{
    walHeader_ = nullptr;
    seenHeaderValid_ = false;
    if (private_ || !walMode) {
        return;
    }
    sqlite3_file* file = nullptr;
    if (sqlite3_file_control(db_, "main", SQLITE_FCNTL_FILE_POINTER, &file) != SQLITE_OK || !file ||
        !file->pMethods || file->pMethods->iVersion < 2 || !file->pMethods->xShmMap) {
        return;
    }
    void volatile* region = nullptr;
    if (file->pMethods->xShmMap(file, 0, kWalIndexRegionSize, 0, &region) == SQLITE_OK && region) {
        walHeader_ = static_cast<const volatile uint64_t*>(region);
    }
}

bool Store::SnapshotWalHeader(WalHeader* header) const
{
    if (!walHeader_) {
        return false;
    }
    for (size_t i = 0; i < kWalHeaderWords; ++i) {
        (*header)[i] = walHeader_[i];
    }
    // What follows (data_version, the reload) must see the store no older than this header.
    std::atomic_thread_fence(std::memory_order_acquire);
    constexpr size_t half = kWalHeaderWords / 2;
    const auto* bytes = reinterpret_cast<const uint8_t*>(header->data());
    uint32_t version = 0;
    std::memcpy(&version, bytes, sizeof version);
    return version == kWalIndexVersion && bytes[kWalIndexInitByte] != 0 &&
           std::equal(header->begin(), header->begin() + half, header->begin() + half);
}

void Store::Close()
{
    walHeader_ = nullptr; // SQLite unmaps it with the connection
    seenHeaderValid_ = false;
    private_ = false;
    if (db_) {
        sqlite3_finalize(dataVersion_);
        dataVersion_ = nullptr;
        sqlite3_close(db_);
        db_ = nullptr;
        ++generation_;
    }
    model_ = Model();
    stale_ = true;
    version_ = -1;
}

bool Store::EnsureOpen()
{
    if (db_) {
        return true;
    }
    std::string error;
    if (Open(HomeDirectory() + "/store.db", &error)) {
        return true;
    }
    Report(error);
    return false;
}

int64_t Store::DataVersion()
{
    if (!dataVersion_ &&
        sqlite3_prepare_v2(db_, "PRAGMA data_version", -1, &dataVersion_, nullptr) != SQLITE_OK) {
        throw StoreError(sqlite3_errmsg(db_));
    }
    int rc = sqlite3_step(dataVersion_);
    int64_t version = rc == SQLITE_ROW ? sqlite3_column_int64(dataVersion_, 0) : -1;
    sqlite3_reset(dataVersion_);
    if (rc != SQLITE_ROW) {
        throw StoreError(sqlite3_errmsg(db_));
    }
    return version;
}

void Store::Load(bool inTransaction)
{
    if (!inTransaction) {
        Exec(db_, "BEGIN");
    }
    Model m;
    try {
        int64_t version = DataVersion();
        {
            Sql q(db_, "SELECT id, name, driver, port, comment, location, attributes, devmode "
                       "FROM printers");
            while (q.Step()) {
                PrinterRow p;
                p.id = q.Int(0);
                p.name = q.Text(1);
                p.driver = q.Text(2);
                p.port = q.Text(3);
                p.comment = q.Text(4);
                p.location = q.Text(5);
                p.attributes = ToDword(q.Int(6));
                p.devMode = CheckedDevMode(q.Blob(7));
                if (m.printerIds.emplace(Fold(p.name), p.id).second) {
                    m.printers.emplace(p.id, std::move(p));
                }
            }
        }
        {
            Sql q(db_, "SELECT id, printer, key, name, type, data FROM printer_data ORDER BY id");
            while (q.Step()) {
                PrinterDataRow v;
                v.id = q.Int(0);
                v.printer = q.Int(1);
                v.key = q.Text(2);
                v.name = q.Text(3);
                v.type = ToDword(q.Int(4));
                v.data = q.Blob(5);
                if (m.printers.count(v.printer)) {
                    PrinterDataKey at{v.printer, Fold(v.key), Fold(v.name)};
                    m.printerData.emplace(std::move(at), std::move(v));
                }
            }
        }
        {
            Sql q(db_, "SELECT name, monitor, description FROM ports");
            while (q.Step()) {
                PortRow port{q.Text(0), q.Text(1), q.Text(2)};
                m.ports.emplace(Fold(port.name), std::move(port));
            }
        }
        {
            Sql q(db_, "SELECT id, parent, name FROM reg_keys ORDER BY id");
            while (q.Step()) {
                RegKeyRow k;
                k.id = q.Int(0);
                k.parent = q.Int(1);
                k.name = q.Text(2);
                m.keys.emplace(k.id, std::move(k));
            }
            // Link children to parents; a row whose parent is missing stays unreachable.
            for (auto& [id, key] : m.keys) {
                if (key.parent == 0) {
                    m.hives.emplace(Fold(key.name), id);
                } else if (key.parent != id) {
                    auto parent = m.keys.find(key.parent);
                    if (parent != m.keys.end()) {
                        parent->second.children.emplace(Fold(key.name), id);
                    }
                }
            }
        }
        {
            Sql q(db_, "SELECT id, key, name, type, data FROM reg_values ORDER BY id");
            while (q.Step()) {
                auto key = m.keys.find(q.Int(1));
                if (key != m.keys.end()) {
                    RegValueRow v;
                    v.id = q.Int(0);
                    v.name = q.Text(2);
                    v.type = ToDword(q.Int(3));
                    v.data = q.Blob(4);
                    key->second.values.push_back(std::move(v));
                }
            }
        }
        {
            Sql q(db_, "SELECT name, value FROM settings");
            while (q.Step()) {
                m.settings[q.Utf8(0)] = q.Utf8(1);
            }
        }
        if (!inTransaction) {
            Exec(db_, "COMMIT");
        }
        version_ = version;
    } catch (...) {
        if (!inTransaction) {
            sqlite3_exec(db_, "ROLLBACK", nullptr, nullptr, nullptr);
        }
        throw;
    }
    model_ = std::move(m);
    stale_ = false;
}

const Model* Store::Refresh()
{
    if (!EnsureOpen()) {
        return nullptr;
    }
    if (inWrite_) {
        return &model_; // already current inside the write transaction
    }
    try {
        WalHeader header;
        bool vouches = SnapshotWalHeader(&header);
        seenHeaderValid_ = false;
        if (stale_ || DataVersion() != version_) {
            Load(false);
        }
        if (vouches) {
            seenHeader_ = header;
            seenHeaderValid_ = true;
        }
    } catch (const StoreError& e) {
        Report(std::string("cannot read the store: ") + e.what());
        return nullptr;
    } catch (const std::bad_alloc&) {
        Report("out of memory reading the store");
        return nullptr;
    }
    return &model_;
}

DWORD Store::Write(const Change& change)
{
    if (!EnsureOpen()) {
        return ERROR_CANTOPEN;
    }
    if (inWrite_) {
        return change(db_, model_); // part of the write transaction already running
    }
    try {
        Exec(db_, "BEGIN IMMEDIATE");
    } catch (const StoreError& e) {
        Report(std::string("cannot write the store: ") + e.what());
        return ERROR_CANTWRITE;
    }
    inWrite_ = true;
    DWORD rc;
    try {
        if (stale_ || DataVersion() != version_) {
            Load(true);
        }
        sqlite3_int64 before = sqlite3_total_changes64(db_);
        rc = change(db_, model_);
        if (rc != ERROR_SUCCESS && sqlite3_total_changes64(db_) != before) {
            stale_ = true; // rows written before the failure are rolled back; so goes the copy
        }
        Exec(db_, rc == ERROR_SUCCESS ? "COMMIT" : "ROLLBACK");
    } catch (const std::exception& e) {
        sqlite3_exec(db_, "ROLLBACK", nullptr, nullptr, nullptr);
        // The copy may hold part of the change: read it again from the file.
        stale_ = true;
        bool memory = dynamic_cast<const std::bad_alloc*>(&e) != nullptr;
        Report(std::string("cannot write the store: ") + e.what());
        rc = memory ? ERROR_NOT_ENOUGH_MEMORY : ERROR_CANTWRITE;
    }
    inWrite_ = false;
    return rc;
}

} // namespace host::detail
