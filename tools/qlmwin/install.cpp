// The driver installed from its INF through setupapi, as Add Printer's "Have Disk" reads it,
// and queues created on it with AddPrinterW.
#include "install.h"

#include "driverlib.h"

#include <setupapi.h>

#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace {

using WString = std::u16string;

LPCWSTR P(const WString& s)
{
    return reinterpret_cast<LPCWSTR>(s.c_str());
}

WString Field(INFCONTEXT* context, DWORD index)
{
    WCHAR buffer[512] = {};
    DWORD cch = 0;
    if (!SetupGetStringFieldW(context, index, buffer, 512, &cch))
        return WString();
    return WString(reinterpret_cast<const char16_t*>(buffer));
}

// One value of the install section ("ConfigFile=QLMUIDrv.dll").
bool SectionValue(HINF hInf, const WString& section, const char16_t* key, WString* value)
{
    INFCONTEXT context;
    if (!SetupFindFirstLineW(hInf, P(section), reinterpret_cast<LPCWSTR>(key), &context))
        return false;
    *value = Field(&context, 1);
    return !value->empty();
}

struct DriverPackage
{
    std::vector<WString> models;
    WString driverFile, configFile, dataFile, defaultDataType;
};

// The models of the INF's manufacturer for x64, and the files of their install section.
bool ReadInf(const std::string& path, DriverPackage* package, std::string* error)
{
    WString wide = W(path);
    UINT errorLine = 0;
    HINF hInf = SetupOpenInfFileW(P(wide), nullptr, INF_STYLE_WIN4, &errorLine);
    if (hInf == INVALID_HANDLE_VALUE) {
        *error = "cannot read the INF " + path + " (" + Win32Error(GetLastError()) + ", line " +
                 std::to_string(errorLine) + ")";
        return false;
    }
    INFCONTEXT manufacturer;
    WString models, section;
    if (!SetupFindFirstLineW(hInf, L"Manufacturer", nullptr, &manufacturer)) {
        *error = path + " has no [Manufacturer] section";
    } else {
        // "%Manufacturer%=Tarvo,NTamd64": the models stand in [Tarvo.NTamd64].
        WString base = Field(&manufacturer, 1);
        for (DWORD i = 2; i <= SetupGetFieldCount(&manufacturer); ++i)
            if (Field(&manufacturer, i) == u"NTamd64")
                models = base + u".NTamd64";
        if (models.empty())
            *error = path + " names no models for NTamd64";
    }
    INFCONTEXT line;
    if (error->empty() && SetupFindFirstLineW(hInf, P(models), nullptr, &line)) {
        do {
            WString model = Field(&line, 0);
            WString install = Field(&line, 1);
            if (model.empty() || install.empty()) {
                *error = path + ": a model line lacks its name or install section";
                break;
            }
            if (!section.empty() && install != section) {
                *error = "the models of " + path + " name more than one install section";
                break;
            }
            section = install;
            package->models.push_back(model);
        } while (SetupFindNextLine(&line, &line));
    }
    if (error->empty() && package->models.empty())
        *error = path + ": [" + U(models) + "] lists no models";
    if (error->empty() && (!SectionValue(hInf, section, u"DriverFile", &package->driverFile) ||
                           !SectionValue(hInf, section, u"ConfigFile", &package->configFile) ||
                           !SectionValue(hInf, section, u"DataFile", &package->dataFile)))
        *error = path + ": [" + U(section) + "] lacks DriverFile, ConfigFile or DataFile";
    if (error->empty() &&
        !SectionValue(hInf, section, u"DefaultDataType", &package->defaultDataType))
        package->defaultDataType = u"RAW";
    SetupCloseInfFile(hInf);
    return error->empty();
}

WString Folder(const std::string& path)
{
    size_t slash = path.find_last_of("\\/");
    return W(slash == std::string::npos ? "." : path.substr(0, slash));
}

