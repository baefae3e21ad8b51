// winspool over the store: printer handles, printer information, printer data, ports and the
// driver directory.
#include "handles.h"
#include "store.h"

#include <sqlite3.h>

#include <algorithm>
#include <vector>

namespace host::detail {

namespace {

constexpr char16_t kDriverDataKey[] = u"PrinterDriverData";
// The largest answer a DWORD size can describe.
constexpr size_t kMaxAnswer = 0xFFFFFFFFu;

// A printer handle names the queue by its id, so it follows a rename and notices a removal.
struct PrinterObject : HandleObject
{
    static constexpr HandleKind kKind = HandleKind::Printer;
    PrinterObject(int64_t p, std::u16string n, ACCESS_MASK a, uint64_t g)
        : HandleObject(kKind), printer(p), openedName(std::move(n)), access(a), generation(g)
    {
    }
    const int64_t printer;
    const std::u16string openedName;
    const ACCESS_MASK access;
    const uint64_t generation;
};

// The caller holds StateMutex() while it uses the object.
const PrinterObject* PrinterHandle(HANDLE hPrinter)
{
    const auto* printer = Peek<PrinterObject>(hPrinter);
    if (!printer || printer->generation != Store::Instance().Generation()) {
        return nullptr;
    }
    return printer;
}

// The queue of a printer handle in the current copy: ERROR_INVALID_HANDLE for a bad handle,
// ERROR_INVALID_PRINTER_NAME when the queue has been removed since it was opened.
// The row stays valid until the next Read or Write of the store.
DWORD QueueOf(const PrinterObject* handle, const Model** model, const PrinterRow** row)
{
    if (!handle) {
        return ERROR_INVALID_HANDLE;
    }
    *model = Store::Instance().Read();
    if (!*model) {
        return ERROR_CANTREAD;
    }
    *row = (*model)->PrinterById(handle->printer);
    return *row ? ERROR_SUCCESS : ERROR_INVALID_PRINTER_NAME;
}

size_t StringBytes(const std::u16string& s)
{
    return (s.size() + 1) * sizeof(WCHAR);
}

// Lays out an answer as the spooler does: fixed structures at the front of the caller's
// buffer, strings packed backwards from its end. Writes go through memcpy because the
// caller's buffer need not be aligned.
class Packer
{
public:
    Packer(LPBYTE buffer, DWORD size) : base_(buffer), end_(size & ~DWORD(1)) {}

