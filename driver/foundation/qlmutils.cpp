// Names of a queue and the per-user store.
#include "qlmutils.h"

#include "qlmsnapshot.h"
#include "qlmtrace.h"
#include "wstr.h"

// Set by DllMain at load, before any call: one for the process.
HINSTANCE g_hInstance = nullptr;

namespace {

// The names' buffers are per thread: a spooler thread's name must not be another's queue.
thread_local WCHAR s_szPrinterName[kQLM_NAME_CCH];
thread_local WCHAR s_szDriverName[kQLM_NAME_CCH];

BOOL TraceUtils()
{
    return g_bTraceQLMUtils | g_bTraceQLMRegistryFunctions;
}

// Opens (creating) the queue's key below HKEY_CURRENT_USER with all access.
LONG OpenUserKey(LPCWSTR pszPrinterName, HKEY* phKey)
{
    WCHAR szKey[kQLM_USER_KEY_CCH];
    QLMFormUserKey(szKey, pszPrinterName);
    DWORD dwDisposition = 0;
    LONG lResult = RegCreateKeyExW(HKEY_CURRENT_USER, szKey, 0, nullptr, REG_OPTION_NON_VOLATILE,
                                   KEY_ALL_ACCESS, nullptr, phKey, &dwDisposition);
    ASSERT(0L == lResult);
    return lResult;
}

LONG CloseUserKey(HKEY hKey, LONG lResult)
{
    LONG lClose = RegCloseKey(hKey);
    ASSERT(0L == lClose);
    return lResult != ERROR_SUCCESS ? lResult : lClose;
}

LONG SetUserValue(HANDLE hPrinter, LPCWSTR pszTag, DWORD dwType, const BYTE* pData, DWORD cb)
{
    LPWSTR pPrinterName = QLMGetPrinterName(hPrinter);
    if (!pPrinterName) {
        ASSERT(pPrinterName);
        return ERROR_INSUFFICIENT_BUFFER;
    }
    HKEY hKey = nullptr;
    LONG lResult = OpenUserKey(pPrinterName, &hKey);
    if (lResult != ERROR_SUCCESS)
        return lResult;
    lResult = RegSetValueExW(hKey, pszTag, 0, dwType, pData, cb);
    ASSERT(0L == lResult);
    return CloseUserKey(hKey, lResult);
}

} // namespace

LPBYTE QLMGetPrinterInfo(HANDLE hPrinter, DWORD level, const WCHAR* pszAllocationFailure)
{
    QLMFetchResult result;
    LPBYTE pInfo = QLMFetchPrinterInfo(hPrinter, level, &result);
    QLMReportPrinterInfoFetch(result, pszAllocationFailure);
    return pInfo;
}

// Copies one name of the queue's PRINTER_INFO_2 into a module buffer.
static LPWSTR GetPrinterInfoName(const WCHAR* pszFunction, QLMPrinterSnapshot& snapshot,
                                 WCHAR* buffer, bool bDriverName)
{
    QLM_TRACE_SCOPE(pszFunction, TraceUtils());
    HANDLE hPrinter = snapshot.Printer();
    if (!hPrinter) {
        ASSERT(hPrinter);
        Trace(TEXT("Can't look up printer name with invalid handle"));
        return nullptr;
    }
    const PRINTER_INFO_2W* pPrinterInfo = snapshot.PrinterInfo();
    if (!pPrinterInfo) {
        ASSERT(pPrinterInfo);
        return nullptr;
    }
    for (size_t i = 0; i < kQLM_NAME_CCH; i++)
        buffer[i] = 0;
    WstrCopy(buffer, kQLM_NAME_CCH,
             bDriverName ? pPrinterInfo->pDriverName : pPrinterInfo->pPrinterName);
    return buffer;
}

LPWSTR QLMGetPrinterName(QLMPrinterSnapshot& snapshot)
{
    LPWSTR pszName =
        GetPrinterInfoName(TEXT("QLMGetPrinterName"), snapshot, s_szPrinterName, false);
    if (!pszName)
        return nullptr;
    // A connection \\host\queue becomes host-queue: a key name has no backslash to spare.
    if (pszName[0] == TEXT('\\') && pszName[1] == TEXT('\\')) {
        WCHAR szCopy[kQLM_NAME_CCH];
        WstrCopy(szCopy, kQLM_NAME_CCH, pszName + 2);
        WstrCopy(pszName, kQLM_NAME_CCH, szCopy);
        for (WCHAR* p = pszName; *p; p++) {
            if (*p == TEXT('\\')) {
                *p = TEXT('-');
                break;
            }
        }
    }
    return pszName;
}