bool AddDriver(const DriverPackage& package, const WString& model, const WString& folder,
               std::string* error)
{
    WString environment = u"Windows x64";
    WString driverPath = folder + u"\\" + package.driverFile;
    WString configPath = folder + u"\\" + package.configFile;
    WString dataPath = folder + u"\\" + package.dataFile;
    DRIVER_INFO_3W info = {};
    info.cVersion = 3;
    info.pName = const_cast<LPWSTR>(P(model));
    info.pEnvironment = const_cast<LPWSTR>(P(environment));
    info.pDriverPath = const_cast<LPWSTR>(P(driverPath));
    info.pConfigFile = const_cast<LPWSTR>(P(configPath));
    info.pDataFile = const_cast<LPWSTR>(P(dataPath));
    info.pDefaultDataType = const_cast<LPWSTR>(P(package.defaultDataType));
    if (AddPrinterDriverExW(nullptr, 3, reinterpret_cast<LPBYTE>(&info),
                            APD_COPY_ALL_FILES | APD_COPY_FROM_DIRECTORY))
        return true;
    *error = "AddPrinterDriverExW for \"" + U(model) + "\" failed: " + Win32Error(GetLastError());
    return false;
}

bool AddQueue(const WString& name, const WString& driver, const WString& port, std::string* error)
{
    HANDLE hPrinter = nullptr;
    WString processor = u"winprint", datatype = u"RAW";
    // A queue of an earlier run goes first, so that every run starts from the same state.
    if (OpenPrinterW(const_cast<LPWSTR>(P(name)), &hPrinter, nullptr)) {
        DeletePrinter(hPrinter);
        ClosePrinter(hPrinter);
    }
    PRINTER_INFO_2W info = {};
    info.pPrinterName = const_cast<LPWSTR>(P(name));
    info.pPortName = const_cast<LPWSTR>(P(port));
    info.pDriverName = const_cast<LPWSTR>(P(driver));
    info.pPrintProcessor = const_cast<LPWSTR>(P(processor));
    info.pDatatype = const_cast<LPWSTR>(P(datatype));
    info.Attributes = PRINTER_ATTRIBUTE_LOCAL;
    hPrinter = AddPrinterW(nullptr, 2, reinterpret_cast<LPBYTE>(&info));
    if (!hPrinter) {
        *error = "AddPrinterW for \"" + U(name) + "\" failed: " + Win32Error(GetLastError());
        return false;
    }
    ClosePrinter(hPrinter);
    return true;
}

// "NAME<TAB>DRIVER[<TAB>PORT]" lines; # starts a comment line.
bool ReadQueues(const std::string& path, std::vector<std::vector<std::string>>* queues,
                std::string* error)
{
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        *error = "cannot read the queue list " + path;
        return false;
    }
    std::string line;
    while (std::getline(file, line)) {
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        if (line.empty() || line[0] == '#')
            continue;
        std::vector<std::string> fields;
        std::stringstream words(line);
        for (std::string field; std::getline(words, field, '\t');)
            fields.push_back(field);
        if (fields.size() < 2 || fields.size() > 3) {
            *error = path + ": \"" + line + "\" is not NAME, a tab and DRIVER [, a tab and PORT]";
            return false;
        }
        queues->push_back(fields);
    }
    return true;
}

const char16_t kMonitorsKey[] = u"System\\CurrentControlSet\\Control\\Print\\Monitors\\TCPMON.DLL";