    LPWSTR String(const std::u16string& text)
    {
        end_ -= DWORD(StringBytes(text));
        LPBYTE at = base_ + end_;
        if (!text.empty()) {
            std::memcpy(at, text.data(), text.size() * sizeof(WCHAR));
        }
        std::memset(at + text.size() * sizeof(WCHAR), 0, sizeof(WCHAR));
        return reinterpret_cast<LPWSTR>(at);
    }

private:
    LPBYTE base_;
    DWORD end_;
};

// Bytes from offset to the next pointer-aligned address of the buffer.
size_t AlignPad(const void* buffer, size_t offset)
{
    auto at = reinterpret_cast<uintptr_t>(buffer) + offset;
    return (alignof(void*) - at % alignof(void*)) % alignof(void*);
}

struct Level2Text
{
    std::u16string share, sepFile, printProcessor = u"winprint", datatype = u"RAW", parameters;
};

size_t Level1Size(const PrinterRow& p, std::u16string* description)
{
    *description = p.name + u"," + p.driver + u"," + p.location;
    return sizeof(PRINTER_INFO_1W) + StringBytes(*description) + StringBytes(p.name) +
           StringBytes(p.comment);
}

void FillLevel1(const PrinterRow& p, const std::u16string& description, LPBYTE out, DWORD cb)
{
    Packer pack(out, cb);
    PRINTER_INFO_1W info{};
    info.Flags = PRINTER_ENUM_ICON8;
    info.pDescription = pack.String(description);
    info.pName = pack.String(p.name);
    info.pComment = pack.String(p.comment);
    std::memcpy(out, &info, sizeof info);
}

// The DEVMODE sits right behind the structure, pointer-aligned; strings at the end.
size_t Level2Size(const PrinterRow& p, const void* buffer, size_t* devModeAt)
{
    static const Level2Text fixed;
    size_t size = sizeof(PRINTER_INFO_2W);
    *devModeAt = size;
    if (!p.devMode.empty()) {
        if (buffer) {
            *devModeAt += AlignPad(buffer, size);
        }
        size = (*devModeAt + p.devMode.size() + 1) & ~size_t(1); // strings stay WCHAR-aligned
    }
    for (const auto* s :
         {&p.name, &fixed.share, &p.port, &p.driver, &p.comment, &p.location, &fixed.sepFile,
          &fixed.printProcessor, &fixed.datatype, &fixed.parameters}) {
        size += StringBytes(*s);
    }
    return size;
}

void FillLevel2(const PrinterRow& p, size_t devModeAt, LPBYTE out, DWORD cb)
{
    static const Level2Text fixed;
    Packer pack(out, cb);
    PRINTER_INFO_2W info{};
    info.pServerName = nullptr;
    info.pPrinterName = pack.String(p.name);
    info.pShareName = pack.String(fixed.share);
    info.pPortName = pack.String(p.port);
    info.pDriverName = pack.String(p.driver);
    info.pComment = pack.String(p.comment);
    info.pLocation = pack.String(p.location);
    if (!p.devMode.empty()) {
        std::memcpy(out + devModeAt, p.devMode.data(), p.devMode.size());
        info.pDevMode = reinterpret_cast<LPDEVMODEW>(out + devModeAt);
    }
    info.pSepFile = pack.String(fixed.sepFile);
    info.pPrintProcessor = pack.String(fixed.printProcessor);
    info.pDatatype = pack.String(fixed.datatype);
    info.pParameters = pack.String(fixed.parameters);
    info.Attributes = p.attributes;
    info.Priority = 1;
    std::memcpy(out, &info, sizeof info);
}

// The driver reads a hundred switches per call, nearly all absent: this path allocates nothing.
DWORD GetData(HANDLE hPrinter, std::u16string_view keyName, LPCWSTR pValueName, LPDWORD pType,
              LPBYTE pData, DWORD nSize, LPDWORD pcbNeeded)
{
    Lock lock(StateMutex());
    const PrinterObject* handle = PrinterHandle(hPrinter);
    if (!handle) {
        return ERROR_INVALID_HANDLE;
    }
    if (keyName.empty() || !pValueName) {
        return ERROR_INVALID_PARAMETER;
    }
    if (!pcbNeeded) {
        return RPC_X_NULL_REF_POINTER;
    }
    if (!pData && nSize) {
        return ERROR_INVALID_USER_BUFFER;
    }
    const Model* model = nullptr;
    const PrinterRow* printer = nullptr;
    if (DWORD rc = QueueOf(handle, &model, &printer)) {
        return rc;
    }
    FoldedText key(keyName, uint64_t(printer->id));
    FoldedText name(pValueName, key.hash());
    auto it =
        model->printerData.find(PrinterDataRef{printer->id, key.view(), name.view(), name.hash()});
    if (it == model->printerData.end()) {
        return ERROR_FILE_NOT_FOUND;
    }
    const PrinterDataRow& value = it->second;
    DWORD size = DWORD(value.data.size());
    *pcbNeeded = size;
    if (pType) {
        *pType = value.type;
    }
    if (size > nSize) {
        return ERROR_MORE_DATA;
    }
    if (size) {
        std::memcpy(pData, value.data.data(), size);
    }
    return ERROR_SUCCESS;
}

DWORD SetData(HANDLE hPrinter, std::u16string_view keyName, LPCWSTR pValueName, DWORD Type,
              const BYTE* pData, DWORD cbData)
{
    Lock lock(StateMutex());
    const PrinterObject* handle = PrinterHandle(hPrinter);
    if (!handle) {
        return ERROR_INVALID_HANDLE;
    }
    if (keyName.empty() || !pValueName || (!pData && cbData)) {
        return ERROR_INVALID_PARAMETER;
    }
    std::u16string key(keyName), name = FromW(pValueName);
    Bytes data(pData, pData + cbData);
    return Store::Instance().Write([&](sqlite3* db, Model& model) -> DWORD {
        if (!model.PrinterById(handle->printer)) {
            return ERROR_INVALID_PRINTER_NAME;
        }
        PutPrinterData(db, model, handle->printer, key, name, Type, std::move(data));
        return ERROR_SUCCESS;
    });
}

// Validates a caller's DEVMODE for storing: the bytes to keep, or false.
bool DevModeToStore(const DEVMODEW* dm, Bytes* bytes)
{
    if (dm->dmSize < kMinDevModeSize) {
        return false;
    }
    size_t total = size_t(dm->dmSize) + dm->dmDriverExtra;
    if (total > 0xFFFF) {
        return false;
    }
    const auto* begin = reinterpret_cast<const uint8_t*>(dm);
    bytes->assign(begin, begin + total);
    return true;
}

const char16_t* DriverSubdirectory(LPCWSTR environment)
{
    static const struct
    {
        const char16_t* environment;
        const char16_t* directory;
    } known[] = {
        {u"Windows x64", u"x64"},   {u"Windows NT x86", u"W32X86"}, {u"Windows ARM64", u"ARM64"},
        {u"Windows IA64", u"IA64"}, {u"Windows 4.0", u"WIN40"},
    };
    if (!environment || !*environment) {
        return u"x64"; // the environment of the caller, a 64-bit process
    }
    for (const auto& k : known) {
        if (EqualNoCase(FromW(environment), k.environment)) {
            return k.directory;
        }
    }
    return nullptr;
}

} // namespace

} // namespace host::detail

