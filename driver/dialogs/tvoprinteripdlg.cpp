#include "tvoprinteripdlg.h"

#include "../config/tvoconfg.h"
#include "../dialogue/pjlgrammar.h"
#include "../dialogue/qlmport.h"
#include "../dialogue/qlmrefresh.h"
#include "../dialogue/qlmsocket.h"
#include "../foundation/qlmtrace.h"
#include "../foundation/qlmutils.h"
#include "../foundation/wstr.h"
#include "../../resources/qlmres.h"

#include <cstring>
#include <iterator>

namespace {

const DWORD kPrinterIPLockList[] = {IDC_PRINTERIP_ADDRESS, IDC_PRINTERIP_TEST, 0};
const WCHAR kPlacementValue[] = TEXT("PrinterIPDlg_WindowPos");
constexpr int kTEXT_CCH = 128;

HANDLE PrinterOf(TVOPrinterConfiguration* pConfig)
{
    return pConfig ? pConfig->m_hPrinter : nullptr;
}

// The refresh's question: the dialog, run until OK or Cancel. An OK on an empty box leaves the
// caller's buffer as it was, so the refresh tries that address again.
BOOL AskWithDialog(LPCWSTR pPortName, TVOPrinterConfiguration* pConfig, DEVMODEEX* pDM, HWND hwnd,
                   char* address, size_t cbAddress)
{
    TVOPrinterIPDlg dlg(pPortName, pConfig, pDM);
    INT_PTR result = dlg.doModal(hwnd);
    if (result != 1)
        return FALSE;
    if (dlg.m_szAddress[0] && cbAddress > 0) {
        size_t cch = strnlen(dlg.m_szAddress, sizeof(dlg.m_szAddress));
        if (cch >= cbAddress)
            cch = cbAddress - 1;
        memcpy(address, dlg.m_szAddress, cch);
        address[cch] = 0;
    }
    return TRUE;
}

} // namespace

TVOPrinterIPDlg::TVOPrinterIPDlg(LPCWSTR portName, TVOPrinterConfiguration* pConfig,
                                 const DEVMODEEX* pDM)
{
    m_iResourceID = IDD_PRINTERIP;
    m_pConfig = pConfig;
    m_pPermissionIDs = kPrinterIPLockList;
    memset(m_szPortName, 0, sizeof(m_szPortName));
    if (portName)
        WstrCopy(m_szPortName, std::size(m_szPortName), portName);
    QLMToNarrow(m_szPortNameA, sizeof(m_szPortNameA), m_szPortName);
    memset(static_cast<void*>(&m_DM), 0, sizeof(m_DM));
    if (pDM)
        memcpy(static_cast<void*>(&m_DM), pDM, sizeof(m_DM));
    m_pDM = pDM ? &m_DM : nullptr;
    memset(m_szAddress, 0, sizeof(m_szAddress));
}

BOOL TVOPrinterIPDlg::OnInitDialog()
{
    QLM_TRACE_SCOPE(TEXT("TVOPrinterIPDlg::OnInitDialog"), g_bTracePrinterIPDialog);
    ASSERT(m_pConfig);
    ASSERT(m_pDM);
    if (!m_pConfig || !m_pDM) {
        Trace(TEXT("m_pConfig or m_pDM is NULL in TVOPrinterIPDlg::OnInitDialog"));
        return 1;
    }
    WINDOWPLACEMENT placement = {};
    DWORD cb = sizeof(placement);
    LPCWSTR pszKey = QLMGetPrinterName(PrinterOf(m_pConfig));
    if (pszKey &&
        QLMGetUserBINARY(pszKey, kPlacementValue, reinterpret_cast<BYTE*>(&placement), &cb) ==
            ERROR_SUCCESS &&
        cb == sizeof(placement)) {
        SetWindowPlacement(m_hWnd, &placement);
    } else {
        CenterDialog(GetDesktopWindow());
    }
    SetDlgItemTextW(m_hWnd, IDC_PRINTERIP_PORT, m_szPortName);
    SetDlgItemTextW(m_hWnd, IDC_PRINTERIP_ADDRESS, m_szPortName);
    SendDlgItemMessageW(m_hWnd, IDC_PRINTERIP_ADDRESS, EM_LIMITTEXT, kPRINTERIP_ADDRESS_CB, 0);
    SetControlsFromDM();
    return 1;
}

