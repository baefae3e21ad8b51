#include "tvojba.h"

#include "tvoacct.h"

#include "../config/tvoconfg.h"
#include "../foundation/qlmtrace.h"
#include "../foundation/wstr.h"
#include "../../resources/qlmres.h"

#include <cstring>

namespace {

const DWORD kJBALockList[] = {IDC_JBA_USER_CAPTION,
                              IDC_JBA_USER,
                              IDC_ACCOUNT_CAPTION,
                              IDC_JBA_ACCOUNT,
                              IDC_ACCOUNT_REMEMBER,
                              IDC_LOGO,
                              0};

// A field of the record into an edit: at most its 32 characters, terminated here.
void ShowField(HWND hDlg, int id, const WCHAR* field)
{
    WCHAR text[kJBA_TEXT_CCH + 1] = {};
    if (field)
        WstrNCopy(text, field, kJBA_TEXT_CCH);
    SetDlgItemTextW(hDlg, id, text);
}

// An edit into a field of the record: the rest of the field zeroed, no terminator when the
// text fills it. TRUE when the text is not empty.
BOOL TakeField(HWND hDlg, int id, WCHAR* field)
{
    WCHAR text[kJBA_TEXT_CCH + 1] = {};
    GetDlgItemTextW(hDlg, id, text, kJBA_TEXT_CCH + 1);
    WstrNCopy(field, text, kJBA_TEXT_CCH);
    return text[0] != 0;
}

} // namespace

TVOJBADlg::TVOJBADlg(TVOPrinterConfiguration* pConfig, DEVMODEEX* pDM)
{
    m_iResourceID = IDD_JBA;
    m_pConfig = pConfig;
    m_pDM = pDM;
    m_pPermissionIDs = kJBALockList;
}

BOOL TVOJBADlg::OnInitDialog()
{
    QLM_TRACE_SCOPE(TEXT("TVOJBADlg::OnInitDialog"), g_bTraceTVOAcct);
    HWND hwndEditAcct = GetDlgItem(m_hWnd, IDC_JBA_USER);
    HWND hwndEditSub = GetDlgItem(m_hWnd, IDC_JBA_ACCOUNT);
    ASSERT(hwndEditAcct);
    ASSERT(hwndEditSub);
    SendMessageW(hwndEditAcct, EM_LIMITTEXT, kJBA_TEXT_CCH, 0);
    SendMessageW(hwndEditSub, EM_LIMITTEXT, kJBA_TEXT_CCH, 0);
    if (!m_pDM) {
        ASSERT(m_pDM);
        return 1;
    }
    // Texts that are not to be remembered are not shown either.
    const BOOL bRemember = m_pDM->dmxRememberAccount != 0;
    ShowField(m_hWnd, IDC_JBA_USER, bRemember ? m_pDM->dmxJBAUser : nullptr);
    ShowField(m_hWnd, IDC_JBA_ACCOUNT, bRemember ? m_pDM->dmxJBAAcct : nullptr);
    QLMFinishAccountingDialog(this, m_bHideRemember);
    return 1;
}

void TVOJBADlg::OnOK()
{
    QLM_TRACE_SCOPE(TEXT("TVOJBADlg::OnOK"), g_bTraceTVOAcct);
    if (m_pDM) {
        const BOOL bUser = TakeField(m_hWnd, IDC_JBA_USER, m_pDM->dmxJBAUser);
        const BOOL bAccount = TakeField(m_hWnd, IDC_JBA_ACCOUNT, m_pDM->dmxJBAAcct);
        // Nothing to remember when nothing was given.
        m_pDM->dmxRememberAccount =
            IsDlgButtonChecked(m_hWnd, IDC_ACCOUNT_REMEMBER) == BST_CHECKED && (bUser || bAccount)
                ? 1
                : 0;
    }
    setModified(TRUE);
    EndDialog(m_hWnd, 1);
}

INT_PTR TVOJBADlg::DialogProc(UINT message, WPARAM wParam, LPARAM lParam)
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
        EndDialog(m_hWnd, 2);
        return 0;
    case WM_HELP:
        OnHelp(m_hWnd, wParam, reinterpret_cast<const HELPINFO*>(lParam));
        return 0;
    default:
        return 0;
    }
}