using namespace host::detail;

extern "C" {

// TRUE with a handle in *phPrinter, else FALSE with *phPrinter NULL. Names are compared
// without case; an unknown, NULL or empty name is ERROR_INVALID_PRINTER_NAME. pDefault may
// be NULL. Access rights are recorded but not enforced.
BOOL WINAPI OpenPrinterW(LPWSTR pPrinterName, LPHANDLE phPrinter, LPPRINTER_DEFAULTSW pDefault)
{
    QLM_HOST_COUNTED_CALL();
    if (!phPrinter) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    *phPrinter = nullptr;
    if (!pPrinterName || !*pPrinterName) {
        SetLastError(ERROR_INVALID_PRINTER_NAME);
        return FALSE;
    }
    Lock lock(StateMutex());
    const Model* model = Store::Instance().Read();
    const PrinterRow* row = model ? model->FindPrinter(FromW(pPrinterName)) : nullptr;
    if (!row) {
        SetLastError(ERROR_INVALID_PRINTER_NAME);
        return FALSE;
    }
    ACCESS_MASK access = pDefault ? pDefault->DesiredAccess : PRINTER_ACCESS_USE;
    *phPrinter = AddHandle(std::make_shared<PrinterObject>(row->id, FromW(pPrinterName), access,
                                                           Store::Instance().Generation()));
    return TRUE;
}

// TRUE; FALSE with ERROR_INVALID_HANDLE for anything but an open printer handle.
BOOL WINAPI ClosePrinter(HANDLE hPrinter)
{
    QLM_HOST_COUNTED_CALL();
    if (!RemoveHandle(hPrinter, HandleKind::Printer)) {
        SetLastError(ERROR_INVALID_HANDLE);
        return FALSE;
    }
    return TRUE;
}

// TRUE with PRINTER_INFO_1W or _2W in pPrinter and *pcbNeeded the bytes used. The two-call
// pattern: too small a buffer is FALSE, ERROR_INSUFFICIENT_BUFFER, *pcbNeeded set and the
// buffer untouched. Strings are packed at the end of the buffer; the DEVMODE (dmSize +
// dmDriverExtra bytes) follows the structure, pointer-aligned. pDevMode is NULL when the
// queue has no stored record. A removed queue is ERROR_INVALID_PRINTER_NAME.
BOOL WINAPI GetPrinterW(HANDLE hPrinter, DWORD Level, LPBYTE pPrinter, DWORD cbBuf,
                        LPDWORD pcbNeeded)
{
    QLM_HOST_COUNTED_CALL();
    Lock lock(StateMutex());
    DWORD error = ERROR_SUCCESS;
    const Model* model = nullptr;
    const PrinterRow* row = nullptr;
    const PrinterObject* handle = PrinterHandle(hPrinter);
    if (!handle) {
        error = ERROR_INVALID_HANDLE;
    } else if (Level != 1 && Level != 2) {
        error = ERROR_INVALID_LEVEL;
    } else if (!pcbNeeded) {
        error = RPC_X_NULL_REF_POINTER;
    } else if (!pPrinter && cbBuf) {
        error = ERROR_INVALID_USER_BUFFER;
    } else {
        error = QueueOf(handle, &model, &row);
    }
    if (error) {
        SetLastError(error);
        return FALSE;
    }
    std::u16string description;
    size_t devModeAt = 0;
    size_t needed =
        Level == 1 ? Level1Size(*row, &description) : Level2Size(*row, pPrinter, &devModeAt);
    if (needed > kMaxAnswer) { // only a damaged store holds texts that long
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return FALSE;
    }
    *pcbNeeded = DWORD(needed);
    if (cbBuf < needed) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return FALSE;
    }
    if (Level == 1) {
        FillLevel1(*row, description, pPrinter, cbBuf);
    } else {
        FillLevel2(*row, devModeAt, pPrinter, cbBuf);
    }
    return TRUE;
}

