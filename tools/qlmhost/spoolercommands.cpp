// The spooler's and the registry's state as qlmhost keeps it, and the driver's immediate answers.
#include "commands.h"

#include "driverlib.h"
#include "records.h"

#include "platform/host/host.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>

namespace {

// --dword N | --string S | --binary HEX, as a registry type and its bytes.
bool TakeValue(Args& args, DWORD* type, std::vector<uint8_t>* data, std::string* error)
{
    std::string text;
    int given = 0;
    if (args.Take("--dword", &text)) {
        given++;
        char* end = nullptr;
        unsigned long long v = strtoull(text.c_str(), &end, 0);
        if (text.empty() || *end || v > 0xFFFFFFFFull || text[0] == '-') {
            *error = "--dword takes a number from 0 to 4294967295, not '" + text + "'";
            return false;
        }
        *type = REG_DWORD;
        *data = {uint8_t(v), uint8_t(v >> 8), uint8_t(v >> 16), uint8_t(v >> 24)};
    }
    if (args.Take("--string", &text)) {
        given++;
        *type = REG_SZ;
        data->clear();
        for (char16_t c : W(text) + u'\0') {
            data->push_back(uint8_t(c));
            data->push_back(uint8_t(c >> 8));
        }
    }
    if (args.Take("--binary", &text)) {
        given++;
        *type = REG_BINARY;
        data->clear();
        if (text.size() % 2) {
            *error = "--binary takes an even number of hex digits";
            return false;
        }
        for (size_t i = 0; i < text.size(); i += 2) {
            char* end = nullptr;
            std::string pair = text.substr(i, 2);
            long b = strtol(pair.c_str(), &end, 16);
            if (*end || !isxdigit(pair[0])) {
                *error = "--binary takes hex digits, not '" + pair + "'";
                return false;
            }
            data->push_back(uint8_t(b));
        }
    }
    if (given != 1) {
        *error = "give exactly one of --dword, --string, --binary";
        return false;
    }
    return true;
}

const char* TypeName(DWORD type)
{
    switch (type) {
    case REG_DWORD:
        return "dword";
    case REG_SZ:
        return "string";
    case REG_BINARY:
        return "binary";
    case REG_MULTI_SZ:
        return "multi-string";
    case REG_EXPAND_SZ:
        return "expand-string";
    default:
        return "none";
    }
}

// A value for people: numbers in decimal and hex, text as text, bytes in hex.
void PrintValue(const std::string& name, DWORD type, const std::vector<uint8_t>& data, bool json)
{
    std::string shown;
    if (type == REG_DWORD && data.size() == 4) {
        DWORD v = data[0] | data[1] << 8 | data[2] << 16 | (DWORD)data[3] << 24;
        shown = std::to_string(v);
    } else if ((type == REG_SZ || type == REG_EXPAND_SZ) && data.size() % 2 == 0) {
        std::u16string text;
        for (size_t i = 0; i + 1 < data.size(); i += 2) {
            char16_t c = char16_t(data[i] | data[i + 1] << 8);
            if (!c)
                break;
            text += c;
        }
        shown = U(text);
    } else {
        char buf[4];
        for (uint8_t b : data) {
            snprintf(buf, sizeof(buf), "%02x", b);
            shown += buf;
        }
    }
    if (json) {
        JsonWriter w;
        w.BeginObject();
        w.String("name", name);
        w.String("type", TypeName(type));
        w.Number("size", (long long)data.size());
        if (type == REG_DWORD && data.size() == 4)
            w.Number("value", std::stoll(shown));
        else
            w.String("value", shown);
        w.EndObject();
        printf("%s\n", w.Text().c_str());
    } else {
        printf("%s (%s, %zu bytes) = %s\n", name.c_str(), TypeName(type), data.size(),
               shown.c_str());
    }
}

// ---- the resource library ---------------------------------------------------------------

// The driver loads QLMRes.DLL from the version 3 folder of the printer driver directory, and
// from the version 2 folder when 3 has none.
constexpr char16_t kResourceFile[] = u"QLMRes.DLL";

bool ResourcesInstalled()
{
    std::error_code ec;
    return std::filesystem::exists(host::InstalledDriverFilePath(kResourceFile, 3), ec) ||
           std::filesystem::exists(host::InstalledDriverFilePath(kResourceFile, 2), ec);
}

// --resources, else $QLMHOST_RESOURCES, else the one this build made.
std::string ResourcesSource(const std::string& given)
{
    if (!given.empty())
        return given;
    const char* env = getenv("QLMHOST_RESOURCES");
    return env && *env ? env : QLM_DEFAULT_RESOURCES;
}

// Copies a resource library into place; only a PE file is taken.
bool InstallResources(const std::string& source, std::string* error)
{
    std::ifstream file(source, std::ios::binary);
    char magic[2] = {};
    if (!file || !file.read(magic, 2)) {
        *error = "cannot read the resource library " + source;
        return false;
    }
    if (magic[0] != 'M' || magic[1] != 'Z') {
        *error = source + " is not a PE file, so not a resource library";
        return false;
    }
    if (!host::InstallDriverFile(source, kResourceFile, 3, error))
        return false;
    // Beside it the driver library's file, which tells its version, as on Windows.
    return host::InstallDriverFile(QLM_DRIVER_IMAGE, u"QLMUIDrv.DLL", 3, error);
}

std::string InstalledResourcesName()
{
    return U(host::DriverDirectory() + u"\\3\\" + kResourceFile);
}

} // namespace