LPWSTR QLMGetPrinterName(HANDLE hPrinter)
{
    QLMPrinterSnapshot snapshot(hPrinter);
    return QLMGetPrinterName(snapshot);
}

LPWSTR QLMGetDriverName(QLMPrinterSnapshot& snapshot)
{
    return GetPrinterInfoName(TEXT("QLMGetDriverName"), snapshot, s_szDriverName, true);
}

LPWSTR QLMGetDriverName(HANDLE hPrinter)
{
    QLMPrinterSnapshot snapshot(hPrinter);
    return QLMGetDriverName(snapshot);
}

void QLMFormUserKey(LPWSTR pszKey, LPCWSTR pszPrinterName)
{
    WstrCopy(pszKey, kQLM_USER_KEY_CCH, QLM_USER_KEY);
    WstrCat(pszKey, kQLM_USER_KEY_CCH, pszPrinterName);
}

LONG QLMSetUserDWORD(HANDLE hPrinter, LPCWSTR pszTag, const DWORD* pValue)
{
    QLM_TRACE_SCOPE(TEXT("QLMSetUserDWORD"), TraceUtils());
    return SetUserValue(hPrinter, pszTag, REG_DWORD, reinterpret_cast<const BYTE*>(pValue),
                        sizeof(DWORD));
}

LONG QLMSetUserBINARY(HANDLE hPrinter, LPCWSTR pszTag, const BYTE* pData, DWORD cbLen)
{
    QLM_TRACE_SCOPE(TEXT("QLMSetUserBINARY"), TraceUtils());
    return SetUserValue(hPrinter, pszTag, REG_BINARY, pData, cbLen);
}

LONG QLMGetUserDWORD(HANDLE hPrinter, LPCWSTR pszTag, DWORD* pValue)
{
    QLMPrinterSnapshot snapshot(hPrinter);
    return QLMGetUserDWORD(snapshot, pszTag, pValue);
}

LONG QLMGetUserDWORD(QLMPrinterSnapshot& snapshot, LPCWSTR pszTag, DWORD* pValue)
{
    QLM_TRACE_SCOPE(TEXT("QLMGetUserDWORD"), TraceUtils());
    LPWSTR pPrinterName = QLMGetPrinterName(snapshot);
    if (!pPrinterName) {
        ASSERT(pPrinterName);
        return static_cast<LONG>(GetLastError());
    }
    HKEY hKey = nullptr;
    LONG lResult = OpenUserKey(pPrinterName, &hKey);
    if (lResult != ERROR_SUCCESS)
        return lResult;
    // Read into a word of our own: a value of another size must not leave *pValue half written.
    DWORD dwValue = 0;
    DWORD cb = sizeof(dwValue);
    lResult =
        RegQueryValueExW(hKey, pszTag, nullptr, nullptr, reinterpret_cast<LPBYTE>(&dwValue), &cb);
    if (lResult == ERROR_SUCCESS && cb != sizeof(dwValue))
        lResult = ERROR_INVALID_DATA;
    if (lResult == ERROR_SUCCESS)
        *pValue = dwValue;
    else
        Trace(TEXT("QLMGetUserDWORD: %s not read, error %d"), pszTag, lResult);
    return CloseUserKey(hKey, lResult);
}

LONG QLMGetUserBINARY(LPCWSTR pPrinterName, LPCWSTR pszTag, BYTE* pData, DWORD* pcbLen)
{
    QLM_TRACE_SCOPE(TEXT("QLMGetUserBINARY"), TraceUtils());
    if (!pPrinterName) {
        ASSERT(pPrinterName);
        return static_cast<LONG>(GetLastError());
    }
    if (pPrinterName[0] == TEXT('\\') && pPrinterName[1] != 0)
        pPrinterName += 2;
    HKEY hKey = nullptr;
    LONG lResult = OpenUserKey(pPrinterName, &hKey);
    if (lResult != ERROR_SUCCESS)
        return lResult;
    lResult = RegQueryValueExW(hKey, pszTag, nullptr, nullptr, pData, pcbLen);
    return CloseUserKey(hKey, lResult);
}