// TRUE when the queue took PRINTER_INFO_2W's name, port, driver, comment, location,
// attributes and (when pDevMode is set) its DEVMODE; NULL strings keep what is stored. A new
// name renames the queue (ERROR_PRINTER_ALREADY_EXISTS when another queue has it); a new port
// must exist (ERROR_UNKNOWN_PORT). A DEVMODE too short to hold its own size fields, or longer
// than 65535 bytes in all, is ERROR_INVALID_PARAMETER. Only level 2 with Command 0 is known.
BOOL WINAPI SetPrinterW(HANDLE hPrinter, DWORD Level, LPBYTE pPrinter, DWORD Command)
{
    QLM_HOST_COUNTED_CALL();
    Lock lock(StateMutex());
    const PrinterObject* handle = PrinterHandle(hPrinter);
    DWORD error = ERROR_SUCCESS;
    Bytes devMode;
    const auto* info = reinterpret_cast<const PRINTER_INFO_2W*>(pPrinter);
    if (!handle) {
        error = ERROR_INVALID_HANDLE;
    } else if (Level != 2) {
        error = ERROR_INVALID_LEVEL;
    } else if (!pPrinter || Command != 0) {
        error = ERROR_INVALID_PARAMETER;
    } else if (info->pPrinterName && !*info->pPrinterName) {
        error = ERROR_INVALID_PRINTER_NAME;
    } else if (info->pDevMode && !DevModeToStore(info->pDevMode, &devMode)) {
        error = ERROR_INVALID_PARAMETER;
    }
    if (!error) {
        error = Store::Instance().Write([&](sqlite3* db, Model& model) -> DWORD {
            const PrinterRow* current = model.PrinterById(handle->printer);
            if (!current) {
                return ERROR_INVALID_PRINTER_NAME;
            }
            PrinterRow next = *current;
            if (info->pPrinterName) {
                next.name = FromW(info->pPrinterName);
                const PrinterRow* holder = model.FindPrinter(next.name);
                if (holder && holder->id != next.id) {
                    return ERROR_PRINTER_ALREADY_EXISTS;
                }
            }
            if (info->pPortName) {
                next.port = FromW(info->pPortName);
                if (!EqualNoCase(next.port, current->port) && !model.ports.count(Fold(next.port))) {
                    return ERROR_UNKNOWN_PORT;
                }
            }
            if (info->pDriverName) {
                next.driver = FromW(info->pDriverName);
            }
            if (info->pComment) {
                next.comment = FromW(info->pComment);
            }
            if (info->pLocation) {
                next.location = FromW(info->pLocation);
            }
            next.attributes = info->Attributes;
            if (info->pDevMode) {
                next.devMode = devMode;
            }
            Sql update(db, "UPDATE printers SET name = ?2, driver = ?3, port = ?4, comment = ?5, "
                           "location = ?6, attributes = ?7, devmode = ?8 WHERE id = ?1");
            update.Bind(1, next.id).Bind(2, next.name).Bind(3, next.driver).Bind(4, next.port);
            update.Bind(5, next.comment).Bind(6, next.location).Bind(7, int64_t(next.attributes));
            if (next.devMode.empty()) {
                update.BindNull(8);
            } else {
                update.Bind(8, next.devMode);
            }
            update.Run();
            model.printerIds.erase(Fold(current->name));
            model.printerIds[Fold(next.name)] = next.id;
            model.printers[next.id] = std::move(next);
            return ERROR_SUCCESS;
        });
    }
    if (error) {
        SetLastError(error);
        return FALSE;
    }
    return TRUE;
}

