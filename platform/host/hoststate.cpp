// The host's own C++ interface (host.h): the store, printers, ports, printer data, registry
// inspection and settings, for tests and tools.
#include "store.h"

#include <sqlite3.h>

#include <algorithm>
#include <cstdio>
#include <tuple>

namespace host {

using detail::Bytes;
using detail::Fold;
using detail::Lock;
using detail::Model;
using detail::Sql;
using detail::StateMutex;
using detail::Store;

namespace {

constexpr char kUserSetting[] = "user";
constexpr char kMetricSetting[] = "metric";
constexpr char kVersionSetting[] = "version";

std::string Setting(const char* name)
{
    Lock lock(StateMutex());
    const Model* model = Store::Instance().Read();
    if (!model) {
        return {};
    }
    auto it = model->settings.find(name);
    return it == model->settings.end() ? std::string() : it->second;
}

// An empty value removes the setting, so that its default applies again.
void PutSetting(const char* name, const std::string& value)
{
    Lock lock(StateMutex());
    Store::Instance().Write([&](sqlite3* db, Model& model) -> DWORD {
        if (value.empty()) {
            Sql(db, "DELETE FROM settings WHERE name = ?1").Bind(1, std::string(name)).Run();
            model.settings.erase(name);
        } else {
            Sql(db, "INSERT INTO settings(name, value) VALUES(?1, ?2) "
                    "ON CONFLICT(name) DO UPDATE SET value = excluded.value")
                .Bind(1, std::string(name))
                .Bind(2, value)
                .Run();
            model.settings[name] = value;
        }
        return ERROR_SUCCESS;
    });
}

PrinterRecord ToRecord(const detail::PrinterRow& row)
{
    return {row.name, row.driver, row.port, row.comment, row.location, row.attributes, row.devMode};
}

// "HKCU\a\b" and its long form name a hive and a path below it; false for any other root.
bool ParseRegistryPath(const std::string& path, std::u16string* hive,
                       std::vector<std::u16string>* parts)
{
    std::u16string text = Utf8ToUtf16(path);
    size_t slash = text.find(u'\\');
    std::u16string root = Fold(text.substr(0, slash));
    if (root == u"hkcu" || root == u"hkey_current_user") {
        *hive = detail::CurrentUserHive();
    } else if (root == u"hklm" || root == u"hkey_local_machine") {
        *hive = detail::MachineHive();
    } else {
        return false;
    }
    *parts = detail::SplitKeyPath(slash == std::u16string::npos ? u"" : text.substr(slash + 1));
    return true;
}

// The key a registry path names, or 0.
int64_t FindKey(const Model& model, const std::string& path)
{
    std::u16string hive;
    std::vector<std::u16string> parts;
    if (!ParseRegistryPath(path, &hive, &parts)) {
        return 0;
    }
    return detail::WalkKeyPath(model, detail::FindHive(model, hive), parts);
}

} // namespace

// ---- The store ----------------------------------------------------------------------------

bool OpenStore(const std::string& path, std::string* error)
{
    Lock lock(StateMutex());
    return Store::Instance().Open(path, error);
}

void CloseStore()
{
    Lock lock(StateMutex());
    Store::Instance().Close();
}

// ---- Printers and ports -------------------------------------------------------------------

bool AddPrinter(const PrinterRecord& printer)
{
    if (printer.name.empty()) {
        return false;
    }
    Lock lock(StateMutex());
    DWORD rc = Store::Instance().Write([&](sqlite3* db, Model& model) -> DWORD {
        if (model.FindPrinter(printer.name)) {
            return ERROR_PRINTER_ALREADY_EXISTS;
        }
        Sql insert(db, "INSERT INTO printers(name, driver, port, comment, location, attributes, "
                       "devmode) VALUES(?1, ?2, ?3, ?4, ?5, ?6, ?7)");
        insert.Bind(1, printer.name).Bind(2, printer.driverName).Bind(3, printer.portName);
        insert.Bind(4, printer.comment).Bind(5, printer.location);
        insert.Bind(6, int64_t(printer.attributes));
        if (printer.devMode.empty()) {
            insert.BindNull(7);
        } else {
            insert.Bind(7, printer.devMode); // kept as given, so tests can store damage
        }
        insert.Run();
        detail::PrinterRow row;
        row.id = sqlite3_last_insert_rowid(db);
        row.name = printer.name;
        row.driver = printer.driverName;
        row.port = printer.portName;
        row.comment = printer.comment;
        row.location = printer.location;
        row.attributes = printer.attributes;
        row.devMode = detail::CheckedDevMode(printer.devMode);
        model.printerIds[Fold(row.name)] = row.id;
        model.printers[row.id] = std::move(row);
        return ERROR_SUCCESS;
    });
    return rc == ERROR_SUCCESS;
}

bool RemovePrinter(const std::u16string& name)
{
    Lock lock(StateMutex());
    DWORD rc = Store::Instance().Write([&](sqlite3* db, Model& model) -> DWORD {
        const detail::PrinterRow* row = model.FindPrinter(name);
        if (!row) {
            return ERROR_INVALID_PRINTER_NAME;
        }
        int64_t id = row->id;
        Sql(db, "DELETE FROM printer_data WHERE printer = ?1").Bind(1, id).Run();
        Sql(db, "DELETE FROM printers WHERE id = ?1").Bind(1, id).Run();
        std::erase_if(model.printerData,
                      [id](const auto& entry) { return entry.second.printer == id; });
        model.printerIds.erase(Fold(row->name));
        model.printers.erase(id);
        return ERROR_SUCCESS;
    });
    return rc == ERROR_SUCCESS;
}

bool GetPrinterRecord(const std::u16string& name, PrinterRecord* printer)
{
    Lock lock(StateMutex());
    const Model* model = Store::Instance().Read();
    const detail::PrinterRow* row = model ? model->FindPrinter(name) : nullptr;
    if (!row) {
        return false;
    }
    if (printer) {
        *printer = ToRecord(*row);
    }
    return true;
}

std::vector<PrinterRecord> ListPrinters()
{
    Lock lock(StateMutex());
    std::vector<PrinterRecord> list;
    if (const Model* model = Store::Instance().Read()) {
        for (const auto& [folded, id] : model->printerIds) {
            list.push_back(ToRecord(model->printers.at(id)));
        }
    }
    return list;
}

bool AddPort(const PortRecord& port)
{
    if (port.name.empty()) {
        return false;
    }
    Lock lock(StateMutex());
    DWORD rc = Store::Instance().Write([&](sqlite3* db, Model& model) -> DWORD {
        Sql(db, "INSERT OR REPLACE INTO ports(name, monitor, description) VALUES(?1, ?2, ?3)")
            .Bind(1, port.name)
            .Bind(2, port.monitorName)
            .Bind(3, port.description)
            .Run();
        model.ports[Fold(port.name)] = {port.name, port.monitorName, port.description};
        return ERROR_SUCCESS;
    });
    return rc == ERROR_SUCCESS;
}

bool RemovePort(const std::u16string& name)
{
    Lock lock(StateMutex());
    DWORD rc = Store::Instance().Write([&](sqlite3* db, Model& model) -> DWORD {
        if (!model.ports.count(Fold(name))) {
            return ERROR_UNKNOWN_PORT;
        }
        Sql(db, "DELETE FROM ports WHERE name = ?1").Bind(1, name).Run();
        model.ports.erase(Fold(name));
        return ERROR_SUCCESS;
    });
    return rc == ERROR_SUCCESS;
}

std::vector<PortRecord> ListPorts()
{
    Lock lock(StateMutex());
    std::vector<PortRecord> list;
    if (const Model* model = Store::Instance().Read()) {
        for (const auto& [folded, port] : model->ports) {
            list.push_back({port.name, port.monitor, port.description});
        }
    }
    return list;
}

// ---- Printer data -------------------------------------------------------------------------

bool SetPrinterData(const std::u16string& printer, const DataValue& value)
{
    if (value.key.empty()) {
        return false;
    }
    Lock lock(StateMutex());
    DWORD rc = Store::Instance().Write([&](sqlite3* db, Model& model) -> DWORD {
        const detail::PrinterRow* row = model.FindPrinter(printer);
        if (!row) {
            return ERROR_INVALID_PRINTER_NAME;
        }
        detail::PutPrinterData(db, model, row->id, value.key, value.name, value.type, value.data);
        return ERROR_SUCCESS;
    });
    return rc == ERROR_SUCCESS;
}

bool GetPrinterData(const std::u16string& printer, const std::u16string& key,
                    const std::u16string& name, DataValue* value)
{
    Lock lock(StateMutex());
    const Model* model = Store::Instance().Read();
    const detail::PrinterRow* row = model ? model->FindPrinter(printer) : nullptr;
    if (!row) {
        return false;
    }
    auto it = model->printerData.find(detail::PrinterDataKey{row->id, Fold(key), Fold(name)});
    if (it == model->printerData.end()) {
        return false;
    }
    if (value) {
        *value = {it->second.key, it->second.name, it->second.type, it->second.data};
    }
    return true;
}

std::vector<DataValue> ListPrinterData(const std::u16string& printer)
{
    Lock lock(StateMutex());
    std::vector<DataValue> list;
    const Model* model = Store::Instance().Read();
    const detail::PrinterRow* row = model ? model->FindPrinter(printer) : nullptr;
    if (!row) {
        return list;
    }
    // Sorted by folded key and name, so that a listing does not depend on the hashing.
    std::vector<const std::pair<const detail::PrinterDataKey, detail::PrinterDataRow>*> rows;
    for (const auto& entry : model->printerData) {
        if (entry.first.printer == row->id) {
            rows.push_back(&entry);
        }
    }
    std::sort(rows.begin(), rows.end(), [](const auto* a, const auto* b) {
        return std::tie(a->first.key, a->first.name) < std::tie(b->first.key, b->first.name);
    });
    for (const auto* entry : rows) {
        const detail::PrinterDataRow& v = entry->second;
        list.push_back({v.key, v.name, v.type, v.data});
    }
    return list;
}

// ---- Registry -----------------------------------------------------------------------------

bool RegistryKeyExists(const std::string& path)
{
    Lock lock(StateMutex());
    const Model* model = Store::Instance().Read();
    return model && FindKey(*model, path) != 0;
}

std::vector<std::u16string> RegistrySubKeys(const std::string& path)
{
    Lock lock(StateMutex());
    std::vector<std::u16string> names;
    const Model* model = Store::Instance().Read();
    const detail::RegKeyRow* key = model ? model->Key(FindKey(*model, path)) : nullptr;
    if (key) {
        for (const auto& [folded, id] : key->children) {
            names.push_back(model->keys.at(id).name); // in folded order, as RegEnumKeyExW
        }
    }
    return names;
}

// ---- Settings -----------------------------------------------------------------------------

void SetUserName(const std::u16string& name)
{
    PutSetting(kUserSetting, Utf16ToUtf8(name));
}

std::u16string UserName()
{
    std::string name = Setting(kUserSetting);
    return name.empty() ? detail::LoginName() : Utf8ToUtf16(name);
}

void SetMetric(bool metric)
{
    PutSetting(kMetricSetting, metric ? "1" : "0");
}

bool IsMetric()
{
    // A US system unless told otherwise, as the demo and the tests expect of a fresh host.
    return Setting(kMetricSetting) == "1";
}

void SetSystemVersion(DWORD major, DWORD minor, DWORD build)
{
    PutSetting(kVersionSetting,
               std::to_string(major) + "." + std::to_string(minor) + "." + std::to_string(build));
}

void GetSystemVersion(DWORD* major, DWORD* minor, DWORD* build)
{
    unsigned long parts[3] = {10, 0, 19045};
    std::string text = Setting(kVersionSetting);
    unsigned long read[3];
    if (std::sscanf(text.c_str(), "%lu.%lu.%lu", &read[0], &read[1], &read[2]) == 3) {
        std::copy(read, read + 3, parts);
    }
    if (major) {
        *major = DWORD(parts[0]);
    }
    if (minor) {
        *minor = DWORD(parts[1]);
    }
    if (build) {
        *build = DWORD(parts[2]);
    }
}

} // namespace host

namespace host::detail {

std::recursive_mutex& StateMutex()
{
    static auto* mutex = new std::recursive_mutex; // lives through static destruction
    return *mutex;
}

} // namespace host::detail
