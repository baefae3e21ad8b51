// The Linux host's own C++ interface: what tests and tools use to set up and inspect the state
// that Windows keeps in the spooler and the registry. The driver never includes this header; it
// sees only the Win32 names of platform/win32.h.
#pragma once

#include "../win32.h"
#include "../usersim/controlstate.h"
#include "../usersim/userscript.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace host {

// ---- The store ---------------------------------------------------------------------------
//
// One SQLite database holds printers, printer data, ports, registry keys and values, and the
// host settings. OpenStore(":memory:") gives a private store for a test. Without an explicit
// OpenStore, the first Win32 call opens HomeDirectory()/store.db. Every write is one
// transaction; a write by another process is seen by the next read.

// Opens (creating if needed) the store at path, or ":memory:". Closes any store open before.
// Returns false with a message in *error when the file cannot be opened or is not a store.
bool OpenStore(const std::string& path, std::string* error = nullptr);
void CloseStore();
// $QLMHOST_HOME, else ~/.qlmhost. Created on first use.
std::string HomeDirectory();
// Makes dir the home directory for this process (what qlmhost --home does).
void SetHomeDirectory(const std::string& dir);
// Maps a Windows path to a host path: "C:\X\Y" -> HomeDirectory()/X/Y; any other path with
// backslashes has them turned into slashes.
std::string MapWindowsPath(const std::u16string& windowsPath);

// ---- Text -------------------------------------------------------------------------------
std::u16string Utf8ToUtf16(const std::string& text);
std::string Utf16ToUtf8(const std::u16string& text);
std::string Utf16ToUtf8(const WCHAR* text); // null gives ""

// ---- Printers and ports -----------------------------------------------------------------
struct PrinterRecord
{
    std::u16string name;
    std::u16string driverName;
    std::u16string portName;
    std::u16string comment;
    std::u16string location;
    DWORD attributes = PRINTER_ATTRIBUTE_QUEUED | PRINTER_ATTRIBUTE_LOCAL;
    std::vector<uint8_t> devMode; // empty: the queue has no stored record
};
// Adds a queue; false if the name exists already or is empty.
bool AddPrinter(const PrinterRecord& printer);
bool RemovePrinter(const std::u16string& name); // also removes its printer data
bool GetPrinterRecord(const std::u16string& name, PrinterRecord* printer);
std::vector<PrinterRecord> ListPrinters();

struct PortRecord
{
    std::u16string name;
    std::u16string monitorName;
    std::u16string description;
};
bool AddPort(const PortRecord& port); // replaces a port of the same name
bool RemovePort(const std::u16string& name);
std::vector<PortRecord> ListPorts();

// ---- Printer data -----------------------------------------------------------------------
// GetPrinterDataW/SetPrinterDataW use the key "PrinterDriverData", as on Windows.
struct DataValue
{
    std::u16string key;
    std::u16string name;
    DWORD type = REG_NONE;
    std::vector<uint8_t> data;
};
bool SetPrinterData(const std::u16string& printer, const DataValue& value);
bool GetPrinterData(const std::u16string& printer, const std::u16string& key,
                    const std::u16string& name, DataValue* value);
// In the order of key and then name, compared without case.
std::vector<DataValue> ListPrinterData(const std::u16string& printer);

// ---- Registry -----------------------------------------------------------------------------
// path is "HKCU\..." or "HKLM\..." (also HKEY_CURRENT_USER\, HKEY_LOCAL_MACHINE\). HKCU is the
// hive of the current user (UserName()).
bool RegistryKeyExists(const std::string& path);
std::vector<std::u16string> RegistrySubKeys(const std::string& path);

// ---- Host settings ----------------------------------------------------------------------
// The name GetUserNameW gives and whose HKEY_CURRENT_USER is used. Default: the login name.
void SetUserName(const std::u16string& name);
std::u16string UserName();
// The measurement system GetLocaleInfoW(LOCALE_IMEASURE) reports: true "0" (metric), false "1".
void SetMetric(bool metric);
bool IsMetric();
// What GetVersionExW reports. Default 10.0.19045.
void SetSystemVersion(DWORD major, DWORD minor, DWORD build);
void GetSystemVersion(DWORD* major, DWORD* minor, DWORD* build);
// The Windows path GetPrinterDriverDirectoryW reports for the current environment.
std::u16string DriverDirectory();
// Installs a driver file as the system does: into the version subdirectory of the driver
// directory (3 for current drivers, 2 for older ones), so that the driver finds it
// under <DriverDirectory()>\<version>\<fileName>. Copies sourcePath there, creating the
// directories; a file already installed is replaced as a whole, never seen half-written.
// False with a message in *error when the name is not a plain file name or the copy fails.
bool InstallDriverFile(const std::string& sourcePath, const std::u16string& fileName, int version,
                       std::string* error = nullptr);
