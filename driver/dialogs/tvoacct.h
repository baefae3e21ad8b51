// TVOAccountDlg: the accounting identifiers of printers with older firmware, an account from 1
// to 999999 and a sub-account from 1 to 9999, typed as digits only. It edits the record it is
// given; a check box says whether the numbers are kept for later jobs.
#pragma once

#include "../framework/tvodialog.h"

class TVOAccountDlg : public TVODialog
{
public:
    TVOAccountDlg(TVOPrinterConfiguration* pConfig, DEVMODEEX* pDM);
    INT_PTR DialogProc(UINT message, WPARAM wParam, LPARAM lParam) override;
    BOOL OnInitDialog();
    // Refuses an account or a sub-account out of range, in that order; otherwise stores both.
    void OnOK();
    void OnClose();
    // Gives the two edit fields their own window procedures back.
    void OnDestroy();
    // Before doModal: the remember check box is disabled and hidden.
    void SetHideRemember() { m_bHideRemember = 1; }

    WNDPROC m_wpOrigEditProcAcct = nullptr;
    WNDPROC m_wpOrigEditProcSub = nullptr;
    BOOL m_bHideRemember = 0;
};

// The digits-only filter of the two fields; also the driver's export at ordinal 102.
extern "C" QLM_PROC_EXPORT LRESULT CALLBACK NumericEditSubclassProc(HWND hWnd, UINT message,
                                                                    WPARAM wParam, LPARAM lParam);

// What both accounting dialogs do after their fields are filled: the remember box set (and
// hidden when asked), the dialog topmost, the controls locked without permission.
void QLMFinishAccountingDialog(TVODialog* pDlg, BOOL bHideRemember);
