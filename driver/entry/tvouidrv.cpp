// TVONTUIDriver: the immediate answers, the switch reading, and the entries whose work is
// still to come, which answer with their failure value.
#include "tvouidrv.h"

#include "../config/tvoconfg.h"
#include "../config/tvodev.h"
#include "../devmode/tvodm.h"
#include "../devmode/tvodm_convert.h"
#include "../foundation/qlmsnapshot.h"
#include "../foundation/qlmtrace.h"
#include "../foundation/qlmswitches.h"
#include "../foundation/qlmutils.h"

#include <algorithm>
#include <cstring>
#include <new>

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
    QLMPrinterSnapshot snapshot(hPrinter);
    ReadDebugSwitches(snapshot, reason);
}

void TVONTUIDriver::ReadDebugSwitches(QLMPrinterSnapshot& snapshot, WORD reason)
{
    QLM_TRACE_SCOPE(TEXT("TVONTUIDriver::ReadDebugSwitches"), TraceEntryFlags());
    if (reason == PROPSHEETUI_REASON_DESTROY)
        return;
    ReadAllDebugSwitches(snapshot);
}

// Each call builds and releases a whole configuration: nothing is cached between calls. Within
// the call, the queue's information, its ports and its printer data are fetched once.
DWORD TVONTUIDriver::DrvDeviceCapabilities(HANDLE hPrinter, PWSTR pDeviceName, WORD iDevCap,
                                           void* pvOutput, PDEVMODEW pDevMode)
{
    QLM_TRACE_SCOPE(TEXT("TVONTUIDriver::DrvDeviceCapabilities"), TraceEntryFlags());
    QLMPrinterSnapshot snapshot(hPrinter);
    // The queue's record serves the answer only: whether its port answers is not asked unless
    // the record is to be saved or traced.
    snapshot.RecordsStayInCall();
    TVODevice device;
    device.setDeviceConfiguration(snapshot);
    switch (iDevCap) {
    case DC_FIELDS:
        // The record's own mask reaches the trace only.
        device.deviceCapabilities(snapshot, nullptr, iDevCap, pvOutput, pDevMode);
        return kDC_FIELDS_ANSWER;
    case DC_FILEDEPENDENCIES:
        return pvOutput ? GDI_ERROR : 0;
    case DC_TRUETYPE:
        return 1;
    default:
        return static_cast<DWORD>(
            device.deviceCapabilities(snapshot, nullptr, iDevCap, pvOutput, pDevMode));
    }
}

BOOL TVONTUIDriver::DrvConvertDevMode(LPWSTR pPrinterName, PDEVMODEW pdmIn, PDEVMODEW pdmOut,
                                      PLONG pcbNeeded, DWORD fMode)
{
    QLM_TRACE_SCOPE(TEXT("TVONTUIDriver::DrvConvertDevMode"), TraceEntryFlags());
    LONG lResult = CommonDrvConvertDevMode(pPrinterName, pdmIn, pdmOut, pcbNeeded, fMode,
                                           &g_DriverVersionInfo);
    if (lResult == CDM_RESULT_TRUE)
        return TRUE;
    if (lResult == CDM_RESULT_FALSE)
        return FALSE;

    if (*pcbNeeded < static_cast<LONG>(kDEVMODEEX_SIZE)) {
        *pcbNeeded = kDEVMODEEX_SIZE;
        return FALSE;
    }
    if (fMode != CDM_DRIVER_DEFAULT) {
        static thread_local bool s_bReported = false;
        if (!s_bReported) {
            s_bReported = true;
            Assert(QLM_WIDEN(__FILE__), __LINE__,
                   "\"TVONTUIDriver::DrvConvertDevMode unhandled option\"");
        }
        return FALSE;
    }

    // The driver's default: the queue's record, repaired. A printer that cannot be opened
    // goes on with a null handle, which gives the defaults of no printer.
    HANDLE hPrinter = nullptr;
    OpenPrinterW(pPrinterName, &hPrinter, nullptr);
    {
        QLMPrinterSnapshot snapshot(hPrinter);
        TVODevMode devMode(hPrinter, &snapshot);
        if (!devMode.getDeviceMode(hPrinter, TEXT(""), pPrinterName, TEXT("")))
            Trace(TEXT("getDeviceMode failed"));
        devMode.getAccountingInfo(hPrinter);
        if (pdmOut && devMode.m_lpDM)
            memcpy(pdmOut, devMode.m_lpDM, kDEVMODEEX_SIZE);
    }
    if (hPrinter)
        ClosePrinter(hPrinter);
    return TRUE;
}

