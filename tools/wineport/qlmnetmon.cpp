// qlmnetmon.dll: a port monitor for Wine, which has no standard TCP/IP port monitor. It is
// registered under the monitor name "TCPMON.DLL" and reports the ports listed under its
// registry key, so that a queue on one of them is, to the driver, a queue on a network port:
// the driver asks the printer behind it, and asks the user for an address when none answers.
// It prints nothing; a job sent to one of its ports fails.
//
// Wine's spooler loads every port monitor for each EnumPorts and frees it after, where the
// Windows spooler keeps its monitors loaded. So the library has no C runtime to start: its
// entry point is its own, its data is constant, and loading it adds as little as it can to a
// port list under Wine.
#include <windows.h>
#include <winspool.h>
#include <winsplp.h>

namespace {

const wchar_t kMonitorName[] = L"TCPMON.DLL";
const wchar_t kDescription[] = L"Standard TCP/IP Port";
constexpr size_t kMonitorNameCch = sizeof(kMonitorName) / sizeof(wchar_t) - 1;
constexpr size_t kDescriptionCch = sizeof(kDescription) / sizeof(wchar_t) - 1;
const wchar_t kPortsKey[] =
    L"System\\CurrentControlSet\\Control\\Print\\Monitors\\TCPMON.DLL\\Ports";

// The port names, each a subkey of the monitor's "Ports" key; as many as fit.
struct PortNames
{
    static constexpr DWORD kMax = 64;
    static constexpr DWORD kCch = 256;
    DWORD count = 0;
    wchar_t names[kMax][kCch];
    DWORD lengths[kMax];

    PortNames()
    {
        HKEY hKey = nullptr;
        if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, kPortsKey, 0, KEY_READ, &hKey) != ERROR_SUCCESS)
            return;
        for (DWORD i = 0; count < kMax; ++i) {
            DWORD cch = kCch;
            if (RegEnumKeyExW(hKey, i, names[count], &cch, nullptr, nullptr, nullptr, nullptr) !=
                ERROR_SUCCESS)
                break;
            lengths[count++] = cch;
        }
        RegCloseKey(hKey);
    }
};

// Level 1 or 2 records first, their strings packed behind them, as every EnumPorts answers.
BOOL WINAPI EnumPorts(HANDLE, LPWSTR pName, DWORD level, LPBYTE pPorts, DWORD cbBuf,
                      LPDWORD pcbNeeded, LPDWORD pcReturned)
{
    if (level != 1 && level != 2) {
        SetLastError(ERROR_INVALID_LEVEL);
        return FALSE;
    }
    PortNames ports;
    const size_t cbRecord = level == 1 ? sizeof(PORT_INFO_1W) : sizeof(PORT_INFO_2W);
    size_t cbNeeded = 0;
    for (DWORD i = 0; i < ports.count; ++i) {
        cbNeeded += cbRecord + (ports.lengths[i] + 1) * sizeof(wchar_t);
        if (level == 2)
            cbNeeded += sizeof(kMonitorName) + sizeof(kDescription);
    }
    *pcbNeeded = static_cast<DWORD>(cbNeeded);
    *pcReturned = 0;
    if (!pPorts || cbBuf < cbNeeded) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return FALSE;
    }
    wchar_t* text = reinterpret_cast<wchar_t*>(pPorts + ports.count * cbRecord);
    auto put = [&text](const wchar_t* s, size_t cch) {
        wchar_t* start = text;
        for (size_t k = 0; k < cch; ++k)
            text[k] = s[k];
        text[cch] = 0;
        text += cch + 1;
        return start;
    };
    for (DWORD i = 0; i < ports.count; ++i) {
        if (level == 1) {
            auto* info = reinterpret_cast<PORT_INFO_1W*>(pPorts) + i;
            info->pName = put(ports.names[i], ports.lengths[i]);
        } else {
            auto* info = reinterpret_cast<PORT_INFO_2W*>(pPorts) + i;
            info->pPortName = put(ports.names[i], ports.lengths[i]);
            info->pMonitorName = put(kMonitorName, kMonitorNameCch);
            info->pDescription = put(kDescription, kDescriptionCch);
            info->fPortType = PORT_TYPE_WRITE | PORT_TYPE_READ;
            info->Reserved = 0;
        }
    }
    *pcReturned = ports.count;
    return TRUE;
}

BOOL WINAPI OpenPort(HANDLE, LPWSTR pName, PHANDLE pHandle)
{
    PortNames ports;
    for (DWORD i = 0; i < ports.count; ++i) {
        if (pName && lstrcmpiW(ports.names[i], pName) == 0) {
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

MONITOR2 g_Monitor = {
    .cbSize = sizeof(MONITOR2),
    .pfnEnumPorts = EnumPorts,
    .pfnOpenPort = OpenPort,
    .pfnStartDocPort = StartDocPort,
    .pfnWritePort = WritePort,
    .pfnEndDocPort = EndDocPort,
    .pfnClosePort = ClosePort,
    .pfnShutdown = Shutdown,
};

} // namespace

extern "C" __declspec(dllexport) LPMONITOR2 WINAPI
    InitializePrintMonitor2(PMONITORINIT, PHANDLE phMonitor)
{
    *phMonitor = reinterpret_cast<HANDLE>(&g_Monitor);
    return &g_Monitor;
}

// The entry point in place of the C runtime's: there is nothing to set up.
extern "C" BOOL WINAPI QLMNetMonEntry(HINSTANCE, DWORD, LPVOID)
{
    return TRUE;
}
