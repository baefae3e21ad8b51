// The property sheets' life: the working records and the pages at INIT, the result handed back
// at SET_RESULT, everything released at DESTROY.
#include "tvouidrv.h"

#include "../config/tvoconfg.h"
#include "../devmode/tvodm.h"
#include "../dialogue/qlmport.h"
#include "../dialogue/qlmrefresh.h"
#include "../foundation/qlmsnapshot.h"
#include "../foundation/qlmtrace.h"
#include "../foundation/qlmutils.h"
#include "../tabs/tvoabout.h"
#include "../framework/tvodialoginfo.h"
#include "../tabs/tvodset.h"
#include "../tabs/tvograph.h"
#include "../tabs/tvojob.h"
#include "../tabs/tvopaper.h"
#include "../tabs/tvorendr.h"
#include "../../resources/qlmres.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace {

// The tabs in their order, each behind its configuration switch. A tab whose class is not part
// of the driver yet has no maker and is left out; the about tab goes with the device tab.
struct TabRow
{
    int templateId;
    BOOL TVOPrinterConfiguration::*pSwitch;
    TVOTab* (*make)(TVODialogInfo* lpdi, TVOPrinterConfiguration* pConfig);
    const char* pszAssertion;
};

TVOTab* MakePaperTab(TVODialogInfo* lpdi, TVOPrinterConfiguration* pConfig)
{
    return new (std::nothrow) TVOPaperTab(lpdi, pConfig);
}

TVOTab* MakeJobTab(TVODialogInfo* lpdi, TVOPrinterConfiguration* pConfig)
{
    return new (std::nothrow) TVOJobTab(lpdi, pConfig);
}

TVOTab* MakeAboutTab(TVODialogInfo* lpdi, TVOPrinterConfiguration* pConfig)
{
    return new (std::nothrow) TVOAboutTab(lpdi, pConfig, 0);
}

TVOTab* MakeGraphicsTab(TVODialogInfo* lpdi, TVOPrinterConfiguration* pConfig)
{
    return new (std::nothrow) TVOGraphicsTab(lpdi, pConfig, 0);
}

TVOTab* MakeRenderTab(TVODialogInfo* lpdi, TVOPrinterConfiguration* pConfig)
{
    return new (std::nothrow) TVORenderTab(lpdi, pConfig, 0);
}

// Accounting identifiers are never made compulsory by the sheet.
TVOTab* MakeDeviceTab(TVODialogInfo* lpdi, TVOPrinterConfiguration* pConfig)
{
    return new (std::nothrow) TVODeviceTab(lpdi, pConfig, FALSE);
}

const TabRow kTabs[] = {
    {IDD_PAPER_TAB, &TVOPrinterConfiguration::m_bShowPaperTab, MakePaperTab, "pPaperTab != 0"},
    {IDD_JOB_TAB, &TVOPrinterConfiguration::m_bShowJobTab, MakeJobTab, "pJobTab != 0"},
    {IDD_GRAPHICS_TAB, &TVOPrinterConfiguration::m_bShowGraphicsTab, MakeGraphicsTab,
     "pGraphicsTab != 0"},
    {IDD_RENDER_TAB, &TVOPrinterConfiguration::m_bShowRenderTab, MakeRenderTab, "pRenderTab != 0"},
    {IDD_DEVICE_TAB, &TVOPrinterConfiguration::m_bShowDeviceTab, MakeDeviceTab, "pDeviceTab != 0"},
    {IDD_ABOUT_TAB, &TVOPrinterConfiguration::m_bShowDeviceTab, MakeAboutTab, "pAboutTab != 0"},
};