// qlmnetmon.dll into the system folder, registered as the monitor TCPMON.DLL.
bool RegisterNetworkMonitor(std::string* error)
{
    WCHAR self[MAX_PATH] = {}, system[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, self, MAX_PATH);
    WString source(reinterpret_cast<const char16_t*>(self));
    source = source.substr(0, source.find_last_of(u'\\') + 1) + u"qlmnetmon.dll";
    GetSystemDirectoryW(system, MAX_PATH);
    WString target = WString(reinterpret_cast<const char16_t*>(system)) + u"\\qlmnetmon.dll";
    if (!CopyFileW(P(source), P(target), FALSE)) {
        *error = "cannot copy " + U(source) + ": " + Win32Error(GetLastError());
        return false;
    }
    HKEY hKey = nullptr;
    LONG rc = RegCreateKeyExW(HKEY_LOCAL_MACHINE, reinterpret_cast<LPCWSTR>(kMonitorsKey), 0,
                              nullptr, 0, KEY_WRITE, nullptr, &hKey, nullptr);
    if (rc == ERROR_SUCCESS) {
        const char16_t dll[] = u"qlmnetmon.dll";
        rc = RegSetValueExW(hKey, L"Driver", 0, REG_SZ, reinterpret_cast<const BYTE*>(dll),
                            sizeof(dll));
        RegCloseKey(hKey);
    }
    if (rc != ERROR_SUCCESS)
        *error = "cannot register the port monitor: " + Win32Error(DWORD(rc));
    return rc == ERROR_SUCCESS;
}

} // namespace

int InstallCommand(Args& args, const Options& options)
{
    std::string infPath, queuesPath, error;
    if (!args.Take("--inf", &infPath))
        return UsageError(args.Called(), "--inf names the driver's INF");
    const bool hasQueues = args.Take("--queues", &queuesPath);
    int rc;
    if (!Expect(args, 0, 0, &rc))
        return rc;
    DriverPackage package;
    if (!ReadInf(infPath, &package, &error))
        return Fail(error);
    std::vector<std::vector<std::string>> queues;
    if (hasQueues && !ReadQueues(queuesPath, &queues, &error))
        return Fail(error);
    const WString folder = Folder(infPath);
    for (const WString& model : package.models)
        if (!AddDriver(package, model, folder, &error))
            return Fail(error);
    printf("%zu models installed from %s: %s (configuration), %s (data), %s (driver)\n",
           package.models.size(), infPath.c_str(), U(package.configFile).c_str(),
           U(package.dataFile).c_str(), U(package.driverFile).c_str());
    // The Windows spooler tells the driver of each queue it makes (PRINTER_EVENT_INITIALIZE)
    // once AddPrinter has made it; Wine's AddPrinterW does not, so the installer does.
    DriverLibrary driver;
    using PrinterEventFn = BOOL WINAPI(LPWSTR, INT, DWORD, LPARAM);
    PrinterEventFn* printerEvent = nullptr;
    if (!queues.empty()) {
        if (!driver.Load(options.driverLibrary, &error))
            return Fail(error);
        printerEvent = driver.Entry<PrinterEventFn>("DrvPrinterEvent");
        if (!printerEvent)
            return Fail("the driver library has no DrvPrinterEvent");
    }
    for (const auto& queue : queues) {
        WString port = W(queue.size() > 2 ? queue[2] : "LPT1:");
        if (!AddQueue(W(queue[0]), W(queue[1]), port, &error))
            return Fail(error);
        WString name = W(queue[0]);
        BOOL initialized =
            printerEvent(const_cast<LPWSTR>(P(name)), PRINTER_EVENT_INITIALIZE, 0, 0);
        printf("queue \"%s\" of \"%s\" on %s%s\n", queue[0].c_str(), queue[1].c_str(),
               U(port).c_str(), initialized ? "" : " (DrvPrinterEvent answered FALSE)");
    }
    return 0;
}

int PortAddCommand(Args& args, const Options&)
{
    int rc;
    if (!Expect(args, 1, 1, &rc))
        return rc;
    std::string error;
    if (!RegisterNetworkMonitor(&error))
        return Fail(error);
    WString key = WString(kMonitorsKey) + u"\\Ports\\" + W(args.Rest()[0]);
    HKEY hKey = nullptr;
    LONG result = RegCreateKeyExW(HKEY_LOCAL_MACHINE, P(key), 0, nullptr, 0, KEY_WRITE, nullptr,
                                  &hKey, nullptr);
    if (result != ERROR_SUCCESS)
        return Fail("cannot add the port: " + Win32Error(DWORD(result)));
    RegCloseKey(hKey);
    printf("port %s added (monitor TCPMON.DLL)\n", args.Rest()[0].c_str());
    return 0;
}
