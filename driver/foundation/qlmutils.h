// Names of a queue and the per-user store, plus the module's instance handle.
//
// The per-user store is HKEY_CURRENT_USER\Software\Tarvo\Wide Format\<printer name>. The two
// name look-ups return a module buffer that the next call of the same function overwrites:
// copy the text at once.
#pragma once

#include "../../platform/win32.h"

class QLMPrinterSnapshot;

// The instance handle that DllMain saved, for resources and dialogs.
extern HINSTANCE g_hInstance;

// Subkey of HKEY_CURRENT_USER under which each queue has its key.
#define QLM_USER_KEY TEXT("Software\\Tarvo\\Wide Format\\")
// Room for the subkey text and a printer name.
constexpr size_t kQLM_USER_KEY_CCH = 32 + MAX_PATH;
constexpr size_t kQLM_NAME_CCH = MAX_PATH; // 520 bytes

// PRINTER_INFO_<level> of the printer, fetched in the platform's two calls into a global
// memory block that the caller frees with GlobalFree; null when it cannot be had. A failing
// second call asserts; pszAllocationFailure, when given, is traced if the block cannot be had.
LPBYTE QLMGetPrinterInfo(HANDLE hPrinter, DWORD level, const WCHAR* pszAllocationFailure = nullptr);

// The queue's name fit for a registry key: \\host\queue becomes host-queue. Null on failure.
LPWSTR QLMGetPrinterName(HANDLE hPrinter);
// The queue's driver name, as the spooler has it. Null on failure.
LPWSTR QLMGetDriverName(HANDLE hPrinter);
// The same from the PRINTER_INFO_2 that the call's snapshot holds.
LPWSTR QLMGetPrinterName(QLMPrinterSnapshot& snapshot);
LPWSTR QLMGetDriverName(QLMPrinterSnapshot& snapshot);

// Fills pszKey (kQLM_USER_KEY_CCH characters) with the per-user subkey of pszPrinterName.
void QLMFormUserKey(LPWSTR pszKey, LPCWSTR pszPrinterName);

// The per-user store. Each creates the queue's key when it is absent, also for a read, and
// returns the registry's code (0 on success).
LONG QLMSetUserDWORD(HANDLE hPrinter, LPCWSTR pszTag, const DWORD* pValue);
LONG QLMSetUserBINARY(HANDLE hPrinter, LPCWSTR pszTag, const BYTE* pData, DWORD cbLen);
LONG QLMGetUserDWORD(HANDLE hPrinter, LPCWSTR pszTag, DWORD* pValue);
LONG QLMGetUserDWORD(QLMPrinterSnapshot& snapshot, LPCWSTR pszTag, DWORD* pValue);
// Takes the printer's name, not a handle, and drops the first two characters of a name that
// begins with a backslash without replacing another: pass the text QLMGetPrinterName gave to
// reach the key the set operations use.
LONG QLMGetUserBINARY(LPCWSTR pPrinterName, LPCWSTR pszTag, BYTE* pData, DWORD* pcbLen);

// The wait cursor for as long as the object lives; the cursor that was there comes back.
class QLMWaitCursor
{
public:
    QLMWaitCursor() : m_hOld(SetCursor(LoadCursorW(nullptr, IDC_WAIT))) {}
    ~QLMWaitCursor() { SetCursor(m_hOld); }
    QLMWaitCursor(const QLMWaitCursor&) = delete;
    QLMWaitCursor& operator=(const QLMWaitCursor&) = delete;

private:
    HCURSOR m_hOld;
};