// The value pValueName of the key "PrinterDriverData"; see GetPrinterDataExW.
DWORD WINAPI GetPrinterDataW(HANDLE hPrinter, LPWSTR pValueName, LPDWORD pType, LPBYTE pData,
                             DWORD nSize, LPDWORD pcbNeeded)
{
    QLM_HOST_COUNTED_CALL();
    return GetData(hPrinter, kDriverDataKey, pValueName, pType, pData, nSize, pcbNeeded);
}

// Stores pValueName under the key "PrinterDriverData"; see SetPrinterDataExW.
DWORD WINAPI SetPrinterDataW(HANDLE hPrinter, LPWSTR pValueName, DWORD Type, LPBYTE pData,
                             DWORD cbData)
{
    QLM_HOST_COUNTED_CALL();
    return SetData(hPrinter, kDriverDataKey, pValueName, Type, pData, cbData);
}

// Returns the error code (not a BOOL) and leaves the last error alone. ERROR_SUCCESS with the
// data, *pType (if given) and *pcbNeeded. An absent value is ERROR_FILE_NOT_FOUND; a buffer
// smaller than the data ERROR_MORE_DATA with *pcbNeeded set and nothing written (so the
// first of two calls, with no buffer, answers ERROR_MORE_DATA). Key and value names are
// compared without case; a NULL or empty key is ERROR_INVALID_PARAMETER.
DWORD WINAPI GetPrinterDataExW(HANDLE hPrinter, LPCWSTR pKeyName, LPCWSTR pValueName, LPDWORD pType,
                               LPBYTE pData, DWORD nSize, LPDWORD pcbNeeded)
{
    QLM_HOST_COUNTED_CALL();
    return GetData(hPrinter, pKeyName ? pKeyName : u"", pValueName, pType, pData, nSize, pcbNeeded);
}

// Returns the error code: ERROR_SUCCESS when stored, type and bytes as given. NULL data with
// cbData 0 stores an empty value. A NULL or empty key is ERROR_INVALID_PARAMETER.
DWORD WINAPI SetPrinterDataExW(HANDLE hPrinter, LPCWSTR pKeyName, LPCWSTR pValueName, DWORD Type,
                               LPBYTE pData, DWORD cbData)
{
    QLM_HOST_COUNTED_CALL();
    return SetData(hPrinter, pKeyName ? pKeyName : u"", pValueName, Type, pData, cbData);
}