// The queue prints raw from now on. A user without the right fails here and goes on. The
// queue's information as this call read it is what goes back, through the handle with the
// right to write it; a queue that prints raw already needs no write.
void MarkRawOnly(QLMPrinterSnapshot& snapshot)
{
    LPWSTR pszName = QLMGetPrinterName(snapshot);
    PRINTER_DEFAULTSW defaults = {nullptr, nullptr, PRINTER_ALL_ACCESS};
    HANDLE hAdmin = nullptr;
    if (!pszName || !OpenPrinterW(pszName, &hAdmin, &defaults) || !hAdmin) {
        Trace(TEXT("raw spooling not set, GetLastError is %d"), GetLastError());
        return;
    }
    const PRINTER_INFO_2W* pStored = snapshot.PrinterInfo();
    if (pStored && !(pStored->Attributes & PRINTER_ATTRIBUTE_RAW_ONLY)) {
        PRINTER_INFO_2W info = *pStored;
        info.Attributes |= PRINTER_ATTRIBUTE_RAW_ONLY;
        if (SetPrinterW(hAdmin, 2, reinterpret_cast<LPBYTE>(&info), 0))
            snapshot.PrinterStored(info);
    }
    ClosePrinter(hAdmin);
}

// How far a caller's record reaches, as it declares itself.
DWORD DeclaredSize(const DEVMODEW* pdm)
{
    return pdm ? DWORD(pdm->dmSize) + pdm->dmDriverExtra : 0;
}

// The caller's records learn whether the port answers; a record too short to hold the field
// is left alone.
void SetCallersBiDi(DEVMODEW* pdm, DWORD cbRoom, BOOL bidi)
{
    if (pdm && offsetof(DEVMODEEX, dmxBiDi) + sizeof(DWORD) <= cbRoom)
        reinterpret_cast<DEVMODEEX*>(pdm)->dmxBiDi = static_cast<DWORD>(bidi);
}

TVOPrinterConfiguration* NewConfiguration(QLMPrinterSnapshot& snapshot, LPCWSTR pszPrinterName,
                                          BOOL bNoPermission)
{
    LPCWSTR pszDriver = QLMGetDriverName(snapshot);
    auto* pConfig =
        new (std::nothrow) TVOPrinterConfiguration(pszDriver ? pszDriver : pszPrinterName);
    if (!pConfig)
        return nullptr;
    pConfig->setPrinterHandle(snapshot.Printer());
    pConfig->getUserForms(snapshot);
    if (bNoPermission)
        pConfig->m_bHasPermission = 0;
    return pConfig;
}

// The sheet's configuration and dialog-info record, kept in the user data: 1, or -1 without a
// configuration and -2 without the record, as both sheet builders answer.
LONG OpenDialogInfo(PPROPSHEETUI_INFO pPSUIInfo, QLMPrinterSnapshot& snapshot,
                    LPCWSTR pszPrinterName, BOOL bNoPermission, TVODialogInfo** ppLpdi)
{
    TVOPrinterConfiguration* pConfig = NewConfiguration(snapshot, pszPrinterName, bNoPermission);
    if (!pConfig) {
        ASSERT(pConfig != 0);
        return -1;
    }
    auto* lpdi = new (std::nothrow) TVODialogInfo;
    if (!lpdi) {
        ASSERT(lpdi != 0);
        delete pConfig;
        return -2;
    }
    pPSUIInfo->UserData = reinterpret_cast<ULONG_PTR>(lpdi);
    lpdi->pfnComPropSheet = pPSUIInfo->pfnComPropSheet;
    lpdi->hComPropSheet = pPSUIInfo->hComPropSheet;
    lpdi->hInstance = g_hInstance;
    lpdi->hResource = pConfig->m_hResources;
    lpdi->pConfig = pConfig;
    lpdi->hPrinter = snapshot.Printer();
    *ppLpdi = lpdi;
    return 1;
}

// The three working records start as the queue's default record.
BOOL StartRecords(TVODialogInfo* lpdi, QLMPrinterSnapshot& snapshot)
{
    TVODevMode defaults(snapshot.Printer(), &snapshot);
    if (!defaults.m_lpDM)
        return FALSE;
    memcpy(static_cast<void*>(&lpdi->dmMerge), defaults.m_lpDM, sizeof(DEVMODEEX));
    memcpy(static_cast<void*>(&lpdi->dmOrig), defaults.m_lpDM, sizeof(DEVMODEEX));
    memcpy(static_cast<void*>(&lpdi->dmScratch), defaults.m_lpDM, sizeof(DEVMODEEX));
    return TRUE;
}