// Never shows anything, DM_IN_PROMPT or not: prompting belongs to the sheets.
LONG TVONTUIDriver::DrvDocumentProperties(HWND hwnd, HANDLE hPrinter, PWSTR lpszDeviceName,
                                          PDEVMODEW pdmOutput, PDEVMODEW pdmInput, DWORD fMode)
{
    QLM_TRACE_SCOPE(TEXT("TVONTUIDriver::DrvDocumentProperties"), TraceEntryFlags());
    Trace(TEXT("hPrinter=%p, fMode=0x%X"), hPrinter, fMode);
    QLMPrinterSnapshot snapshot(hPrinter);
    if (!((fMode & DM_OUT_BUFFER) && pdmOutput))
        snapshot.RecordsStayInCall();
    TVODevMode devMode(hPrinter, &snapshot);
    if (!devMode.m_lpDM || !devMode.getDeviceMode(hPrinter, TEXT(""), TEXT(""), TEXT("")))
        return 0;
    const bool bInput = (fMode & DM_IN_BUFFER) && pdmInput;
    if (bInput) {
        TVOPrinterConfiguration* pConfig =
            new (std::nothrow) TVOPrinterConfiguration(lpszDeviceName);
        ASSERT(pConfig != 0);
        if (pConfig) {
            devMode.modifyDeviceMode(hPrinter, pdmInput, pConfig->m_PrinterModel);
            delete pConfig;
        }
    }
    devMode.getAccountingInfo(hPrinter);
    if (fMode == 0)
        return kDEVMODEEX_SIZE;

    DEVMODEEX dmLocal;
    memcpy(static_cast<void*>(&dmLocal), devMode.m_lpDM, sizeof(dmLocal));
    // The raw input wins over the merge just made: the caller passes a full record here. Only
    // what the input declares it holds is read.
    if (bInput) {
        DWORD cbInput = static_cast<DWORD>(pdmInput->dmSize) + pdmInput->dmDriverExtra;
        memcpy(static_cast<void*>(&dmLocal), pdmInput, std::min(cbInput, kDEVMODEEX_SIZE));
    }
    if ((fMode & DM_OUT_BUFFER) && pdmOutput)
        memcpy(pdmOutput, &dmLocal, kDEVMODEEX_SIZE);
    return 1;
}

LONG TVONTUIDriver::GetSizeOrDefault(LPARAM lParam)
{
    QLM_TRACE_SCOPE(TEXT("TVONTUIDriver::GetSizeOrDefault"), TraceEntryFlags());
    PDOCUMENTPROPERTYHEADER pHeader = reinterpret_cast<PDOCUMENTPROPERTYHEADER>(lParam);
    pHeader->cbOut = kDEVMODEEX_SIZE;
    if (pHeader->fMode == 0 || !pHeader->pdmOut)
        return static_cast<LONG>(pHeader->cbOut);
    if (!(pHeader->fMode & (DM_OUT_DEFAULT | DM_OUT_BUFFER)))
        return 1;

    HANDLE hPrinter = pHeader->hPrinter;
    QLMPrinterSnapshot snapshot(hPrinter);
    TVODevMode* pDevMode = new (std::nothrow) TVODevMode(hPrinter, &snapshot);
    if (!pDevMode || !pDevMode->m_lpDM) {
        ASSERT(pDevMode != 0);
        delete pDevMode;
        return -1;
    }
    if (!pDevMode->getDeviceMode(hPrinter, TEXT(""), pHeader->pszPrinterName, TEXT("")))
        Trace(TEXT("getDeviceMode failed"));
    LPCWSTR pszDriverName = QLMGetDriverName(snapshot);
    if (!pszDriverName)
        pszDriverName = TEXT("Tarvo Plan Output System 2440");
    // The configuration gives the model for the merge of an input record; without one it
    // changes nothing but its trace, and is built only when that could show.
    const bool bInput = (pHeader->fMode & DM_IN_BUFFER) && pHeader->pdmIn;
    TVOPrinterConfiguration* pConfig = nullptr;
    if (bInput || TraceCouldShow(g_bTraceTVOConfig)) {
        pConfig = new (std::nothrow) TVOPrinterConfiguration(pszDriverName);
        if (!pConfig) {
            ASSERT(pConfig != 0);
            delete pDevMode;
            return -1;
        }
    }
    if (bInput)
        pDevMode->modifyDeviceMode(hPrinter, pHeader->pdmIn, pConfig->m_PrinterModel);
    pDevMode->getAccountingInfo(hPrinter);
    delete pConfig;
    memcpy(pHeader->pdmOut, pDevMode->m_lpDM, kDEVMODEEX_SIZE);
    delete pDevMode;
    return 1;
}