// Returns the error code and leaves the last error alone. ERROR_SUCCESS with every value of
// the key in pEnumValues: the PRINTER_ENUM_VALUESW records in the order the values were first
// written, then each value's name and data packed behind them, the data right after its name
// with no alignment (as Wine lays it out). *pcbEnumValues is the bytes used, *pnEnumValues the
// number of values. Too small a buffer is ERROR_MORE_DATA with both set and nothing written. A
// key that holds no value does not exist: ERROR_FILE_NOT_FOUND. A NULL or empty key is
// ERROR_INVALID_PARAMETER.
DWORD WINAPI EnumPrinterDataExW(HANDLE hPrinter, LPCWSTR pKeyName, LPBYTE pEnumValues,
                                DWORD cbEnumValues, LPDWORD pcbEnumValues, LPDWORD pnEnumValues)
{
    QLM_HOST_COUNTED_CALL();
    Lock lock(StateMutex());
    const PrinterObject* handle = PrinterHandle(hPrinter);
    if (!handle) {
        return ERROR_INVALID_HANDLE;
    }
    if (!pKeyName || !*pKeyName) {
        return ERROR_INVALID_PARAMETER;
    }
    if (!pcbEnumValues || !pnEnumValues) {
        return RPC_X_NULL_REF_POINTER;
    }
    if (!pEnumValues && cbEnumValues) {
        return ERROR_INVALID_USER_BUFFER;
    }
    const Model* model = nullptr;
    const PrinterRow* printer = nullptr;
    if (DWORD rc = QueueOf(handle, &model, &printer)) {
        return rc;
    }
    std::u16string key = Fold(FromW(pKeyName));
    std::vector<const PrinterDataRow*> values;
    for (const auto& [at, row] : model->printerData) {
        if (at.printer == printer->id && at.key == key) {
            values.push_back(&row);
        }
    }
    if (values.empty()) {
        return ERROR_FILE_NOT_FOUND;
    }
    std::sort(values.begin(), values.end(),
              [](const PrinterDataRow* a, const PrinterDataRow* b) { return a->id < b->id; });
    size_t needed = values.size() * sizeof(PRINTER_ENUM_VALUESW);
    for (const PrinterDataRow* row : values) {
        needed += StringBytes(row->name) + row->data.size();
    }
    if (needed > kMaxAnswer) {
        return ERROR_NOT_ENOUGH_MEMORY;
    }
    *pcbEnumValues = DWORD(needed);
    *pnEnumValues = DWORD(values.size());
    if (cbEnumValues < needed) {
        return ERROR_MORE_DATA;
    }
    LPBYTE at = pEnumValues + values.size() * sizeof(PRINTER_ENUM_VALUESW);
    for (size_t i = 0; i < values.size(); ++i) {
        const PrinterDataRow& row = *values[i];
        PRINTER_ENUM_VALUESW entry{};
        entry.pValueName = reinterpret_cast<LPWSTR>(at);
        entry.cbValueName = DWORD(StringBytes(row.name));
        std::memcpy(at, row.name.c_str(), entry.cbValueName);
        at += entry.cbValueName;
        entry.dwType = row.type;
        entry.pData = at;
        entry.cbData = DWORD(row.data.size());
        if (!row.data.empty()) {
            std::memcpy(at, row.data.data(), row.data.size());
        }
        at += row.data.size();
        std::memcpy(pEnumValues + i * sizeof(PRINTER_ENUM_VALUESW), &entry, sizeof entry);
    }
    return ERROR_SUCCESS;
}

