// TVONTUIDriver: the immediate answers, the switch reading, and the entries whose work is
// still to come, which answer with their failure value.
#include "tvouidrv.h"

#include "../foundation/qlmtrace.h"

BOOL TraceEntryFlags()
{
    return g_bTraceTVONTUIDriver | g_bTraceUIDDI;
}

TVONTUIDriver::~TVONTUIDriver() {}

// Every job is accepted for every printer and no reason is given; the checks of a job against
// the printer take place in the sheets.
BOOL TVONTUIDriver::DevQueryPrint(HANDLE hPrinter, LPDEVMODEW pDevMode, DWORD* pResID)
{
    QLM_TRACE_SCOPE(TEXT("TVONTUIDriver::DevQueryPrint"), TraceEntryFlags());
    if (pResID)
        *pResID = 0;
    return 1;
}

BOOL TVONTUIDriver::DevQueryPrintEx(PDEVQUERYPRINT_INFO pDQPInfo)
{
    QLM_TRACE_SCOPE(TEXT("TVONTUIDriver::DevQueryPrintEx"), TraceEntryFlags());
    return 1;
}

void TVONTUIDriver::ReadDebugSwitches(HANDLE hPrinter, WORD reason)
{
    QLM_TRACE_SCOPE(TEXT("TVONTUIDriver::ReadDebugSwitches"), TraceEntryFlags());
    if (reason == PROPSHEETUI_REASON_DESTROY)
        return;
    ReadAllDebugSwitches(hPrinter);
}

DWORD TVONTUIDriver::DrvDeviceCapabilities(HANDLE hPrinter, PWSTR pDeviceName, WORD iDevCap,
                                           void* pvOutput, PDEVMODEW pDevMode)
{
    QLM_TRACE_SCOPE(TEXT("TVONTUIDriver::DrvDeviceCapabilities"), TraceEntryFlags());
    return GDI_ERROR;
}

BOOL TVONTUIDriver::DrvConvertDevMode(LPWSTR pPrinterName, PDEVMODEW pdmIn, PDEVMODEW pdmOut,
                                      PLONG pcbNeeded, DWORD fMode)
{
    QLM_TRACE_SCOPE(TEXT("TVONTUIDriver::DrvConvertDevMode"), TraceEntryFlags());
    SetLastError(ERROR_NOT_SUPPORTED);
    return FALSE;
}

BOOL TVONTUIDriver::DrvPrinterEvent(LPWSTR pPrinterName, INT DriverEvent, DWORD Flags,
                                    LPARAM lParam)
{
    QLM_TRACE_SCOPE(TEXT("TVONTUIDriver::DrvPrinterEvent"), TraceEntryFlags());
    return FALSE;
}

LONG TVONTUIDriver::DrvDocumentProperties(HWND hwnd, HANDLE hPrinter, PWSTR lpszDeviceName,
                                          PDEVMODEW pdmOutput, PDEVMODEW pdmInput, DWORD fMode)
{
    QLM_TRACE_SCOPE(TEXT("TVONTUIDriver::DrvDocumentProperties"), TraceEntryFlags());
    return 0;
}

LONG TVONTUIDriver::DrvDevicePropertySheets(PPROPSHEETUI_INFO pPSUIInfo, LPARAM lParam)
{
    QLM_TRACE_SCOPE(TEXT("TVONTUIDriver::DrvDevicePropertySheets"), TraceEntryFlags());
    return -1;
}

LONG TVONTUIDriver::DrvDocumentPropertySheets(PPROPSHEETUI_INFO pPSUIInfo, LPARAM lParam)
{
    QLM_TRACE_SCOPE(TEXT("TVONTUIDriver::DrvDocumentPropertySheets"), TraceEntryFlags());
    return -1;
}

namespace {

struct DocumentEventRow
{
    int iEsc;
    const WCHAR* pszName;
};

const DocumentEventRow kDocumentEvents[] = {
    {DOCUMENTEVENT_CREATEDCPRE, TEXT("DOCUMENTEVENT_CREATEDCPRE")},
    {DOCUMENTEVENT_CREATEDCPOST, TEXT("DOCUMENTEVENT_CREATEDCPOST")},
    {DOCUMENTEVENT_RESETDCPRE, TEXT("DOCUMENTEVENT_RESETDCPRE")},
    {DOCUMENTEVENT_RESETDCPOST, TEXT("DOCUMENTEVENT_RESETDCPOST")},
    {DOCUMENTEVENT_STARTDOC, TEXT("DOCUMENTEVENT_STARTDOC")},
    {DOCUMENTEVENT_STARTPAGE, TEXT("DOCUMENTEVENT_STARTPAGE")},
    {DOCUMENTEVENT_ENDPAGE, TEXT("DOCUMENTEVENT_ENDPAGE")},
    {DOCUMENTEVENT_ENDDOC, TEXT("DOCUMENTEVENT_ENDDOC")},
    {DOCUMENTEVENT_ABORTDOC, TEXT("DOCUMENTEVENT_ABORTDOC")},
    {DOCUMENTEVENT_DELETEDC, TEXT("DOCUMENTEVENT_DELETEDC")},
    {DOCUMENTEVENT_ESCAPE, TEXT("DOCUMENTEVENT_ESCAPE")},
    {DOCUMENTEVENT_ENDDOCPOST, TEXT("DOCUMENTEVENT_ENDDOCPOST")},
    {DOCUMENTEVENT_STARTDOCPOST, TEXT("DOCUMENTEVENT_STARTDOCPOST")},
    {DOCUMENTEVENT_QUERYFILTER, TEXT("DOCUMENTEVENT_QUERYFILTER")},
    {DOCUMENTEVENT_LAST, TEXT("DOCUMENTEVENT_LAST")},
};

} // namespace

const WCHAR* DocumentEventName(int iEsc)
{
    for (const DocumentEventRow& row : kDocumentEvents) {
        if (row.iEsc == iEsc)
            return row.pszName;
    }
    return TEXT("DEFAULT");
}