namespace {

// The printer of a sheet's header; the device sheet's header may hold 0x100, which is no
// header at all.
HANDLE DocumentHeaderPrinter(PPROPSHEETUI_INFO pPSUIInfo)
{
    auto* pHeader = reinterpret_cast<PDOCUMENTPROPERTYHEADER>(pPSUIInfo->lParamInit);
    return pHeader ? pHeader->hPrinter : nullptr;
}

HANDLE DeviceHeaderPrinter(LPARAM lParam)
{
    if (lParam == 0 || lParam == 0x100)
        return nullptr;
    return reinterpret_cast<PDEVICEPROPERTYHEADER>(lParam)->hPrinter;
}

} // namespace

LONG TVONTUIDriver::DrvDevicePropertySheets(PPROPSHEETUI_INFO pPSUIInfo, LPARAM lParam)
{
    QLM_TRACE_SCOPE(TEXT("TVONTUIDriver::DrvDevicePropertySheets"), TraceEntryFlags());
    if (!pPSUIInfo) {
        ASSERT(pPSUIInfo != 0);
        return -1;
    }
    QLMPrinterSnapshot snapshot(DeviceHeaderPrinter(pPSUIInfo->lParamInit));
    if (pPSUIInfo->Reason != PROPSHEETUI_REASON_DESTROY && lParam != 0)
        ReadDebugSwitches(snapshot, pPSUIInfo->Reason);
    switch (pPSUIInfo->Reason) {
    case PROPSHEETUI_REASON_INIT:
        return DeviceSheetUI_INIT(pPSUIInfo, lParam, snapshot);
    case PROPSHEETUI_REASON_DESTROY:
        return PropsheetUI_Destroy(pPSUIInfo, lParam, snapshot);
    default:
        return 0;
    }
}

LONG TVONTUIDriver::DrvDocumentPropertySheets(PPROPSHEETUI_INFO pPSUIInfo, LPARAM lParam)
{
    QLM_TRACE_SCOPE(TEXT("TVONTUIDriver::DrvDocumentPropertySheets"), TraceEntryFlags());
    if (!lParam) {
        Trace(TEXT("Invalid lParam"));
        return -1;
    }
    if (!pPSUIInfo)
        return GetSizeOrDefault(lParam);
    QLMPrinterSnapshot snapshot(DocumentHeaderPrinter(pPSUIInfo));
    if (pPSUIInfo->Reason != PROPSHEETUI_REASON_DESTROY)
        ReadDebugSwitches(snapshot, pPSUIInfo->Reason);
    switch (pPSUIInfo->Reason) {
    case PROPSHEETUI_REASON_INIT:
        pPSUIInfo->UserData = 0;
        return PropsheetUI_Init(pPSUIInfo, lParam, snapshot);
    case PROPSHEETUI_REASON_DESTROY:
        return PropsheetUI_Destroy(pPSUIInfo, lParam, snapshot);
    case PROPSHEETUI_REASON_SET_RESULT:
        return PropsheetUI_Set(pPSUIInfo, lParam, snapshot);
    default:
        return 0;
    }
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
