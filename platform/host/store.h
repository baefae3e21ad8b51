// The store: one SQLite database with what Windows keeps in the spooler and the registry, and
// an in-memory copy of it from which every read is served.
//
// Callers hold StateMutex() around every use. Read() gives the current copy, reloaded first
// when another connection (another process) has committed since it was loaded; how it tells
// cheaply is described at the top of store.cpp. Write() runs a change as one BEGIN IMMEDIATE
// transaction against a current copy; the change issues its SQL and then applies itself to the
// copy, so the copy never needs a reload for our own writes.
#pragma once

#include "hostinternal.h"

#include <array>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;

namespace host::detail {

using Bytes = std::vector<uint8_t>;

struct PrinterRow
{
    int64_t id = 0;
    std::u16string name, driver, port, comment, location;
    DWORD attributes = 0;
    Bytes devMode; // empty: none stored
};

struct PrinterDataRow
{
    int64_t id = 0;
    int64_t printer = 0;
    std::u16string key, name; // as first written
    DWORD type = REG_NONE;
    Bytes data;
};

struct PortRow
{
    std::u16string name, monitor, description;
};

struct RegValueRow
{
    int64_t id = 0; // ascending in insertion order
    std::u16string name;
    DWORD type = REG_NONE;
    Bytes data;
};

struct RegKeyRow
{
    int64_t id = 0;
    int64_t parent = 0; // 0 for the root of a hive
    std::u16string name;
    std::map<std::u16string, int64_t> children; // folded name -> id
    std::vector<RegValueRow> values;            // insertion order
};

// Where a printer data value sits: its printer, folded key and folded name. Hashed rather
// than ordered: a look-up then compares whole names once instead of character by character
// down a tree, and the driver makes a hundred of them per call.
struct PrinterDataKey
{
    int64_t printer = 0;
    std::u16string key, name; // folded
};
// A look-up's key, folded and hashed already (FoldedText), so that it allocates nothing.
struct PrinterDataRef
{
    int64_t printer = 0;
    std::u16string_view key, name;
    uint64_t hash = 0; // of the name, seeded with that of the key, seeded with the printer
};
struct PrinterDataHash
{
    using is_transparent = void;
    size_t operator()(const PrinterDataRef& ref) const { return ref.hash; }
    size_t operator()(const PrinterDataKey& key) const
    {
        uint64_t seed = FoldAndHash(key.key, nullptr, static_cast<uint64_t>(key.printer));
        return FoldAndHash(key.name, nullptr, seed);
    }
};
struct PrinterDataEqual
{
    using is_transparent = void;
    template <typename A, typename B> bool operator()(const A& a, const B& b) const
    {
        return a.printer == b.printer && Same(a.key, b.key) && Same(a.name, b.name);
    }
    static bool Same(std::u16string_view a, std::u16string_view b)
    {
        return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * 2) == 0;
    }
};

// The whole store in memory. Maps keyed by folded names give the case-insensitive look-ups.
struct Model
{
    std::map<int64_t, PrinterRow> printers;
    std::map<std::u16string, int64_t> printerIds; // folded name -> id
    std::unordered_map<PrinterDataKey, PrinterDataRow, PrinterDataHash, PrinterDataEqual>
        printerData;
    std::map<std::u16string, PortRow> ports; // folded name -> port; iteration is name order
    std::map<int64_t, RegKeyRow> keys;
    std::map<std::u16string, int64_t> hives; // folded hive name -> root key id
    std::map<std::string, std::string> settings;

    const PrinterRow* FindPrinter(const std::u16string& name) const;
    const PrinterRow* PrinterById(int64_t id) const;
    const RegKeyRow* Key(int64_t id) const;
    // The child of parent named name (any case), or 0.
    int64_t Child(int64_t parent, const std::u16string& name) const;
};

// A prepared statement of the store, reset when it goes out of scope. Errors throw StoreError.
class Sql
{
public:
    Sql(sqlite3* db, const char* text);
    ~Sql();
    Sql(const Sql&) = delete;
    Sql& operator=(const Sql&) = delete;

    Sql& Bind(int index, int64_t value);
    Sql& Bind(int index, const std::u16string& text);
    Sql& Bind(int index, const std::string& text);
    Sql& Bind(int index, const Bytes& blob);
    Sql& BindNull(int index);
    bool Step(); // true while there is a row
    void Run();  // steps to the end
    int64_t Int(int column);
    std::u16string Text(int column);
    std::string Utf8(int column);
    Bytes Blob(int column);
    bool IsNull(int column);

private:
    sqlite3* db_;
    sqlite3_stmt* stmt_ = nullptr;
};

