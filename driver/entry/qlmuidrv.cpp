// The export table. Each export opens its trace scope and calls the one driver object; the
// names and ordinals the loader sees are in QLMUIDrv.def.
#include "tvouidrv.h"

#include "../foundation/qlmtrace.h"
#include "../foundation/qlmutils.h"
#include "../dialogs/tvoprinteripdlg.h"

#ifdef _WIN32
#define QLM_EXPORT extern "C"
#else
#define QLM_EXPORT extern "C" __attribute__((visibility("default")))
#endif

// Built at load, before DllMain; its destructor runs at unload.
static TVONTUIDriver s_Driver;

// Saves the instance for resources and dialogs, whatever the reason; no teardown here. The
// refresh's address question becomes the address dialog once the library is loaded.
QLM_EXPORT BOOL WINAPI DllMain(HINSTANCE hInstance, DWORD reason, LPVOID reserved)
{
    SetTraceModuleName(TEXT("QLMUIDrv"));
    g_hInstance = hInstance;
    DisableThreadLibraryCalls(hInstance);
    if (reason == DLL_PROCESS_ATTACH)
        QLMInstallPrinterAddressDialog();
    return TRUE;
}

// 1 and *pResID 0: every job is accepted.
QLM_EXPORT BOOL WINAPI DevQueryPrint(HANDLE hPrinter, LPDEVMODEW pDevMode, DWORD* pResID)
{
    QLM_TRACE_SCOPE(TEXT("DevQueryPrint"), TraceEntryFlags());
    return s_Driver.DevQueryPrint(hPrinter, pDevMode, pResID);
}

// The capability's answer, or GDI_ERROR.
QLM_EXPORT DWORD WINAPI DrvDeviceCapabilities(HANDLE hPrinter, PWSTR pDeviceName, WORD iDevCap,
                                              void* pvOutput, PDEVMODEW pDevMode)
{
    QLM_TRACE_SCOPE(TEXT("DrvDeviceCapabilities"), TraceEntryFlags());
    return s_Driver.DrvDeviceCapabilities(hPrinter, pDeviceName, iDevCap, pvOutput, pDevMode);
}

// The record's size when fMode is 0, else 1; never shows anything, even for DM_IN_PROMPT.
QLM_EXPORT LONG WINAPI DrvDocumentProperties(HWND hwnd, HANDLE hPrinter, PWSTR lpszDeviceName,
                                             PDEVMODEW pdmOutput, PDEVMODEW pdmInput, DWORD fMode)
{
    QLM_TRACE_SCOPE(TEXT("DrvDocumentProperties"), TraceEntryFlags());
    return s_Driver.DrvDocumentProperties(hwnd, hPrinter, lpszDeviceName, pdmOutput, pdmInput,
                                          fMode);
}

// 1, and nothing shown: the device sheet is reached through DrvDevicePropertySheets only.
QLM_EXPORT BOOL WINAPI PrinterProperties(HWND hWnd, HANDLE hPrinter)
{
    QLM_TRACE_SCOPE(TEXT("PrinterProperties"), TraceEntryFlags());
    return 1;
}

// 1: every job is accepted and no reason string is given.
QLM_EXPORT BOOL WINAPI DevQueryPrintEx(PDEVQUERYPRINT_INFO pDQPInfo)
{
    QLM_TRACE_SCOPE(TEXT("DevQueryPrintEx"), TraceEntryFlags());
    return s_Driver.DevQueryPrintEx(pDQPInfo);
}

QLM_EXPORT BOOL WINAPI DrvConvertDevMode(LPWSTR pPrinterName, PDEVMODEW pdmIn, PDEVMODEW pdmOut,
                                         PLONG pcbNeeded, DWORD fMode)
{
    QLM_TRACE_SCOPE(TEXT("DrvConvertDevMode"), TraceEntryFlags());
    return s_Driver.DrvConvertDevMode(pPrinterName, pdmIn, pdmOut, pcbNeeded, fMode);
}

QLM_EXPORT LONG WINAPI DrvDevicePropertySheets(PPROPSHEETUI_INFO pPSUIInfo, LPARAM lParam)
{
    QLM_TRACE_SCOPE(TEXT("DrvDevicePropertySheets"), TraceEntryFlags());
    return s_Driver.DrvDevicePropertySheets(pPSUIInfo, lParam);
}

// With a null pPSUIInfo, the record's size or default; otherwise one reason of a sheet's life.
QLM_EXPORT LONG WINAPI DrvDocumentPropertySheets(PPROPSHEETUI_INFO pPSUIInfo, LPARAM lParam)
{
    QLM_TRACE_SCOPE(TEXT("DrvDocumentPropertySheets"), TraceEntryFlags());
    return s_Driver.DrvDocumentPropertySheets(pPSUIInfo, lParam);
}

QLM_EXPORT BOOL WINAPI DrvPrinterEvent(LPWSTR pPrinterName, INT DriverEvent, DWORD Flags,
                                       LPARAM lParam)
{
    QLM_TRACE_SCOPE(TEXT("DrvPrinterEvent"), TraceEntryFlags());
    return s_Driver.DrvPrinterEvent(pPrinterName, DriverEvent, Flags, lParam);
}

// 0 for DOCUMENTEVENT_QUERYFILTER, so that every event is sent; 1 for every other event, on
// which the driver takes no action.
QLM_EXPORT int WINAPI DrvDocumentEvent(HANDLE hPrinter, HDC hdc, int iEsc, ULONG cbIn, PVOID pvIn,
                                       ULONG cbOut, PVOID pvOut)
{
    QLM_TRACE_SCOPE(TEXT("DrvDocumentEvent"), TraceEntryFlags());
    Trace(TEXT("DrvDocumentEvent: %s"), DocumentEventName(iEsc));
    return iEsc == DOCUMENTEVENT_QUERYFILTER ? 0 : 1;
}

// The window procedures are exported by ordinal as well, each from its unit: the dialog base's
// and the tab base's, and the accounting dialog's digits-only filter (QLMUIDrv.def).