void TVOPrinterIPDlg::SetControlsFromDM()
{
    if (GetWindowTextLengthW(GetDlgItem(m_hWnd, IDC_PRINTERIP_ADDRESS)) == 0)
        EnableWindow(GetDlgItem(m_hWnd, IDC_PRINTERIP_TEST), FALSE);
    LockControls(m_pConfig ? m_pConfig->m_bHasPermission : 0);
}

void TVOPrinterIPDlg::OnCommand(int id, int code)
{
    switch (id) {
    case IDC_PRINTERIP_ADDRESS:
        if (code == EN_CHANGE) {
            BOOL bText = GetWindowTextLengthW(GetDlgItem(m_hWnd, IDC_PRINTERIP_ADDRESS)) > 0;
            EnableWindow(GetDlgItem(m_hWnd, IDC_PRINTERIP_TEST), bText);
        }
        break;
    case IDC_PRINTERIP_TEST: {
        WCHAR text[kTEXT_CCH + 1] = {};
        int nChars = GetDlgItemTextW(m_hWnd, IDC_PRINTERIP_ADDRESS, text, kTEXT_CCH);
        if (!nChars) {
            ASSERT(nChars);
            break;
        }
        BOOL bConnected = SocketCheckConnect(text);
        WCHAR caption[kTEXT_CCH] = {};
        GetWindowTextW(m_hWnd, caption, kTEXT_CCH);
        WCHAR message[512] = {};
        if (m_pConfig)
            WstrCopy(message, std::size(message),
                     m_pConfig->getResourceString(bConnected ? IDS_PRINTERIP_TEST_OK
                                                             : IDS_PRINTERIP_TEST_FAILED));
        MessageBoxW(m_hWnd, message, caption, bConnected ? MB_ICONINFORMATION : MB_ICONWARNING);
        break;
    }
    case IDOK:
        OnOK();
        break;
    case IDCANCEL:
        EndDialog(m_hWnd, 2);
        break;
    default:
        break;
    }
}

void TVOPrinterIPDlg::OnOK()
{
    QLM_TRACE_SCOPE(TEXT("TVOPrinterIPDlg::OnOK"), g_bTracePrinterIPDialog);
    WCHAR text[kTEXT_CCH + 1] = {};
    GetDlgItemTextW(m_hWnd, IDC_PRINTERIP_ADDRESS, text, kTEXT_CCH);
    if (text[0]) {
        QLMSetIPAddressMap(PrinterOf(m_pConfig), m_szPortName, text);
        memset(m_szAddress, 0, sizeof(m_szAddress));
        QLMToNarrow(m_szAddress, sizeof(m_szAddress), text);
    }
    WINDOWPLACEMENT placement = {};
    placement.length = sizeof(placement);
    if (GetWindowPlacement(m_hWnd, &placement))
        QLMSetUserBINARY(PrinterOf(m_pConfig), kPlacementValue,
                         reinterpret_cast<const BYTE*>(&placement), sizeof(placement));
    EndDialog(m_hWnd, 1);
}

INT_PTR TVOPrinterIPDlg::DialogProc(UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
    case WM_INITDIALOG:
        return OnInitDialog();
    case WM_COMMAND:
        OnCommand(LOWORD(wParam), HIWORD(wParam));
        return 0;
    case WM_HELP:
        OnHelp(m_hWnd, wParam, reinterpret_cast<const HELPINFO*>(lParam));
        return 0;
    case WM_CLOSE:
        EndDialog(m_hWnd, 2);
        return 0;
    default:
        return 0;
    }
}

BOOL SocketCheckConnect(LPCWSTR address)
{
    QLM_TRACE_SCOPE(TEXT("SocketCheckConnect"), g_bTracePrinterIPDialog);
    QLMWaitCursor cursor;
    QLMSocket socket;
    char narrow[kPRINTERIP_ADDRESS_CB + 1] = {};
    QLMToNarrow(narrow, sizeof(narrow), address);
    BOOL bConnected = socket.Connect(narrow, 0, 1, kPJLService);
    if (bConnected)
        socket.Close();
    socket.SocketCleanup();
    return bConnected;
}

void QLMInstallPrinterAddressDialog()
{
    QLMRefreshQuestions questions = QLMDefaultRefreshQuestions();
    questions.askAddress = AskWithDialog;
    QLMSetRefreshQuestions(questions);
}
