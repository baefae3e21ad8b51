// DrvPrinterEvent: a new queue gets the printer's state as its stored record; a queue that goes
// away loses its per-user key. Every other event succeeds without work.
#include "tvouidrv.h"

#include "../config/tvoconfg.h"
#include "../devmode/tvodm.h"
#include "../dialogue/qlmrefresh.h"
#include "../foundation/qlmtrace.h"
#include "../foundation/qlmutils.h"

#include <new>

// The entry points' trace flags, shared with tvouidrv.cpp.
BOOL TraceEntryFlags();

namespace {

// Only the key of the user in whose context the call runs goes.
BOOL DeleteUserKey(LPCWSTR pPrinterName)
{
    WCHAR name[kQLM_NAME_CCH] = {};
    if (pPrinterName) {
        for (size_t i = 0; i + 1 < kQLM_NAME_CCH && pPrinterName[i]; ++i)
            name[i] = pPrinterName[i];
    }
    HANDLE hPrinter = nullptr;
    if (OpenPrinterW(name, &hPrinter, nullptr)) {
        // \\host\queue has its key under host-queue.
        LPCWSTR pszKeyName = QLMGetPrinterName(hPrinter);
        if (pszKeyName) {
            WCHAR copy[kQLM_NAME_CCH] = {};
            for (size_t i = 0; i + 1 < kQLM_NAME_CCH && pszKeyName[i]; ++i)
                copy[i] = pszKeyName[i];
            for (size_t i = 0; i < kQLM_NAME_CCH; ++i)
                name[i] = copy[i];
        }
        ClosePrinter(hPrinter);
    } else {
        Trace(TEXT("Couldn't open printer to get handle, GetLastError is %d"), GetLastError());
    }
    WCHAR subkey[kQLM_USER_KEY_CCH];
    QLMFormUserKey(subkey, name);
    LSTATUS rc = RegDeleteKeyW(HKEY_CURRENT_USER, subkey);
    Trace(TEXT("RegDeleteKeyW returns %d"), rc);
    return 1;
}

// The refresh must come before getDeviceMode: a new queue has no stored record, so
// getDeviceMode saves the record at hand, which then holds what the printer said.
BOOL InitialRefresh(LPWSTR pPrinterName)
{
    if (!pPrinterName)
        return 0;
    if (!pPrinterName[0]) {
        Trace(TEXT("DrvPrinterEvent: Printer name is invalid"));
        ASSERT(pPrinterName[0]);
        return 0;
    }
    if (QLMIsMajorVersion6())
        return 1;
    HANDLE hPrinter = nullptr;
    if (!OpenPrinterW(pPrinterName, &hPrinter, nullptr) || !hPrinter) {
        Trace(TEXT("Failed to open printer"));
        return 1;
    }
    TVOPrinterConfiguration* pConfig = new (std::nothrow) TVOPrinterConfiguration(pPrinterName);
    TVODevMode* pDevMode = new (std::nothrow) TVODevMode(hPrinter);
    if (!pConfig || !pDevMode || !pDevMode->m_lpDM) {
        ASSERT(pConfig && pDevMode && pDevMode->m_lpDM);
        delete pConfig;
        delete pDevMode;
        ClosePrinter(hPrinter);
        return 0;
    }
    pConfig->setPrinterHandle(hPrinter);
    if (QLMPortIsBiDi(hPrinter)) {
        int rc = QLMRefresh(pConfig, pDevMode->m_lpDM, GetDesktopWindow());
        Trace(TEXT("QLMRefresh returns %d"), rc);
    }
    pDevMode->m_lpDM->dmPublic.dmColor = 1;
    if (IsHighResolutionModel(pConfig->m_PrinterModel))
        pDevMode->m_lpDM->dmPublic.dmPrintQuality = 600;
    if (!pDevMode->getDeviceMode(hPrinter, TEXT(""), pPrinterName, nullptr)) {
        Trace(TEXT("getDeviceMode failed"));
        ASSERT(0);
        delete pDevMode;
        delete pConfig;
        ClosePrinter(hPrinter);
        return 0;
    }
    delete pConfig;
    ClosePrinter(hPrinter);
    delete pDevMode;
    return 1;
}

} // namespace

BOOL QLMIsMajorVersion6()
{
    OSVERSIONINFOW info = {};
    info.dwOSVersionInfoSize = sizeof(info);
    if (!GetVersionExW(&info))
        return 1;
    return info.dwMajorVersion == 6;
}

BOOL TVONTUIDriver::DrvPrinterEvent(LPWSTR pPrinterName, INT DriverEvent, DWORD Flags,
                                    LPARAM lParam)
{
    QLM_TRACE_SCOPE(TEXT("TVONTUIDriver::DrvPrinterEvent"), TraceEntryFlags());
    Trace(TEXT("DriverEvent=%d, Flags=0x%X, lParam=%p"), DriverEvent, Flags,
          reinterpret_cast<void*>(lParam));
    switch (DriverEvent) {
    case PRINTER_EVENT_DELETE_CONNECTION:
    case PRINTER_EVENT_DELETE:
        return DeleteUserKey(pPrinterName);
    case PRINTER_EVENT_INITIALIZE:
        return InitialRefresh(pPrinterName);
    default:
        return 1;
    }
}
