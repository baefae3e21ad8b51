#include "tvoacct.h"

#include "../config/tvoconfg.h"
#include "../foundation/qlmtrace.h"
#include "../foundation/wstr.h"
#include "../../resources/qlmres.h"

#include <iterator>

namespace {

// 1047 is the text dialog's account field and 1357 is missing: the list has always been so, and
// a user without permission can still type the account.
const DWORD kAccountLockList[] = {IDC_ACCOUNT_CAPTION,
                                  IDC_JBA_ACCOUNT,
                                  IDC_ACCOUNT_SUB_CAPTION,
                                  IDC_ACCOUNT_SUB,
                                  IDC_ACCOUNT_REMEMBER,
                                  IDC_LOGO,
                                  0};

constexpr long kMAX_ACCOUNT = 999999;
constexpr long kMAX_SUBACCOUNT = 9999;
constexpr int kACCOUNT_DIGITS = 6;
constexpr int kSUBACCOUNT_DIGITS = 4;
constexpr int kCAPTION_CCH = 260;
constexpr int kMESSAGE_CCH = 512;

} // namespace

void QLMFinishAccountingDialog(TVODialog* pDlg, BOOL bHideRemember)
{
    HWND hDlg = pDlg->m_hWnd;
    const DWORD remember = pDlg->m_pDM ? pDlg->m_pDM->dmxRememberAccount : 0;
    CheckDlgButton(hDlg, IDC_ACCOUNT_REMEMBER, remember ? BST_CHECKED : BST_UNCHECKED);
    if (bHideRemember) {
        HWND hRemember = GetDlgItem(hDlg, IDC_ACCOUNT_REMEMBER);
        EnableWindow(hRemember, FALSE);
        SetWindowPos(hRemember, nullptr, 0, 0, 0, 0,
                     SWP_HIDEWINDOW | SWP_NOMOVE | SWP_NOSIZE | SWP_NOZORDER);
    }
    // The question comes from a sheet that may lie behind other windows; it must be seen.
    SetWindowPos(hDlg, HWND_TOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE);
    pDlg->LockControls(pDlg->m_pConfig ? pDlg->m_pConfig->m_bHasPermission : 0);
}

TVOAccountDlg::TVOAccountDlg(TVOPrinterConfiguration* pConfig, DEVMODEEX* pDM)
{
    m_iResourceID = IDD_ACCOUNT;
    m_pConfig = pConfig;
    m_pDM = pDM;
    m_pPermissionIDs = kAccountLockList;
}

BOOL TVOAccountDlg::OnInitDialog()
{
    QLM_TRACE_SCOPE(TEXT("TVOAccountDlg::OnInitDialog"), g_bTraceTVOAcct);
    HWND hwndEditAcct = GetDlgItem(m_hWnd, IDC_ACCOUNT_NUMBER);
    HWND hwndEditSub = GetDlgItem(m_hWnd, IDC_ACCOUNT_SUB);
    ASSERT(hwndEditAcct);
    ASSERT(hwndEditSub);
    SendMessageW(hwndEditAcct, EM_LIMITTEXT, kACCOUNT_DIGITS, 0);
    SendMessageW(hwndEditSub, EM_LIMITTEXT, kSUBACCOUNT_DIGITS, 0);
    if (hwndEditAcct) {
        m_wpOrigEditProcAcct = reinterpret_cast<WNDPROC>(SetWindowLongPtrW(
            hwndEditAcct, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(NumericEditSubclassProc)));
    }
    ASSERT(m_wpOrigEditProcAcct);
    if (hwndEditSub) {
        m_wpOrigEditProcSub = reinterpret_cast<WNDPROC>(SetWindowLongPtrW(
            hwndEditSub, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(NumericEditSubclassProc)));
    }
    ASSERT(m_wpOrigEditProcSub);
    if (!m_pDM) {
        ASSERT(m_pDM);
        return 1;
    }

    // Numbers that are not to be remembered are not shown either.
    const BOOL bRemember = m_pDM->dmxRememberAccount != 0;
    SetDlgItemInt(m_hWnd, IDC_ACCOUNT_NUMBER, bRemember ? m_pDM->dmxAccount : 0, FALSE);
    SetDlgItemInt(m_hWnd, IDC_ACCOUNT_SUB, bRemember ? m_pDM->dmxSubAccount : 0, FALSE);
    QLMFinishAccountingDialog(this, m_bHideRemember);
    return 1;
}