// The host path of an installed driver file (whether or not it is there).
std::string InstalledDriverFilePath(const std::u16string& fileName, int version);

// ---- Call counts ----------------------------------------------------------------------------
// How often each spooler and registry name was called from outside the host since the last
// reset: what a call into the spooler service would cost on Windows.
std::vector<std::pair<std::string, long long>> CallCounts(); // by name
void ResetCallCounts();
// From now on counts only the calls made from the code of the loaded module (executable or
// shared library) that holds address, as Windows counts a module's imports; null counts every
// caller again. False when no loaded module holds address.
bool CountCallsFromModuleOf(const void* address);

// ---- Handle counts -------------------------------------------------------------------------
// What the host's tables hold at this moment, for a process that must stay flat through days
// of calls (a soak samples them). GDI objects are counted by LiveObjects() (hostgdi.h).
struct HandleCounts
{
    size_t windows = 0;
    size_t menus = 0;
    size_t printers = 0;     // open printer handles
    size_t registryKeys = 0; // open registry keys
    size_t files = 0;        // open file handles
    size_t modules = 0;      // loaded modules (LoadLibraryW), not the cache of unloaded images
    size_t memoryBlocks = 0; // GlobalAlloc and LocalAlloc blocks
    size_t pages = 0;        // property sheet pages not yet destroyed
};
HandleCounts CountHandles();

// ---- Debug output and message boxes -----------------------------------------------------
// OutputDebugStringW goes to standard error when QLMHOST_TRACE is set, and to the sink when
// one is installed (tests); the sink receives each string as it was given.
void SetDebugOutputSink(std::function<void(const std::u16string&)> sink);

struct MessageBoxCall
{
    HWND owner;
    std::u16string text;
    std::u16string caption;
    UINT type;
    int answer;
};
// A message box takes the next queued answer, else its default button. Every box is recorded.
void QueueMessageBoxAnswer(int answer);
void ClearMessageBoxAnswers();
std::vector<MessageBoxCall> MessageBoxCalls();
void ClearMessageBoxCalls();

// ---- File pickers -------------------------------------------------------------------------
// GetOpenFileNameW takes the next queued answer: a path, returned as the user's choice, or
// nothing, which is Cancel. With no answer queued the dialog is cancelled. A path that
// OFN_FILEMUSTEXIST or OFN_PATHMUSTEXIST rules out is refused, as the dialog refuses it, and
// the next answer is taken. Every dialog's title is recorded.
void QueueFilePickerAnswer(std::optional<std::u16string> path);
void ClearFilePickerAnswers();
std::vector<std::u16string> FilePickerTitles();
void ClearFilePickerTitles();

// How often DebugBreak was called; it only breaks into a debugger that is attached.
int DebugBreakCount();

// ---- User simulation, window dumps and the screen -------------------------------------------
//
// Scripts of a person's actions (platform/usersim/userscript.h gives the language). Modal runs
// (dialogs, message boxes, file pickers, popup menus) take their actions from the script; with
// none left a dialog ends as Cancel and a message box answers its default button.
using UserAction = usersim::UserAction;
// Parses and installs a script, replacing any; false with "line N: ..." in *error, nothing
// installed. Installing a script clears the failures recorded before.
bool SetUserScript(const std::string& script, std::string* error);
// Adds a script's actions behind those still to come; its lines count from 1 of their own.
bool AppendUserScript(const std::string& script, std::string* error);
void ClearUserScript();
bool PeekUserAction(UserAction* action); // the next action, not taken
bool TakeUserAction(UserAction* action);
// Performs a control-level action (click, check, uncheck, select, select-text, type, key,
// spin, slide, expect) on a control of window; false, with a failure recorded, when the
// control is missing, disabled, hidden or of the wrong kind, or an expect does not hold.
bool PerformUserAction(HWND window, const UserAction& action);
void RecordUserScriptFailure(const UserAction& action,
                             const std::string& message); // "line N: message"
std::vector<std::string> UserScriptFailures();
// The screen GetSystemMetrics reports; 1920x1080 unless set.
void SetScreenSize(int cx, int cy);
int MessageBeepCount();

// The state of a window's controls, for tests, qlmhost and people, in the words both platforms
// use (platform/usersim/controlstate.h).
using ControlState = usersim::ControlState;
std::vector<ControlState> DescribeWindow(HWND window); // child controls in z-order
// A readable text of the same, one control a line, preceded by the window's own line.
std::string DumpWindow(HWND window);

} // namespace host