int DriverInstall(Args& args, const Options&)
{
    std::string given;
    args.Take("--resources", &given);
    int rc;
    if (!Expect(args, 0, 0, &rc))
        return rc;
    std::string source = ResourcesSource(given), error;
    if (!InstallResources(source, &error))
        return Fail(error);
    printf("%s installed as %s (%s)\n", source.c_str(), InstalledResourcesName().c_str(),
           host::InstalledDriverFilePath(kResourceFile, 3).c_str());
    return 0;
}

// ---- printer ------------------------------------------------------------------------------

int PrinterAdd(Args& args, const Options& options)
{
    host::PrinterRecord printer;
    std::string driver, port;
    if (!args.Take("--driver", &driver))
        return UsageError(args.Called(), "--driver is required");
    args.Take("--port", &port);
    int rc;
    if (!Expect(args, 1, 1, &rc))
        return rc;
    printer.name = W(args.Rest()[0]);
    printer.driverName = W(driver);
    printer.portName = W(port.empty() ? "LPT1:" : port);
    if (printer.name.empty() || printer.name.find(u',') != std::u16string::npos)
        return Fail("a printer name must not be empty or hold a comma");
    if (!host::AddPrinter(printer))
        return Fail("printer '" + args.Rest()[0] + "' exists already");
    printf("printer '%s' added (driver '%s', port '%s')\n", args.Rest()[0].c_str(), driver.c_str(),
           U(printer.portName).c_str());
    // A queue is of no use while the driver cannot find its resources.
    if (!ResourcesInstalled()) {
        std::string source = ResourcesSource(std::string()), error;
        if (InstallResources(source, &error))
            printf("note: the driver's resources were missing; %s installed as %s\n",
                   source.c_str(), InstalledResourcesName().c_str());
        else
            fprintf(stderr,
                    "qlmhost: warning: the driver's resources are missing and could not be "
                    "installed: %s (see qlmhost driver install)\n",
                    error.c_str());
    }
    // As Windows' spooler gives a new queue its driver's default record.
    std::string error;
    if (!StoreSpoolerDefault(options, args.Rest()[0], &error))
        fprintf(stderr, "qlmhost: warning: the queue has no stored record yet: %s\n",
                error.c_str());
    return 0;
}

int PrinterRemove(Args& args, const Options&)
{
    int rc;
    if (!Expect(args, 1, 1, &rc))
        return rc;
    if (!host::RemovePrinter(W(args.Rest()[0])))
        return Fail("no printer named '" + args.Rest()[0] + "'");
    printf("printer '%s' removed\n", args.Rest()[0].c_str());
    return 0;
}

