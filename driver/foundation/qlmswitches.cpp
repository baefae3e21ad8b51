// Debug switches read from "DebugSettings".
#include "qlmswitches.h"

#include "qlmsnapshot.h"
#include "qlmtrace.h"

namespace {

// A switch after its read: the value, or the failure line with the target as it stays. A read
// succeeds only with four bytes: a shorter value would leave part of the word unwritten.
BOOL TakeDebugSwitch(DWORD rc, DWORD cbNeeded, DWORD value, const WCHAR* pszName, BOOL* pTarget)
{
    if (rc == ERROR_SUCCESS && cbNeeded == sizeof(value)) {
        *pTarget = static_cast<BOOL>(value);
        return TRUE;
    }
    Trace(TEXT("GetPrinterDataEx returns %x, GetLastError() is %x, %s is %x"), rc, GetLastError(),
          pszName, *pTarget);
    return FALSE;
}

} // namespace

BOOL ReadDebugSwitch(HANDLE hPrinter, const WCHAR* pszName, BOOL* pTarget)
{
    DWORD value = 0;
    DWORD cbNeeded = 0;
    DWORD rc = GetPrinterDataExW(hPrinter, QLM_DEBUG_SETTINGS_KEY, pszName, nullptr,
                                 reinterpret_cast<LPBYTE>(&value), sizeof(value), &cbNeeded);
    return TakeDebugSwitch(rc, cbNeeded, value, pszName, pTarget);
}

BOOL ReadDebugSwitch(QLMPrinterSnapshot& snapshot, const WCHAR* pszName, BOOL* pTarget)
{
    DWORD value = 0;
    DWORD cbNeeded = 0;
    DWORD rc = snapshot.GetData(QLM_DEBUG_SETTINGS_KEY, pszName, nullptr,
                                reinterpret_cast<LPBYTE>(&value), sizeof(value), &cbNeeded);
    return TakeDebugSwitch(rc, cbNeeded, value, pszName, pTarget);
}

void ReadAllDebugSwitches(QLMPrinterSnapshot& snapshot)
{
    ReadDebugSwitch(snapshot, TEXT("DBG_AssertMsgBox"), &g_bAssertMsgBox);
    ReadDebugSwitch(snapshot, TEXT("DBG_Toggle_EMF_Spooling"), &g_bToggleEMFSpooling);
    for (const TVOTraceFlag* row = g_TraceFlags; row->pFlag; row++) {
        ReadDebugSwitch(snapshot, row->pszName, row->pFlag);
        Trace(TEXT("%s = %d"), row->pszName, *row->pFlag);
    }
}

void ReadAllDebugSwitches(HANDLE hPrinter)
{
    QLMPrinterSnapshot snapshot(hPrinter);
    ReadAllDebugSwitches(snapshot);
}
