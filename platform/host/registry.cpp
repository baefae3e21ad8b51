// advapi32's registry over the store. Like the system's, these functions return their code and
// leave the thread's last error alone.
#include "handles.h"
#include "store.h"

#include <sqlite3.h>

namespace host::detail {

namespace {

struct KeyObject : HandleObject
{
    static constexpr HandleKind kKind = HandleKind::RegistryKey;
    KeyObject(int64_t k, uint64_t g) : HandleObject(kKind), key(k), generation(g) {}
    const int64_t key;
    const uint64_t generation;
};

// What an HKEY stands for: the root of a hive (a predefined key, whose root row may not
// exist yet) or a key opened earlier.
struct KeyRef
{
    std::u16string hive;
    int64_t key = 0;
};

// The hive of a predefined key. Only the low 32 bits of a predefined key count on x64.
const char16_t* PredefinedHive(HKEY hKey, std::u16string* hive)
{
    auto value = static_cast<uint32_t>(reinterpret_cast<uintptr_t>(hKey));
    switch (value) {
    case 0x80000000u:
        *hive = u"HKCR";
        break;
    case 0x80000001u:
        *hive = CurrentUserHive(); // so a change of user changes the hive, as a new logon
        break;
    case 0x80000002u:
        *hive = MachineHive();
        break;
    case 0x80000003u:
        *hive = u"HKU";
        break;
    default:
        return nullptr;
    }
    return hive->c_str();
}

bool IsPredefined(HKEY hKey)
{
    auto value = static_cast<uint32_t>(reinterpret_cast<uintptr_t>(hKey));
    return value >= 0x80000000u && value <= 0x80000006u;
}

LSTATUS Resolve(HKEY hKey, KeyRef* ref)
{
    if (!hKey) {
        return ERROR_INVALID_HANDLE;
    }
    if (PredefinedHive(hKey, &ref->hive)) {
        return ERROR_SUCCESS;
    }
    const auto* key = Peek<KeyObject>(hKey); // every caller holds the state lock
    if (!key || key->generation != Store::Instance().Generation()) {
        return ERROR_INVALID_HANDLE;
    }
    ref->key = key->key;
    return ERROR_SUCCESS;
}

// The key's id in the copy; 0 when it is a hive without a root row yet.
LSTATUS Locate(const Model& model, const KeyRef& ref, int64_t* id)
{
    if (!ref.hive.empty()) {
        *id = FindHive(model, ref.hive);
        return ERROR_SUCCESS;
    }
    if (!model.Key(ref.key)) {
        return ERROR_KEY_DELETED;
    }
    *id = ref.key;
    return ERROR_SUCCESS;
}

LSTATUS LocateForWrite(sqlite3* db, Model& model, const KeyRef& ref, int64_t* id)
{
    if (!ref.hive.empty()) {
        *id = CreateHive(db, model, ref.hive);
        return ERROR_SUCCESS;
    }
    return Locate(model, ref, id);
}

// A subkey may not start with a backslash; NULL is the empty path.
LSTATUS ParseSubKey(LPCWSTR subKey, std::vector<std::u16string>* parts)
{
    if (subKey && subKey[0] == u'\\') {
        return ERROR_BAD_PATHNAME;
    }
    *parts = SplitKeyPath(FromW(subKey));
    return ERROR_SUCCESS;
}

// The key that hKey names and the components of lpSubKey below it.
LSTATUS ResolvePath(HKEY hKey, LPCWSTR lpSubKey, KeyRef* ref, std::vector<std::u16string>* parts)
{
    if (LSTATUS rc = Resolve(hKey, ref)) {
        return rc;
    }
    return ParseSubKey(lpSubKey, parts);
}

HKEY NewKeyHandle(int64_t key)
{
    return static_cast<HKEY>(
        AddHandle(std::make_shared<KeyObject>(key, Store::Instance().Generation())));
}

const RegValueRow* FindValue(const RegKeyRow& key, const std::u16string& name)
{
    for (const auto& v : key.values) {
        if (EqualNoCase(v.name, name)) {
            return &v;
        }
    }
    return nullptr;
}

bool IsStringType(DWORD type)
{
    return type == REG_SZ || type == REG_EXPAND_SZ || type == REG_MULTI_SZ;
}

// Copies a value's data. Like the system, a string that lacks its NUL gets one behind the
// data when the buffer has room for it; the size reported stays that of the data.
void CopyData(const Bytes& data, DWORD type, LPBYTE out, DWORD room)
{
    if (!data.empty()) {
        std::memcpy(out, data.data(), data.size());
    }
    size_t n = data.size();
    if (IsStringType(type) && n >= sizeof(WCHAR) && n + sizeof(WCHAR) <= room &&
        (data[n - 2] || data[n - 1])) {
        out[n] = 0;
        out[n + 1] = 0;
    }
}

} // namespace

} // namespace host::detail