int PrinterList(Args& args, const Options& options)
{
    int rc;
    if (!Expect(args, 0, 0, &rc))
        return rc;
    std::vector<host::PrinterRecord> printers = host::ListPrinters();
    if (options.json) {
        JsonWriter w;
        w.BeginArray();
        for (const host::PrinterRecord& p : printers) {
            w.BeginObject();
            w.String("name", U(p.name));
            w.String("driver", U(p.driverName));
            w.String("port", U(p.portName));
            w.Number("attributes", p.attributes);
            w.Number("devmodeSize", (long long)p.devMode.size());
            w.EndObject();
        }
        w.EndArray();
        printf("%s\n", w.Text().c_str());
        return 0;
    }
    if (printers.empty())
        printf("no printers\n");
    for (const host::PrinterRecord& p : printers)
        printf("%-32s driver '%s', port '%s'%s\n", U(p.name).c_str(), U(p.driverName).c_str(),
               U(p.portName).c_str(), p.devMode.empty() ? ", no stored record" : "");
    return 0;
}

// ---- port ---------------------------------------------------------------------------------

int PortAdd(Args& args, const Options&)
{
    host::PortRecord port;
    std::string monitor, description;
    if (!args.Take("--monitor", &monitor))
        return UsageError(args.Called(), "--monitor is required");
    args.Take("--description", &description);
    int rc;
    if (!Expect(args, 1, 1, &rc))
        return rc;
    port.name = W(args.Rest()[0]);
    port.monitorName = W(monitor);
    port.description = W(description);
    if (port.name.empty())
        return Fail("a port name must not be empty");
    if (!host::AddPort(port))
        return Fail("cannot add port '" + args.Rest()[0] + "'");
    printf("port '%s' added (monitor '%s')\n", args.Rest()[0].c_str(), monitor.c_str());
    return 0;
}

int PortList(Args& args, const Options& options)
{
    int rc;
    if (!Expect(args, 0, 0, &rc))
        return rc;
    std::vector<host::PortRecord> ports = host::ListPorts();
    if (options.json) {
        JsonWriter w;
        w.BeginArray();
        for (const host::PortRecord& p : ports) {
            w.BeginObject();
            w.String("name", U(p.name));
            w.String("monitor", U(p.monitorName));
            w.String("description", U(p.description));
            w.EndObject();
        }
        w.EndArray();
        printf("%s\n", w.Text().c_str());
        return 0;
    }
    if (ports.empty())
        printf("no ports\n");
    for (const host::PortRecord& p : ports)
        printf("%-24s monitor '%s'\n", U(p.name).c_str(), U(p.monitorName).c_str());
    return 0;
}

// ---- printer data, through the spooler's own calls ------------------------------------------

int DataSet(Args& args, const Options&)
{
    std::string key = "PrinterDriverData", error;
    args.Take("--key", &key);
    DWORD type = REG_NONE;
    std::vector<uint8_t> data;
    if (!TakeValue(args, &type, &data, &error))
        return UsageError(args.Called(), error);
    int rc;
    if (!Expect(args, 2, 2, &rc))
        return rc;
    OpenedPrinter printer(args.Rest()[0]);
    if (!printer.get())
        return Fail("no printer named '" + args.Rest()[0] + "'");
    DWORD result = SetPrinterDataExW(printer.get(), W(key).c_str(), W(args.Rest()[1]).c_str(), type,
                                     data.data(), (DWORD)data.size());
    if (result != ERROR_SUCCESS)
        return Fail("SetPrinterDataEx: " + Win32Error(result));
    printf("%s\\%s of '%s' set\n", key.c_str(), args.Rest()[1].c_str(), args.Rest()[0].c_str());
    return 0;
}

