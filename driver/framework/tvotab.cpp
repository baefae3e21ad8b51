#include "tvotab.h"

#include "../config/tvoconfg.h"
#include "../devmode/tvodm.h"
#include "../foundation/qlmtrace.h"
#include "../foundation/qlmutils.h"
#include "../../resources/qlmres.h"

#include <cstring>

TVOTab::TVOTab(TVODialogInfo* lpdi, TVOPrinterConfiguration* pConfig, int resourceId)
    : m_pDialogInfo(lpdi)
{
    m_iResourceID = resourceId;
    m_pConfig = pConfig;
    m_pDM = lpdi ? lpdi->lpDM : nullptr;
}

TVOTab::~TVOTab()
{
    if (m_hLogoBitmap)
        DeleteObject(m_hLogoBitmap);
}

void TVOTab::SetModified(BOOL bModified)
{
    if (!m_bTrackChanges)
        return;
    setModified(bModified);
    ASSERT(m_hWnd);
    if (!m_hWnd || !IsWindow(m_hWnd))
        return;
    HWND hSheet = GetParent(m_hWnd);
    if (!hSheet) {
        ASSERT(hSheet);
        return;
    }
    SendMessageW(hSheet, bModified ? PSM_CHANGED : PSM_UNCHANGED, reinterpret_cast<WPARAM>(m_hWnd),
                 0);
}

void TVOTab::OnDMChange()
{
    QLM_TRACE_SCOPE(TEXT("TVOTab::OnDMChange"), g_bTraceTVOTab);
    ASSERT(m_pDM);
    ASSERT(m_pConfig);
    SetControlsFromDM();
    // Told of another tab's change, this tab has nothing of its own to apply.
    if (m_bTrackChanges)
        SetModified(FALSE);
}

void TVOTab::RefillControls()
{
    const BOOL bTrack = m_bTrackChanges;
    m_bTrackChanges = 0;
    SetControlsFromDM();
    m_bTrackChanges = bTrack;
}

BOOL TVOTab::OnSetActive()
{
    QLM_TRACE_SCOPE(TEXT("TVOTab::OnSetActive"), g_bTraceTVOTab);
    if (!m_hLogoBitmap && m_pConfig) {
        m_hLogoBitmap = static_cast<HBITMAP>(LoadImageW(m_pConfig->m_hResources,
                                                        MAKEINTRESOURCEW(IDB_LOGO), IMAGE_BITMAP, 0,
                                                        0, LR_DEFAULTSIZE | LR_LOADMAP3DCOLORS));
        SendDlgItemMessageW(m_hWnd, IDC_LOGO, STM_SETIMAGE, IMAGE_BITMAP,
                            reinterpret_cast<LPARAM>(m_hLogoBitmap));
    }
    RefillControls();
    if (getModified()) {
        const BOOL bTrack = m_bTrackChanges;
        m_bTrackChanges = 0;
        BroadcastDMChange(FALSE);
        m_bTrackChanges = bTrack;
    }
    if (m_pConfig)
        m_pConfig->SetLastActiveTab(static_cast<DWORD>(m_iResourceID));
    return 1;
}

namespace {

// The device sheet's edits become the printer's stored settings: the whole record replaces
// the stored one, whatever size that had.
void StoreAsPrinterDefault(HANDLE hPrinter, DEVMODEEX* lpDM)
{
    DWORD cbNeeded = 0;
    if (GetPrinterW(hPrinter, 2, nullptr, 0, &cbNeeded) ||
        GetLastError() != ERROR_INSUFFICIENT_BUFFER) {
        Trace(TEXT("GetPrinter for the size failed, GetLastError is %d"), GetLastError());
        return;
    }
    HGLOBAL hInfo = GlobalAlloc(GMEM_ZEROINIT, cbNeeded);
    auto* pInfo = static_cast<PRINTER_INFO_2W*>(hInfo ? GlobalLock(hInfo) : nullptr);
    if (!pInfo) {
        Trace(TEXT("no memory for PRINTER_INFO_2 (%u bytes)"), cbNeeded);
        if (hInfo)
            GlobalFree(hInfo);
        return;
    }
    if (!GetPrinterW(hPrinter, 2, reinterpret_cast<LPBYTE>(pInfo), cbNeeded, &cbNeeded)) {
        ASSERT(0);
        GlobalUnlock(hInfo);
        GlobalFree(hInfo);
        return;
    }
    TVODevMode::StoreQueueRecord(hPrinter, pInfo, lpDM);
    GlobalUnlock(hInfo);
    GlobalFree(hInfo);
}

} // namespace

