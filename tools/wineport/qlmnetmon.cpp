// qlmnetmon.dll: a port monitor for Wine, which has no standard TCP/IP port monitor. It is
// registered under the monitor name "TCPMON.DLL" and reports the ports listed under its
// registry key, so that a queue on one of them is, to the driver, a queue on a network port:
// the driver asks the printer behind it, and asks the user for an address when none answers.
// It prints nothing; a job sent to one of its ports fails.
#include <windows.h>
#include <winspool.h>
#include <winsplp.h>

#include <cwchar>
#include <string>
#include <vector>

namespace {

const wchar_t kMonitorName[] = L"TCPMON.DLL";
const wchar_t kDescription[] = L"Standard TCP/IP Port";
const wchar_t kPortsKey[] =
    L"System\\CurrentControlSet\\Control\\Print\\Monitors\\TCPMON.DLL\\Ports";

// The port names, each a subkey of the monitor's "Ports" key.
std::vector<std::wstring> PortNames()
{
    std::vector<std::wstring> names;
    HKEY hKey = nullptr;
    if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, kPortsKey, 0, KEY_READ, &hKey) != ERROR_SUCCESS)
        return names;
    wchar_t name[256];
    for (DWORD i = 0;; ++i) {
        DWORD cch = 256;
        if (RegEnumKeyExW(hKey, i, name, &cch, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS)
            break;
        names.emplace_back(name, cch);
    }
    RegCloseKey(hKey);
    return names;
}

// Level 1 or 2 records first, their strings packed behind them, as every EnumPorts answers.
BOOL WINAPI EnumPorts(HANDLE, LPWSTR pName, DWORD level, LPBYTE pPorts, DWORD cbBuf,
                      LPDWORD pcbNeeded, LPDWORD pcReturned)
{
    if (level != 1 && level != 2) {
        SetLastError(ERROR_INVALID_LEVEL);
        return FALSE;
    }
    std::vector<std::wstring> names = PortNames();
    const size_t cbRecord = level == 1 ? sizeof(PORT_INFO_1W) : sizeof(PORT_INFO_2W);
    size_t cbNeeded = 0;
    for (const std::wstring& name : names) {
        cbNeeded += cbRecord + (name.size() + 1) * sizeof(wchar_t);
        if (level == 2)
            cbNeeded += sizeof(kMonitorName) + sizeof(kDescription);
    }
    *pcbNeeded = static_cast<DWORD>(cbNeeded);
    *pcReturned = 0;
    if (!pPorts || cbBuf < cbNeeded) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return FALSE;
    }
    auto* text = reinterpret_cast<wchar_t*>(pPorts + names.size() * cbRecord);
    auto put = [&text](const wchar_t* s, size_t cch) {
        wchar_t* start = text;
        wmemcpy(text, s, cch);
        text[cch] = 0;
        text += cch + 1;
        return start;
    };
    for (size_t i = 0; i < names.size(); ++i) {
        if (level == 1) {
            auto* info = reinterpret_cast<PORT_INFO_1W*>(pPorts) + i;
            info->pName = put(names[i].c_str(), names[i].size());
        } else {
            auto* info = reinterpret_cast<PORT_INFO_2W*>(pPorts) + i;
            info->pPortName = put(names[i].c_str(), names[i].size());
            info->pMonitorName = put(kMonitorName, wcslen(kMonitorName));
            info->pDescription = put(kDescription, wcslen(kDescription));
            info->fPortType = PORT_TYPE_WRITE | PORT_TYPE_READ;
            info->Reserved = 0;
        }
    }
    *pcReturned = static_cast<DWORD>(names.size());
    return TRUE;
}

BOOL WINAPI OpenPort(HANDLE, LPWSTR pName, PHANDLE pHandle)
{
    for (const std::wstring& name : PortNames()) {
        if (pName && _wcsicmp(name.c_str(), pName) == 0) {
            *pHandle = reinterpret_cast<HANDLE>(static_cast<ULONG_PTR>(1));
            return TRUE;
        }
    }
    SetLastError(ERROR_UNKNOWN_PORT);
    return FALSE;
}

BOOL WINAPI StartDocPort(HANDLE, LPWSTR, DWORD, DWORD, LPBYTE)
{
    SetLastError(ERROR_NOT_SUPPORTED);
    return FALSE;
}

BOOL WINAPI WritePort(HANDLE, LPBYTE, DWORD, LPDWORD pcbWritten)
{
    *pcbWritten = 0;
    SetLastError(ERROR_NOT_SUPPORTED);
    return FALSE;
}

BOOL WINAPI EndDocPort(HANDLE)
{
    return TRUE;
}
BOOL WINAPI ClosePort(HANDLE)
{
    return TRUE;
}
VOID WINAPI Shutdown(HANDLE) {}

MONITOR2 g_Monitor = [] {
    MONITOR2 monitor = {};
    monitor.cbSize = sizeof(MONITOR2);
    monitor.pfnEnumPorts = EnumPorts;
    monitor.pfnOpenPort = OpenPort;
    monitor.pfnStartDocPort = StartDocPort;
    monitor.pfnWritePort = WritePort;
    monitor.pfnEndDocPort = EndDocPort;
    monitor.pfnClosePort = ClosePort;
    monitor.pfnShutdown = Shutdown;
    return monitor;
}();

} // namespace

extern "C" __declspec(dllexport) LPMONITOR2 WINAPI
    InitializePrintMonitor2(PMONITORINIT, PHANDLE phMonitor)
{
    *phMonitor = reinterpret_cast<HANDLE>(&g_Monitor);
    return &g_Monitor;
}