int DataGet(Args& args, const Options& options)
{
    std::string key = "PrinterDriverData";
    args.Take("--key", &key);
    int rc;
    if (!Expect(args, 2, 2, &rc))
        return rc;
    OpenedPrinter printer(args.Rest()[0]);
    if (!printer.get())
        return Fail("no printer named '" + args.Rest()[0] + "'");
    std::u16string wkey = W(key), wname = W(args.Rest()[1]);
    DWORD type = 0, needed = 0;
    DWORD result =
        GetPrinterDataExW(printer.get(), wkey.c_str(), wname.c_str(), &type, nullptr, 0, &needed);
    std::vector<uint8_t> data(needed);
    if (result == ERROR_MORE_DATA || result == ERROR_SUCCESS)
        result = GetPrinterDataExW(printer.get(), wkey.c_str(), wname.c_str(), &type, data.data(),
                                   needed, &needed);
    if (result != ERROR_SUCCESS)
        return Fail("GetPrinterDataEx " + key + "\\" + args.Rest()[1] + ": " + Win32Error(result));
    data.resize(needed);
    PrintValue(args.Rest()[1], type, data, options.json);
    return 0;
}

// ---- registry, through the registry's own calls -------------------------------------------

namespace {

bool SplitKey(const std::string& path, HKEY* root, std::u16string* subKey)
{
    struct Hive
    {
        const char* prefix;
        HKEY root;
    } kHives[] = {{"HKCU\\", HKEY_CURRENT_USER},
                  {"HKEY_CURRENT_USER\\", HKEY_CURRENT_USER},
                  {"HKLM\\", HKEY_LOCAL_MACHINE},
                  {"HKEY_LOCAL_MACHINE\\", HKEY_LOCAL_MACHINE}};
    for (const Hive& hive : kHives) {
        size_t n = strlen(hive.prefix);
        if (path.size() > n && strncasecmp(path.c_str(), hive.prefix, n) == 0) {
            *root = hive.root;
            *subKey = W(path.substr(n));
            return true;
        }
    }
    return false;
}

} // namespace

int RegSet(Args& args, const Options&)
{
    DWORD type = REG_NONE;
    std::vector<uint8_t> data;
    std::string error;
    if (!TakeValue(args, &type, &data, &error))
        return UsageError(args.Called(), error);
    int rc;
    if (!Expect(args, 2, 2, &rc))
        return rc;
    HKEY root;
    std::u16string subKey;
    if (!SplitKey(args.Rest()[0], &root, &subKey))
        return Fail("a key starts with HKCU\\ or HKLM\\, not '" + args.Rest()[0] + "'");
    HKEY hKey = nullptr;
    LONG result = RegCreateKeyExW(root, subKey.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                                  KEY_ALL_ACCESS, nullptr, &hKey, nullptr);
    if (result != ERROR_SUCCESS)
        return Fail("RegCreateKeyEx " + args.Rest()[0] + ": " + Win32Error(result));
    result =
        RegSetValueExW(hKey, W(args.Rest()[1]).c_str(), 0, type, data.data(), (DWORD)data.size());
    RegCloseKey(hKey);
    if (result != ERROR_SUCCESS)
        return Fail("RegSetValueEx: " + Win32Error(result));
    printf("%s\\%s set\n", args.Rest()[0].c_str(), args.Rest()[1].c_str());
    return 0;
}

int RegGet(Args& args, const Options& options)
{
    int rc;
    if (!Expect(args, 2, 2, &rc))
        return rc;
    HKEY root;
    std::u16string subKey;
    if (!SplitKey(args.Rest()[0], &root, &subKey))
        return Fail("a key starts with HKCU\\ or HKLM\\, not '" + args.Rest()[0] + "'");
    HKEY hKey = nullptr;
    LONG result = RegOpenKeyExW(root, subKey.c_str(), 0, KEY_READ, &hKey);
    if (result != ERROR_SUCCESS)
        return Fail("key " + args.Rest()[0] + ": " + Win32Error(result));
    std::u16string name = W(args.Rest()[1]);
    DWORD type = 0, cb = 0;
    result = RegQueryValueExW(hKey, name.c_str(), nullptr, &type, nullptr, &cb);
    std::vector<uint8_t> data(cb);
    if (result == ERROR_SUCCESS)
        result = RegQueryValueExW(hKey, name.c_str(), nullptr, &type, data.data(), &cb);
    RegCloseKey(hKey);
    if (result != ERROR_SUCCESS)
        return Fail("value " + args.Rest()[1] + ": " + Win32Error(result));
    data.resize(cb);
    PrintValue(args.Rest()[1], type, data, options.json);
    return 0;
}