void TVOAccountDlg::OnOK()
{
    QLM_TRACE_SCOPE(TEXT("TVOAccountDlg::OnOK"), g_bTraceTVOAcct);
    WCHAR caption[kCAPTION_CCH] = {};
    GetWindowTextW(m_hWnd, caption, kCAPTION_CCH);

    WCHAR text[kACCOUNT_DIGITS + 1] = {};
    GetDlgItemTextW(m_hWnd, IDC_ACCOUNT_NUMBER, text, kACCOUNT_DIGITS + 1);
    const long account = WstrToLong(text);
    GetDlgItemTextW(m_hWnd, IDC_ACCOUNT_SUB, text, kSUBACCOUNT_DIGITS + 1);
    const long subAccount = WstrToLong(text);

    // 0 means "none" in the record, so it is no account a user can give.
    UINT refusal = 0;
    if (account < 1 || account > kMAX_ACCOUNT)
        refusal = IDS_ACCOUNT_RANGE;
    else if (subAccount < 1 || subAccount > kMAX_SUBACCOUNT)
        refusal = IDS_SUBACCOUNT_RANGE;
    if (refusal) {
        WCHAR message[kMESSAGE_CCH] = {};
        if (m_pConfig)
            WstrCopy(message, kMESSAGE_CCH, m_pConfig->getResourceString(refusal));
        MessageBoxW(m_hWnd, message, caption, MB_ICONERROR);
        return;
    }
    if (m_pDM) {
        m_pDM->dmxAccount = static_cast<DWORD>(account);
        m_pDM->dmxSubAccount = static_cast<DWORD>(subAccount);
        m_pDM->dmxRememberAccount =
            IsDlgButtonChecked(m_hWnd, IDC_ACCOUNT_REMEMBER) == BST_CHECKED ? 1 : 0;
    }
    setModified(TRUE);
    EndDialog(m_hWnd, 1);
}

void TVOAccountDlg::OnClose()
{
    EndDialog(m_hWnd, 2);
}

void TVOAccountDlg::OnDestroy()
{
    if (m_wpOrigEditProcAcct)
        SetWindowLongPtrW(GetDlgItem(m_hWnd, IDC_ACCOUNT_NUMBER), GWLP_WNDPROC,
                          reinterpret_cast<LONG_PTR>(m_wpOrigEditProcAcct));
    if (m_wpOrigEditProcSub)
        SetWindowLongPtrW(GetDlgItem(m_hWnd, IDC_ACCOUNT_SUB), GWLP_WNDPROC,
                          reinterpret_cast<LONG_PTR>(m_wpOrigEditProcSub));
}

INT_PTR TVOAccountDlg::DialogProc(UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
    case WM_INITDIALOG:
        return OnInitDialog();
    case WM_COMMAND:
        if (LOWORD(wParam) == IDOK)
            OnOK();
        else if (LOWORD(wParam) == IDCANCEL)
            EndDialog(m_hWnd, 2);
        return 0;
    case WM_CLOSE:
        OnClose();
        return 0;
    case WM_HELP:
        OnHelp(m_hWnd, wParam, reinterpret_cast<const HELPINFO*>(lParam));
        return 0;
    case WM_DESTROY:
        OnDestroy();
        return 0;
    default:
        return 0;
    }
}

LRESULT CALLBACK NumericEditSubclassProc(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_CHAR && wParam != 8 && (wParam < '0' || wParam > '9')) {
        MessageBeep(0);
        return 0;
    }
    // The export may be given an edit of any dialog: only an accounting dialog's edits have
    // procedures to go back to.
    auto* pDlg = reinterpret_cast<TVODialog*>(GetWindowLongPtrW(GetParent(hWnd), DWLP_USER));
    auto* pTVOAccountDlg = dynamic_cast<TVOAccountDlg*>(pDlg);
    if (!pTVOAccountDlg) {
        ASSERT(pTVOAccountDlg != 0);
        Trace(TEXT("Couldn't find previous window procedure"));
        return 0;
    }
    WNDPROC proc = GetDlgCtrlID(hWnd) == IDC_ACCOUNT_NUMBER ? pTVOAccountDlg->m_wpOrigEditProcAcct
                                                            : pTVOAccountDlg->m_wpOrigEditProcSub;
    if (!proc)
        return 0;
    return CallWindowProcW(proc, hWnd, message, wParam, lParam);
}