void TVOTab::BroadcastDMChange(BOOL)
{
    QLM_TRACE_SCOPE(TEXT("TVOTab::BroadcastDMChange"), g_bTraceTVOTab);
    TVODialogInfo* lpdi = m_pDialogInfo;
    if (!lpdi)
        return;
    HANDLE hPrinter = lpdi->hPrinter;
    if (lpdi->lpDM)
        Trace(TEXT("firmware of lpDM: %d"), lpdi->lpDM->dmxFirmwareRevision);
    if (lpdi->lpDMTarget)
        Trace(TEXT("firmware of lpDMTarget: %d"), lpdi->lpDMTarget->dmxFirmwareRevision);

    // The order is the point: merge record, accounting, stored settings, then the other tabs.
    if (lpdi->bExtDevMode && (lpdi->wMode & DM_USER_DEFAULT)) {
        memcpy(static_cast<void*>(&lpdi->dmMerge), &lpdi->dmScratch, sizeof(DEVMODEEX));
        TVODevMode merge(&lpdi->dmMerge);
        merge.setAccountingInfo(hPrinter, FALSE);
        StoreAsPrinterDefault(hPrinter, lpdi->lpDM);
        for (WORD i = 0; i < lpdi->nTabs; ++i) {
            TVOTab* pTab = lpdi->pTabs[i];
            if (!pTab || pTab->m_iResourceID == m_iResourceID)
                continue;
            if (pTab->m_hWnd)
                SendMessageW(pTab->m_hWnd, WM_DEVMODECHANGE, 0,
                             reinterpret_cast<LPARAM>(lpdi->lpDM));
            else
                Trace(TEXT("tab %d has no window yet"), pTab->m_iResourceID);
        }
    }

    TVODevMode scratch(lpdi->lpDM);
    scratch.setAccountingInfo(hPrinter, TRUE);
    if ((lpdi->wMode & (DM_COPY | DM_MODIFY)) && lpdi->lpDMTarget) {
        TVODevMode target(lpdi->lpDMTarget);
        target.modifyDeviceMode(hPrinter, &lpdi->lpDM->dmPublic,
                                m_pConfig ? m_pConfig->m_PrinterModel : 0);
    }
}

LRESULT TVOTab::OnNotify(HWND hWnd, WPARAM wParam, NMHDR* pnmhdr)
{
    QLM_TRACE_SCOPE(TEXT("TVOTab::OnNotify"), g_bTraceTVOTab);
    if (!pnmhdr)
        return 0;
    TVODialogInfo* lpdi = m_pDialogInfo;
    switch (pnmhdr->code) {
    case PSN_RESET:
        if (lpdi)
            lpdi->bOK = FALSE;
        return 0;
    case PSN_APPLY: {
        Trace(TEXT("PSN_APPLY, %s"),
              reinterpret_cast<PSHNOTIFY*>(pnmhdr)->lParam == 1 ? TEXT("OK") : TEXT("Apply"));
        const BOOL bTrack = m_bTrackChanges;
        if (lpdi)
            lpdi->bOK = TRUE;
        m_bTrackChanges = 1;
        BroadcastDMChange(TRUE);
        m_bTrackChanges = bTrack;
        HANDLE hPrinter = m_pConfig ? m_pConfig->m_hPrinter : nullptr;
        if (!hPrinter && lpdi)
            hPrinter = lpdi->hPrinter;
        if (hPrinter) {
            const DWORD one = 1;
            QLMSetUserDWORD(hPrinter, TEXT("QLMIsFirstTime"), &one);
        }
        if (lpdi && lpdi->pfnComPropSheet) {
            LONG_PTR result =
                lpdi->pfnComPropSheet(lpdi->hComPropSheet, CPSFUNC_SET_RESULT, 0, CPSUI_OK);
            Trace(TEXT("CPSFUNC_SET_RESULT returns %d"), static_cast<int>(result));
        }
        return 0;
    }
    case PSN_SETACTIVE:
        return OnSetActive();
    default:
        return DefWindowProcW(hWnd, WM_NOTIFY, wParam, reinterpret_cast<LPARAM>(pnmhdr));
    }
}

INT_PTR CALLBACK TVOTabProcedure(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    TVOTab* pTab = nullptr;
    if (message == WM_INITDIALOG) {
        ASSERT(lParam != 0);
        const auto* pPage = reinterpret_cast<const PROPSHEETPAGEW*>(lParam);
        pTab = pPage ? reinterpret_cast<TVOTab*>(pPage->lParam) : nullptr;
        if (!pTab)
            return 0;
        pTab->m_hWnd = hWnd;
        SetWindowLongPtrW(hWnd, DWLP_USER, reinterpret_cast<LONG_PTR>(pTab));
    } else {
        pTab = reinterpret_cast<TVOTab*>(GetWindowLongPtrW(hWnd, DWLP_USER));
        if (!pTab)
            return 0;
    }
    return pTab->DialogProc(message, wParam, lParam);
}