int RegDelete(Args& args, const Options&)
{
    int rc;
    if (!Expect(args, 1, 1, &rc))
        return rc;
    HKEY root;
    std::u16string subKey;
    if (!SplitKey(args.Rest()[0], &root, &subKey))
        return Fail("a key starts with HKCU\\ or HKLM\\, not '" + args.Rest()[0] + "'");
    LONG result = RegDeleteKeyW(root, subKey.c_str());
    if (result != ERROR_SUCCESS)
        return Fail("RegDeleteKey " + args.Rest()[0] + ": " + Win32Error(result));
    printf("%s deleted\n", args.Rest()[0].c_str());
    return 0;
}

// ---- the driver -----------------------------------------------------------------------------

int DriverAnswers(Args& args, const Options& options)
{
    int rc;
    if (!Expect(args, 0, 1, &rc))
        return rc;
    DriverLibrary driver;
    std::string error;
    if (!driver.Load(options.driverLibrary, &error))
        return Fail(error);
    OpenedPrinter printer(args.Rest().empty() ? std::string() : args.Rest()[0]);
    if (!args.Rest().empty() && !printer.get())
        return Fail("no printer named '" + args.Rest()[0] + "'");

    auto* devQueryPrint = driver.Entry<BOOL(HANDLE, LPDEVMODEW, DWORD*)>("DevQueryPrint");
    auto* devQueryPrintEx = driver.Entry<BOOL(PDEVQUERYPRINT_INFO)>("DevQueryPrintEx");
    auto* printerProperties = driver.Entry<BOOL(HWND, HANDLE)>("PrinterProperties");
    auto* documentEvent =
        driver.Entry<int(HANDLE, HDC, int, ULONG, PVOID, ULONG, PVOID)>("DrvDocumentEvent");
    if (!devQueryPrint || !devQueryPrintEx || !printerProperties || !documentEvent)
        return Fail(options.driverLibrary + " lacks an entry of the export table");

    DWORD resId = 0xFFFFFFFF;
    BOOL query = devQueryPrint(printer.get(), nullptr, &resId);
    DEVQUERYPRINT_INFO info = {sizeof(info), 1, printer.get(), nullptr, nullptr, 0, 0};
    BOOL queryEx = devQueryPrintEx(&info);
    BOOL properties = printerProperties(nullptr, printer.get());
    static const char* kEvents[] = {"CREATEDCPRE",  "CREATEDCPOST", "RESETDCPRE", "RESETDCPOST",
                                    "STARTDOC",     "STARTPAGE",    "ENDPAGE",    "ENDDOC",
                                    "ABORTDOC",     "DELETEDC",     "ESCAPE",     "ENDDOCPOST",
                                    "STARTDOCPOST", "QUERYFILTER",  "LAST"};
    int events[15];
    for (int e = 0; e < 15; e++)
        events[e] = documentEvent(printer.get(), nullptr, e + 1, 0, nullptr, 0, nullptr);

    if (options.json) {
        JsonWriter w;
        w.BeginObject();
        w.String("library", options.driverLibrary);
        w.BeginObject("DevQueryPrint");
        w.Number("result", query);
        w.Number("resID", resId);
        w.EndObject();
        w.Number("DevQueryPrintEx", queryEx);
        w.Number("PrinterProperties", properties);
        w.BeginObject("DrvDocumentEvent");
        for (int e = 0; e < 15; e++)
            w.Number((std::string("DOCUMENTEVENT_") + kEvents[e]).c_str(), events[e]);
        w.EndObject();
        w.EndObject();
        printf("%s\n", w.Text().c_str());
        return 0;
    }
    printf("driver library      %s\n", options.driverLibrary.c_str());
    printf("DevQueryPrint       %d (resource id %u): every job is accepted\n", query, resId);
    printf("DevQueryPrintEx     %d\n", queryEx);
    printf("PrinterProperties   %d, nothing shown\n", properties);
    for (int e = 0; e < 15; e++)
        printf("DrvDocumentEvent    %-28s %d\n",
               (std::string("DOCUMENTEVENT_") + kEvents[e]).c_str(), events[e]);
    return 0;
}