// TRUE with the local ports (PORT_INFO_1W or _2W) in name order, *pcReturned their number.
// The two-call pattern: too small a buffer is FALSE, ERROR_INSUFFICIENT_BUFFER, *pcbNeeded
// set and *pcReturned 0. Level 2 reports every port as PORT_TYPE_WRITE. A server name other
// than NULL or "" is ERROR_INVALID_NAME: the host has no other machines.
BOOL WINAPI EnumPortsW(LPWSTR pName, DWORD Level, LPBYTE pPorts, DWORD cbBuf, LPDWORD pcbNeeded,
                       LPDWORD pcReturned)
{
    QLM_HOST_COUNTED_CALL();
    Lock lock(StateMutex());
    DWORD error = ERROR_SUCCESS;
    if (Level != 1 && Level != 2) {
        error = ERROR_INVALID_LEVEL;
    } else if (!pcbNeeded || !pcReturned || (!pPorts && cbBuf)) {
        error = RPC_X_NULL_REF_POINTER;
    } else if (pName && *pName) {
        error = ERROR_INVALID_NAME;
    }
    if (pcReturned) {
        *pcReturned = 0;
    }
    const Model* model = error ? nullptr : Store::Instance().Read();
    if (!error && !model) {
        error = ERROR_CANTREAD;
    }
    if (error) {
        SetLastError(error);
        return FALSE;
    }
    size_t entry = Level == 1 ? sizeof(PORT_INFO_1W) : sizeof(PORT_INFO_2W);
    size_t needed = 0;
    for (const auto& [folded, port] : model->ports) {
        needed += entry + StringBytes(port.name);
        if (Level == 2) {
            needed += StringBytes(port.monitor) + StringBytes(port.description);
        }
    }
    if (needed > kMaxAnswer) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return FALSE;
    }
    *pcbNeeded = DWORD(needed);
    if (cbBuf < needed) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return FALSE;
    }
    Packer pack(pPorts, cbBuf);
    DWORD count = 0;
    for (const auto& [folded, port] : model->ports) {
        LPBYTE at = pPorts + count * entry;
        if (Level == 1) {
            PORT_INFO_1W info{pack.String(port.name)};
            std::memcpy(at, &info, sizeof info);
        } else {
            PORT_INFO_2W info{};
            info.pPortName = pack.String(port.name);
            info.pMonitorName = pack.String(port.monitor);
            info.pDescription = pack.String(port.description);
            info.fPortType = PORT_TYPE_WRITE;
            std::memcpy(at, &info, sizeof info);
        }
        ++count;
    }
    *pcReturned = count;
    return TRUE;
}

// TRUE with "C:\Windows\System32\spool\drivers\<arch>" in pDriverDirectory; cbBuf and
// *pcbNeeded count BYTES including the NUL. pEnvironment NULL is the caller's own, x64. An
// unknown environment is ERROR_INVALID_ENVIRONMENT, too small a buffer
// ERROR_INSUFFICIENT_BUFFER with *pcbNeeded set. host::MapWindowsPath finds it on disk.
BOOL WINAPI GetPrinterDriverDirectoryW(LPWSTR pName, LPWSTR pEnvironment, DWORD Level,
                                       LPBYTE pDriverDirectory, DWORD cbBuf, LPDWORD pcbNeeded)
{
    QLM_HOST_COUNTED_CALL();
    const char16_t* sub = DriverSubdirectory(pEnvironment);
    DWORD error = ERROR_SUCCESS;
    if (Level != 1) {
        error = ERROR_INVALID_LEVEL;
    } else if (!pcbNeeded) {
        error = RPC_X_NULL_REF_POINTER;
    } else if (pName && *pName) {
        error = ERROR_INVALID_NAME;
    } else if (!sub) {
        error = ERROR_INVALID_ENVIRONMENT;
    }
    if (error) {
        SetLastError(error);
        return FALSE;
    }
    std::u16string directory = u"C:\\Windows\\System32\\spool\\drivers\\";
    directory += sub;
    DWORD needed = DWORD(StringBytes(directory));
    *pcbNeeded = needed;
    if (cbBuf < needed) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return FALSE;
    }
    if (!pDriverDirectory) {
        SetLastError(ERROR_INVALID_USER_BUFFER);
        return FALSE;
    }
    std::memcpy(pDriverDirectory, directory.c_str(), needed);
    return TRUE;
}

} // extern "C"