using namespace host::detail;

extern "C" {

// ERROR_SUCCESS with a new handle in *phkResult and *lpdwDisposition telling whether the last
// key was made. Missing keys on the way are made too, in one transaction. A subkey starting
// with a backslash is ERROR_BAD_PATHNAME; a null phkResult ERROR_BADKEY, as on Windows.
// Volatile keys are kept like any other (the host has no reboot to forget them at).
LSTATUS WINAPI RegCreateKeyExW(HKEY hKey, LPCWSTR lpSubKey, DWORD Reserved, LPWSTR lpClass,
                               DWORD dwOptions, REGSAM samDesired,
                               const SECURITY_ATTRIBUTES* lpSecurityAttributes, PHKEY phkResult,
                               LPDWORD lpdwDisposition)
{
    QLM_HOST_COUNTED_CALL();
    if (Reserved) {
        return ERROR_INVALID_PARAMETER;
    }
    if (!phkResult) {
        return ERROR_BADKEY;
    }
    *phkResult = nullptr;
    Lock lock(StateMutex());
    KeyRef ref;
    std::vector<std::u16string> parts;
    if (LSTATUS rc = ResolvePath(hKey, lpSubKey, &ref, &parts)) {
        return rc;
    }
    int64_t id = 0;
    bool created = false;
    // Most calls open what exists: try that without a write transaction.
    if (const Model* model = Store::Instance().Read()) {
        int64_t from = 0;
        if (LSTATUS rc = Locate(*model, ref, &from)) {
            return rc;
        }
        id = WalkKeyPath(*model, from, parts);
    }
    if (!id) {
        LSTATUS rc = Store::Instance().Write([&](sqlite3* db, Model& model) -> DWORD {
            int64_t at = 0;
            if (LSTATUS rc = LocateForWrite(db, model, ref, &at)) {
                return rc;
            }
            for (const auto& part : parts) {
                int64_t child = model.Child(at, part);
                if (!child) {
                    child = CreateKey(db, model, at, part);
                    created = true;
                }
                at = child;
            }
            id = at;
            return ERROR_SUCCESS;
        });
        if (rc) {
            return rc;
        }
    }
    *phkResult = NewKeyHandle(id);
    if (lpdwDisposition) {
        *lpdwDisposition = created ? REG_CREATED_NEW_KEY : REG_OPENED_EXISTING_KEY;
    }
    return ERROR_SUCCESS;
}

// ERROR_SUCCESS with a handle in *phkResult, else the code with *phkResult NULL. A NULL or
// empty subkey opens the key itself again: a predefined key comes back as itself, any other
// as a new handle. An absent key is ERROR_FILE_NOT_FOUND.
LSTATUS WINAPI RegOpenKeyExW(HKEY hKey, LPCWSTR lpSubKey, DWORD ulOptions, REGSAM samDesired,
                             PHKEY phkResult)
{
    QLM_HOST_COUNTED_CALL();
    if (!phkResult) {
        return ERROR_INVALID_PARAMETER;
    }
    *phkResult = nullptr;
    Lock lock(StateMutex());
    KeyRef ref;
    std::vector<std::u16string> parts;
    if (LSTATUS rc = ResolvePath(hKey, lpSubKey, &ref, &parts)) {
        return rc;
    }
    if (parts.empty() && !ref.hive.empty()) {
        *phkResult = hKey;
        return ERROR_SUCCESS;
    }
    const Model* model = Store::Instance().Read();
    if (!model) {
        return ERROR_CANTREAD;
    }
    int64_t from = 0;
    if (LSTATUS rc = Locate(*model, ref, &from)) {
        return rc;
    }
    int64_t id = WalkKeyPath(*model, from, parts);
    if (!id) {
        return ERROR_FILE_NOT_FOUND;
    }
    *phkResult = NewKeyHandle(id);
    return ERROR_SUCCESS;
}

// ERROR_SUCCESS with type, size and data. Without lpData only the type and size are given
// (and *lpcbData is 0 when the value is absent). A buffer too small: ERROR_MORE_DATA with
// *lpcbData the size needed and the buffer untouched. NULL or "" names the default value.
LSTATUS WINAPI RegQueryValueExW(HKEY hKey, LPCWSTR lpValueName, LPDWORD lpReserved, LPDWORD lpType,
                                LPBYTE lpData, LPDWORD lpcbData)
{
    QLM_HOST_COUNTED_CALL();
    if (lpReserved || (lpData && !lpcbData)) {
        return ERROR_INVALID_PARAMETER;
    }
    Lock lock(StateMutex());
    KeyRef ref;
    if (LSTATUS rc = Resolve(hKey, &ref)) {
        return rc;
    }
    if (!lpData && lpcbData) {
        *lpcbData = 0;
    }
    const Model* model = Store::Instance().Read();
    if (!model) {
        return ERROR_CANTREAD;
    }
    int64_t id = 0;
    if (LSTATUS rc = Locate(*model, ref, &id)) {
        return rc;
    }
    const RegKeyRow* key = model->Key(id);
    const RegValueRow* value = key ? FindValue(*key, FromW(lpValueName)) : nullptr;
    if (!value) {
        return ERROR_FILE_NOT_FOUND;
    }
    DWORD size = DWORD(value->data.size());
    if (lpType) {
        *lpType = value->type;
    }
    if (lpData) {
        if (size > *lpcbData) {
            *lpcbData = size;
            return ERROR_MORE_DATA;
        }
        CopyData(value->data, value->type, lpData, *lpcbData);
    }
    if (lpcbData) {
        *lpcbData = size;
    }
    return ERROR_SUCCESS;
}

// ERROR_SUCCESS. The data is kept exactly as given, whatever the type says; a new value goes
// behind the others in RegEnumValueW, an overwritten one keeps its place. NULL data with
// cbData 0 stores an empty value; NULL data with a size is ERROR_NOACCESS.
LSTATUS WINAPI RegSetValueExW(HKEY hKey, LPCWSTR lpValueName, DWORD Reserved, DWORD dwType,
                              const BYTE* lpData, DWORD cbData)
{
    QLM_HOST_COUNTED_CALL();
    if (Reserved) {
        return ERROR_INVALID_PARAMETER;
    }
    if (!lpData && cbData) {
        return ERROR_NOACCESS;
    }
    Lock lock(StateMutex());
    KeyRef ref;
    if (LSTATUS rc = Resolve(hKey, &ref)) {
        return rc;
    }
    std::u16string name = FromW(lpValueName);
    Bytes data(lpData, lpData + cbData);
    return Store::Instance().Write([&](sqlite3* db, Model& model) -> DWORD {
        int64_t id = 0;
        if (LSTATUS rc = LocateForWrite(db, model, ref, &id)) {
            return rc;
        }
        Sql upsert(db, "INSERT INTO reg_values(key, name, type, data) VALUES(?1, ?2, ?3, ?4) "
                       "ON CONFLICT(key, name) DO UPDATE SET type = excluded.type, "
                       "data = excluded.data");
        upsert.Bind(1, id).Bind(2, name).Bind(3, int64_t(dwType)).Bind(4, data).Run();
        RegKeyRow& key = model.keys[id];
        if (auto* existing = const_cast<RegValueRow*>(FindValue(key, name))) {
            existing->type = dwType;
            existing->data = std::move(data);
        } else {
            key.values.push_back({sqlite3_last_insert_rowid(db), name, dwType, std::move(data)});
        }
        return ERROR_SUCCESS;
    });
}

// ERROR_SUCCESS with the dwIndex-th value in the order the values were made;
// ERROR_NO_MORE_ITEMS past the end. *lpcchValueName counts characters without the NUL on
// success and must leave room for it. A name that does not fit: ERROR_MORE_DATA, name and
// data untouched. Data that does not fit: ERROR_MORE_DATA with the name written and
// *lpcbData the size needed. Type and size are reported in both cases.
LSTATUS WINAPI RegEnumValueW(HKEY hKey, DWORD dwIndex, LPWSTR lpValueName, LPDWORD lpcchValueName,
                             LPDWORD lpReserved, LPDWORD lpType, LPBYTE lpData, LPDWORD lpcbData)
{
    QLM_HOST_COUNTED_CALL();
    if (lpReserved || !lpValueName || !lpcchValueName || (lpData && !lpcbData)) {
        return ERROR_INVALID_PARAMETER;
    }
    Lock lock(StateMutex());
    KeyRef ref;
    if (LSTATUS rc = Resolve(hKey, &ref)) {
        return rc;
    }
    const Model* model = Store::Instance().Read();
    if (!model) {
        return ERROR_CANTREAD;
    }
    int64_t id = 0;
    if (LSTATUS rc = Locate(*model, ref, &id)) {
        return rc;
    }
    const RegKeyRow* key = model->Key(id);
    if (!key || dwIndex >= key->values.size()) {
        return ERROR_NO_MORE_ITEMS;
    }
    const RegValueRow& value = key->values[dwIndex];
    DWORD size = DWORD(value.data.size());
    if (lpType) {
        *lpType = value.type;
    }
    if (value.name.size() >= *lpcchValueName) {
        if (lpcbData) {
            *lpcbData = size;
        }
        return ERROR_MORE_DATA;
    }
    PutW(lpValueName, value.name);
    *lpcchValueName = DWORD(value.name.size());
    if (lpData) {
        if (size > *lpcbData) {
            *lpcbData = size;
            return ERROR_MORE_DATA;
        }
        CopyData(value.data, value.type, lpData, *lpcbData);
    }
    if (lpcbData) {
        *lpcbData = size;
    }
    return ERROR_SUCCESS;
}

// ERROR_SUCCESS when the key and its values are gone. A key with subkeys, or a hive's root,
// is ERROR_ACCESS_DENIED; an absent one ERROR_FILE_NOT_FOUND. "" deletes hKey's own key:
// handles still open on a deleted key then get ERROR_KEY_DELETED.
LSTATUS WINAPI RegDeleteKeyW(HKEY hKey, LPCWSTR lpSubKey)
{
    QLM_HOST_COUNTED_CALL();
    if (!lpSubKey) {
        return ERROR_INVALID_PARAMETER;
    }
    Lock lock(StateMutex());
    KeyRef ref;
    std::vector<std::u16string> parts;
    if (LSTATUS rc = ResolvePath(hKey, lpSubKey, &ref, &parts)) {
        return rc;
    }
    if (parts.empty() && !ref.hive.empty()) {
        return ERROR_ACCESS_DENIED;
    }
    return Store::Instance().Write([&](sqlite3* db, Model& model) -> DWORD {
        int64_t from = 0;
        if (LSTATUS rc = Locate(model, ref, &from)) {
            return rc;
        }
        int64_t id = WalkKeyPath(model, from, parts);
        const RegKeyRow* key = model.Key(id);
        if (!key) {
            return ERROR_FILE_NOT_FOUND;
        }
        if (key->parent == 0 || !key->children.empty()) {
            return ERROR_ACCESS_DENIED;
        }
        Sql(db, "DELETE FROM reg_values WHERE key = ?1").Bind(1, id).Run();
        Sql(db, "DELETE FROM reg_keys WHERE id = ?1").Bind(1, id).Run();
        auto parent = model.keys.find(key->parent);
        if (parent != model.keys.end()) {
            parent->second.children.erase(Fold(key->name));
        }
        model.keys.erase(id);
        return ERROR_SUCCESS;
    });
}

// ERROR_SUCCESS when the value is gone; ERROR_FILE_NOT_FOUND when there was none.
LSTATUS WINAPI RegDeleteValueW(HKEY hKey, LPCWSTR lpValueName)
{
    QLM_HOST_COUNTED_CALL();
    Lock lock(StateMutex());
    KeyRef ref;
    if (LSTATUS rc = Resolve(hKey, &ref)) {
        return rc;
    }
    std::u16string name = FromW(lpValueName);
    return Store::Instance().Write([&](sqlite3* db, Model& model) -> DWORD {
        int64_t id = 0;
        if (LSTATUS rc = Locate(model, ref, &id)) {
            return rc;
        }
        auto key = model.keys.find(id);
        if (key == model.keys.end()) {
            return ERROR_FILE_NOT_FOUND;
        }
        auto& values = key->second.values;
        for (auto it = values.begin(); it != values.end(); ++it) {
            if (EqualNoCase(it->name, name)) {
                Sql(db, "DELETE FROM reg_values WHERE id = ?1").Bind(1, it->id).Run();
                values.erase(it);
                return ERROR_SUCCESS;
            }
        }
        return ERROR_FILE_NOT_FOUND;
    });
}

// ERROR_SUCCESS; closing a predefined key is a successful no-op. Anything else that is not
// an open key (a file or printer handle, a closed key) is ERROR_INVALID_HANDLE.
LSTATUS WINAPI RegCloseKey(HKEY hKey)
{
    QLM_HOST_COUNTED_CALL();
    if (hKey && IsPredefined(hKey)) {
        return ERROR_SUCCESS;
    }
    return RemoveHandle(hKey, HandleKind::RegistryKey) ? ERROR_SUCCESS : ERROR_INVALID_HANDLE;
}

} // extern "C"