class StoreError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

class Store
{
public:
    static Store& Instance();

    bool Open(const std::string& path, std::string* error);
    void Close();

    // The current copy, opening the home store first if none is open. Null when no store
    // can be had; the reason has been reported on standard error. Inline, as nearly every
    // read finds the copy current.
    const Model* Read()
    {
        if (db_ && (inWrite_ || (!stale_ && UnchangedSinceCheck()))) {
            return &model_;
        }
        return Refresh();
    }

    // Runs change in one write transaction. change returns ERROR_SUCCESS to commit, any other
    // code to roll back; it must leave the copy untouched when it does not succeed. Returns
    // change's code, or ERROR_CANTOPEN / ERROR_CANTWRITE when the store fails.
    using Change = std::function<DWORD(sqlite3* db, Model& model)>;
    DWORD Write(const Change& change);

    // Changes whenever a store is opened or closed, so that handles into an earlier store die.
    uint64_t Generation() const { return generation_; }

private:
    // The two copies of the WAL-index header that SQLite keeps at the start of the shared
    // memory of a WAL database; every commit rewrites them.
    static constexpr size_t kWalHeaderWords = 12;
    using WalHeader = std::array<uint64_t, kWalHeaderWords>;

    Store();
    static void AfterForkInChild();
    bool EnsureOpen();
    void Load(bool inTransaction);
    int64_t DataVersion();
    void Report(const std::string& message);
    void FindWalHeader(bool walMode);
    const Model* Refresh();
    // True when no other connection can have committed since the last check: the store is
    // private, or the WAL-index header is still the one seen then.
    bool UnchangedSinceCheck() const
    {
        if (private_) {
            return true;
        }
        if (!walHeader_ || !seenHeaderValid_) {
            return false;
        }
        uint64_t difference = 0;
        for (size_t i = 0; i < kWalHeaderWords; ++i) {
            difference |= walHeader_[i] ^ seenHeader_[i];
        }
        return difference == 0;
    }
    // Reads the WAL-index header; false when it cannot vouch for the copy (no header, a
    // format not known, or a commit under way).
    bool SnapshotWalHeader(WalHeader* header) const;

    sqlite3* db_ = nullptr;
    sqlite3_stmt* dataVersion_ = nullptr;
    Model model_;
    int64_t version_ = -1;
    bool stale_ = true;
    bool inWrite_ = false;
    bool private_ = false;                         // in memory: no other connection exists
    const volatile uint64_t* walHeader_ = nullptr; // SQLite's own mapping; null: always check
    WalHeader seenHeader_{};
    bool seenHeaderValid_ = false;
    uint64_t generation_ = 1;
    std::string lastReport_;
};

// Executes SQL without results (several statements allowed).
void Exec(sqlite3* db, const char* text);

// The root key of a hive, or 0 when the hive has no key yet.
int64_t FindHive(const Model& model, const std::u16string& hive);
// The root key of a hive, created in the store and the copy when it is missing.
int64_t CreateHive(sqlite3* db, Model& model, const std::u16string& hive);
// Inserts a key below parent (which must not have a child of that name) into store and copy.
int64_t CreateKey(sqlite3* db, Model& model, int64_t parent, const std::u16string& name);

// A DEVMODE is usable when dmSize covers at least the header up to its own size fields and
// dmSize + dmDriverExtra bytes lie within size; then *total is that sum. A stored record that
// fails this is damage and counts as no record.
constexpr size_t kMinDevModeSize = offsetof(DEVMODEW, dmFields);
bool DevModeSizes(const uint8_t* bytes, size_t size, size_t* total);
// The stored DEVMODE as reads see it: cut to dmSize + dmDriverExtra, or empty when damaged.
Bytes CheckedDevMode(Bytes stored);
// Sets a printer data value in store and copy (an overwrite keeps the value's row).
void PutPrinterData(sqlite3* db, Model& model, int64_t printer, const std::u16string& key,
                    const std::u16string& name, DWORD type, Bytes data);

// The components of a key path, split at backslashes; empty components (a trailing
// backslash) are dropped.
std::vector<std::u16string> SplitKeyPath(const std::u16string& path);
// The key reached from the key from by the components, or 0 when one is missing.
int64_t WalkKeyPath(const Model& model, int64_t from, const std::vector<std::u16string>& parts);

// The hive name of HKEY_CURRENT_USER for the current user, and of HKEY_LOCAL_MACHINE.
std::u16string CurrentUserHive();
inline const char16_t* MachineHive()
{
    return u"HKLM";
}

} // namespace host::detail