// The pages are handed over as far as hActCtx: 96 bytes on x64.
constexpr DWORD kTAB_PAGE_SIZE = 96;
static_assert(kTAB_PAGE_SIZE <= sizeof(PROPSHEETPAGEW), "the page fits the platform's record");

PROPSHEETPAGEW PageFor(const TVODialogInfo* lpdi, int templateId, TVOTab* pTab)
{
    PROPSHEETPAGEW page = {};
    page.dwSize = kTAB_PAGE_SIZE;
    page.dwFlags = PSP_DEFAULT;
    page.hInstance = lpdi->hResource;
    page.pszTemplate = MAKEINTRESOURCEW(templateId);
    page.pfnDlgProc = TVOTabProcedure;
    page.lParam = reinterpret_cast<LPARAM>(pTab);
    return page;
}

// Creates and adds the pages in order; the first failure stops the adding. The page at the
// position of the last active tab becomes the start page. FALSE when a page failed.
BOOL AddPages(TVODialogInfo* lpdi, const PROPSHEETPAGEW* pages, int count, int startIndex)
{
    for (int i = 0; i < count; ++i) {
        HPROPSHEETPAGE hPage = CreatePropertySheetPageW(&pages[i]);
        if (!hPage) {
            ASSERT(hPage);
            Trace(TEXT("Creation of tab failed! Error %ld"), static_cast<long>(GetLastError()));
            return FALSE;
        }
        LONG_PTR result =
            lpdi->pfnComPropSheet
                ? lpdi->pfnComPropSheet(lpdi->hComPropSheet, CPSFUNC_ADD_HPROPSHEETPAGE,
                                        reinterpret_cast<LPARAM>(hPage), 0)
                : 0;
        if (i == startIndex && result)
            lpdi->pfnComPropSheet(lpdi->hComPropSheet, CPSFUNC_SET_HSTARTPAGE, result, 0);
    }
    return TRUE;
}

} // namespace

