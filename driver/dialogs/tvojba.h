// TVOJBADlg: the job-based accounting identifiers of printers from firmware level 6 on, a user
// and an account text of up to 32 characters each. It edits the record it is given; a check
// box says whether the texts are kept for later jobs.
#pragma once

#include "../framework/tvodialog.h"

// Characters of dmxJBAUser and dmxJBAAcct; a text that fills a field has no terminator.
constexpr int kJBA_TEXT_CCH = 32;

class TVOJBADlg : public TVODialog
{
public:
    TVOJBADlg(TVOPrinterConfiguration* pConfig, DEVMODEEX* pDM);
    INT_PTR DialogProc(UINT message, WPARAM wParam, LPARAM lParam) override;
    BOOL OnInitDialog();
    // Stores both texts as typed; any text is accepted, an empty one too.
    void OnOK();
    // Before doModal: the remember check box is disabled and hidden.
    void SetHideRemember() { m_bHideRemember = 1; }

    BOOL m_bHideRemember = 0;
};
