// TVODevMode: the accounting identifiers. The pair the driver calls only traces, so the
// identifiers travel in the record alone; the store pair defines the per-user value's format
// and is connected by one line in either of the first pair, should a build want it.
#include "tvodm_accounting.h"

#include "tvodm.h"

#include "../foundation/qlmtrace.h"
#include "../foundation/qlmutils.h"

#include <cstring>

namespace {

BOOL TraceAccounting()
{
    return g_bTraceTVOAcct | g_bTraceTVODevMode;
}

// Opens or creates the printer's per-user key; false after tracing the failure under the
// caller's message.
bool OpenAccountingKey(HANDLE hPrinter, REGSAM access, const WCHAR* pszFailure, HKEY* phKey)
{
    LPWSTR pPrinterName = QLMGetPrinterName(hPrinter);
    if (!pPrinterName) {
        ASSERT(pPrinterName);
        Trace(TEXT("Can't get printer name, returning"));
        return false;
    }
    WCHAR szKey[kQLM_USER_KEY_CCH];
    QLMFormUserKey(szKey, pPrinterName);
    LONG rc = RegCreateKeyExW(HKEY_CURRENT_USER, szKey, 0, nullptr, REG_OPTION_NON_VOLATILE, access,
                              nullptr, phKey, nullptr);
    if (rc != ERROR_SUCCESS) {
        Trace(pszFailure, rc);
        return false;
    }
    return true;
}

} // namespace

void TVODevMode::getAccountingInfo(HANDLE hPrinter)
{
    QLM_TRACE_SCOPE(TEXT("TVODevMode::getAccountingInfo"), TraceAccounting());
    Trace(TEXT("hPrinter=%p"), hPrinter);
}

void TVODevMode::setAccountingInfo(HANDLE hPrinter, BOOL bClean)
{
    QLM_TRACE_SCOPE(TEXT("TVODevMode::setAccountingInfo"), TraceAccounting());
    Trace(TEXT("hPrinter=%p, bClean=%d"), hPrinter, bClean);
}

void TVODevMode::GetAccountingInfo(HANDLE hPrinter)
{
    QLM_TRACE_SCOPE(TEXT("TVODevMode::GetAccountingInfo"), TraceAccounting());
    HKEY hKey = nullptr;
    if (!OpenAccountingKey(hPrinter, KEY_ALL_ACCESS,
                           TEXT("GetAccountingInfo, RegCreateKeyEx failed, rc=%d"), &hKey))
        return;

    TVOAccountingBlock block;
    memset(&block, 0, sizeof(block));
    DWORD dwType = 0;
    DWORD cbData = sizeof(block);
    LONG rc = RegQueryValueExW(hKey, TEXT("Accounting"), nullptr, &dwType,
                               reinterpret_cast<LPBYTE>(&block), &cbData);
    if (rc != ERROR_SUCCESS) {
        Trace(TEXT("failed, retrying with old-style accounting"));
        cbData = kACCOUNTING_OLD_SIZE;
        rc = RegQueryValueExW(hKey, TEXT("Accounting"), nullptr, &dwType,
                              reinterpret_cast<LPBYTE>(&block), &cbData);
        // The old style has no texts, and a failed read leaves nothing to keep.
        memset(block.dmxJBAUser, 0, sizeof(block.dmxJBAUser));
        memset(block.dmxJBAAcct, 0, sizeof(block.dmxJBAAcct));
        if (rc != ERROR_SUCCESS)
            memset(&block, 0, kACCOUNTING_OLD_SIZE);
    }
    m_lpDM->dmxRememberAccount = block.dmxRememberAccount;
    m_lpDM->dmxAccount = block.dmxAccount;
    m_lpDM->dmxSubAccount = block.dmxSubAccount;
    memcpy(m_lpDM->dmxJBAUser, block.dmxJBAUser, sizeof(block.dmxJBAUser));
    memcpy(m_lpDM->dmxJBAAcct, block.dmxJBAAcct, sizeof(block.dmxJBAAcct));
    RegCloseKey(hKey);
}

void TVODevMode::SetAccountingInfo(HANDLE hPrinter, BOOL bClean)
{
    QLM_TRACE_SCOPE(TEXT("TVODevMode::SetAccountingInfo"), TraceAccounting());
    HKEY hKey = nullptr;
    if (!OpenAccountingKey(hPrinter, KEY_WRITE,
                           TEXT("SetAccountingInfo, RegCreateKeyEx failed, rc=%d"), &hKey))
        return;

    TVOAccountingBlock block;
    memset(&block, 0, sizeof(block));
    // A clean close forgets identifiers the user did not ask to remember.
    if (!(bClean && m_lpDM->dmxRememberAccount == 0)) {
        block.dmxRememberAccount = m_lpDM->dmxRememberAccount;
        block.dmxAccount = m_lpDM->dmxAccount;
        block.dmxSubAccount = m_lpDM->dmxSubAccount;
        memcpy(block.dmxJBAUser, m_lpDM->dmxJBAUser, sizeof(block.dmxJBAUser));
        memcpy(block.dmxJBAAcct, m_lpDM->dmxJBAAcct, sizeof(block.dmxJBAAcct));
    }
    LONG rc = RegSetValueExW(hKey, TEXT("Accounting"), 0, REG_BINARY,
                             reinterpret_cast<const BYTE*>(&block), sizeof(block));
    if (rc != ERROR_SUCCESS) {
        // The key stays open on this path, as it always has.
        Trace(TEXT("SetAccountingInfo, RegSetValueEx failed, rc=%d"), rc);
        return;
    }
    RegCloseKey(hKey);
}