LONG TVONTUIDriver::PropsheetUI_Init(PPROPSHEETUI_INFO pPSUIInfo, LPARAM lParam,
                                     QLMPrinterSnapshot& callSnapshot)
{
    QLM_TRACE_SCOPE(TEXT("TVONTUIDriver::PropsheetUI_Init"), g_bTracePropsheets);
    ASSERT((pPSUIInfo != 0) && (lParam != 0));
    if (!pPSUIInfo || !lParam)
        return 0;
    auto* pHeader = reinterpret_cast<PDOCUMENTPROPERTYHEADER>(lParam);
    HANDLE hPrinter = pHeader->hPrinter;
    const DWORD fMode = pHeader->fMode;
    QLMSnapshotFor snapshot(&callSnapshot, hPrinter);

    MarkRawOnly(*snapshot);
    const BOOL bidi = QLMPortIsBiDi(*snapshot);
    SetCallersBiDi(pHeader->pdmIn, DeclaredSize(pHeader->pdmIn), bidi);
    const DWORD cbOutRoom =
        pHeader->pdmOut ? std::min(DeclaredSize(pHeader->pdmOut), pHeader->cbOut) : 0;
    SetCallersBiDi(pHeader->pdmOut, cbOutRoom, bidi);

    TVODialogInfo* lpdi = nullptr;
    const LONG rc = OpenDialogInfo(pPSUIInfo, *snapshot, pHeader->pszPrinterName,
                                   (fMode & DM_NOPERMISSION) != 0, &lpdi);
    if (rc != 1)
        return rc;
    TVOPrinterConfiguration* pConfig = lpdi->pConfig;
    lpdi->wMode = static_cast<WORD>(fMode);
    lpdi->bExtDevMode = 0;
    lpdi->lpDMTarget = reinterpret_cast<DEVMODEEX*>(pHeader->pdmOut);
    lpdi->cbTargetRoom = cbOutRoom;

    StartRecords(lpdi, *snapshot);
    TVODevMode merge(&lpdi->dmMerge, snapshot.get());
    if (!merge.getDeviceMode(hPrinter, TEXT(""), pHeader->pszPrinterName, TEXT("")))
        Trace(TEXT("getDeviceMode failed"));
    if ((fMode & DM_IN_BUFFER) && pHeader->pdmIn)
        merge.modifyDeviceMode(hPrinter, pHeader->pdmIn, pConfig->m_PrinterModel);
    if (lpdi->dmMerge.dmxBiDi == 0)
        lpdi->dmMerge.dmxAccountingMode = 1;
    const BOOL bFirst = QLMIsFirstTimeEver(*snapshot);
    if (bidi && (lpdi->dmMerge.dmxRefreshOnOpen || bFirst)) {
        int rc = QLMRefresh(pConfig, &lpdi->dmMerge, GetDesktopWindow());
        Trace(TEXT("QLMRefresh returns %d"), rc);
    }
    merge.getAccountingInfo(hPrinter);

    lpdi->lpDM = &lpdi->dmScratch;
    memcpy(static_cast<void*>(&lpdi->dmScratch), &lpdi->dmMerge, sizeof(DEVMODEEX));
    if (fMode & DM_OUT_BUFFER) {
        lpdi->lpDMTarget = reinterpret_cast<DEVMODEEX*>(pHeader->pdmOut);
        DEVMODEW* pOut = pHeader->pdmOut;
        if (pOut && pOut->dmSize == sizeof(DEVMODEW) &&
            pOut->dmDriverExtra == kDEVMODEEX_DRIVER_EXTRA && (fMode & DM_IN_BUFFER) &&
            lpdi->cbTargetRoom >= sizeof(DEVMODEEX))
            memcpy(static_cast<void*>(pOut), &lpdi->dmMerge, sizeof(DEVMODEEX));
    } else {
        lpdi->lpDMTarget = &lpdi->dmScratch;
        lpdi->cbTargetRoom = sizeof(DEVMODEEX);
    }
    lpdi->dmScratch.dmxBiDi = lpdi->dmOrig.dmxBiDi = lpdi->dmMerge.dmxBiDi = bidi;
    if (lpdi->lpDMTarget)
        SetCallersBiDi(&lpdi->lpDMTarget->dmPublic, lpdi->cbTargetRoom, bidi);
    lpdi->lpDM->dmxBiDi = bidi;

    PROPSHEETPAGEW pages[kMAX_TABS];
    int count = 0;
    for (const TabRow& row : kTabs) {
        if (!(pConfig->*row.pSwitch) || !row.make)
            continue;
        TVOTab* pTab = row.make(lpdi, pConfig);
        if (!pTab) {
            Assert(QLM_WIDEN(__FILE__), __LINE__, row.pszAssertion);
            continue;
        }
        pages[count] = PageFor(lpdi, row.templateId, pTab);
        lpdi->pTabs[count++] = pTab;
    }
    lpdi->nTabs = static_cast<WORD>(count);
    AddPages(lpdi, pages, count, pConfig->GetLastActiveTab(*snapshot));
    return 1;
}

LONG TVONTUIDriver::PropsheetUI_Set(PPROPSHEETUI_INFO pPSUIInfo, LPARAM lParam,
                                    QLMPrinterSnapshot& callSnapshot)
{
    QLM_TRACE_SCOPE(TEXT("TVONTUIDriver::PropsheetUI_Set"), g_bTracePropsheets);
    auto* lpdi = reinterpret_cast<TVODialogInfo*>(pPSUIInfo->UserData);
    auto* pResult = reinterpret_cast<PSETRESULT_INFO>(lParam);
    const LRESULT result = pResult ? pResult->Result : CPSUI_CANCEL;
    if (lpdi && result == CPSUI_OK && (lpdi->wMode & (DM_OUT_DEFAULT | DM_OUT_BUFFER))) {
        // Under a prompt a sheet left without OK or Apply gives what it was opened with.
        if ((lpdi->wMode & DM_IN_PROMPT) && !lpdi->bOK)
            lpdi->lpDM = &lpdi->dmMerge;
        TVODevMode view(lpdi->lpDM);
        view.setAccountingInfo(lpdi->hPrinter, 1);
        if (lpdi->bExtDevMode && (lpdi->wMode & DM_USER_DEFAULT)) {
            QLMSnapshotFor snapshot(&callSnapshot, lpdi->hPrinter);
            if (const PRINTER_INFO_2W* pStored = snapshot->PrinterInfo()) {
                PRINTER_INFO_2W info = *pStored;
                if (TVODevMode::StoreQueueRecord(lpdi->hPrinter, &info, lpdi->lpDM))
                    snapshot->PrinterStored(info);
            }
        }
        if (lpdi->lpDMTarget && lpdi->lpDMTarget != lpdi->lpDM) {
            if (lpdi->cbTargetRoom >= sizeof(DEVMODEEX))
                memcpy(static_cast<void*>(lpdi->lpDMTarget), lpdi->lpDM, sizeof(DEVMODEEX));
            else
                Trace(TEXT("output record of %u bytes is too small for the result"),
                      lpdi->cbTargetRoom);
        }
    }
    pPSUIInfo->Result = static_cast<ULONG_PTR>(result);
    return 1;
}

LONG TVONTUIDriver::PropsheetUI_Destroy(PPROPSHEETUI_INFO pPSUIInfo, LPARAM lParam,
                                        QLMPrinterSnapshot& callSnapshot)
{
    QLM_TRACE_SCOPE(TEXT("TVONTUIDriver::PropsheetUI_Destroy"), g_bTracePropsheets);
    (void)lParam;
    auto* lpdi = reinterpret_cast<TVODialogInfo*>(pPSUIInfo->UserData);
    if (!lpdi) {
        pPSUIInfo->Result = 0;
        return 0;
    }
    pPSUIInfo->Result = 1;
    if (lpdi->pConfig) {
        QLMSnapshotFor snapshot(&callSnapshot, lpdi->hPrinter);
        lpdi->pConfig->setUserForms(*snapshot);
        delete lpdi->pConfig;
    }
    for (WORD i = 0; i < lpdi->nTabs && i < kMAX_TABS; ++i)
        delete lpdi->pTabs[i];
    delete lpdi;
    pPSUIInfo->UserData = 0;
    Trace(TEXT("configurations alive: %d"),
          static_cast<int>(TVOPrinterConfiguration::s_nInstances));
    return 1;
}

LONG TVONTUIDriver::DeviceSheetUI_INIT(PPROPSHEETUI_INFO pPSUIInfo, LPARAM lParam,
                                       QLMPrinterSnapshot& callSnapshot)
{
    QLM_TRACE_SCOPE(TEXT("TVONTUIDriver::DeviceSheetUI_INIT"), g_bTracePropsheets);
    ASSERT((pPSUIInfo != 0) && (lParam != 0));
    if (!pPSUIInfo || !lParam)
        return 0;
    auto* pHeader = reinterpret_cast<PDEVICEPROPERTYHEADER>(lParam);
    QLMSnapshotFor snapshot(&callSnapshot, pHeader->hPrinter);
    MarkRawOnly(*snapshot);
    // The device header's flags are tested with the document header's mask, deliberately.
    TVODialogInfo* lpdi = nullptr;
    const LONG rc = OpenDialogInfo(pPSUIInfo, *snapshot, pHeader->pszPrinterName,
                                   (pHeader->Flags & DM_NOPERMISSION) != 0, &lpdi);
    if (rc != 1)
        return rc;
    TVOPrinterConfiguration* pConfig = lpdi->pConfig;
    lpdi->wMode = DM_USER_DEFAULT;
    lpdi->bExtDevMode = 1;
    StartRecords(lpdi, *snapshot);
    lpdi->lpDM = lpdi->lpDMTarget = &lpdi->dmScratch;

    TVOTab* pAbout = MakeAboutTab(lpdi, pConfig);
    if (!pAbout) {
        ASSERT(pAbout != 0);
        return -3;
    }
    lpdi->pTabs[0] = pAbout;
    lpdi->nTabs = 1;
    PROPSHEETPAGEW page = PageFor(lpdi, IDD_ABOUT_TAB, pAbout);
    if (!AddPages(lpdi, &page, 1, -1))
        return -3;
    return 1;
}
