// TVOCustDlg: the custom paper's size and category, and which paper families the paper tab's
// list offers. Opened from the paper list's action row; edits the record it is given in place.
// Its button opens the printer's user-defined papers.
#pragma once

#include "../framework/tvodialog.h"

class TVOCustDlg : public TVODialog
{
public:
    TVOCustDlg(TVOPrinterConfiguration* pConfig, DEVMODEEX* pDM);
    INT_PTR DialogProc(UINT message, WPARAM wParam, LPARAM lParam) override;
    void SetControlsFromDM() override;
    void OnCommand(int id, int code);
    LRESULT OnNotify(NMHDR* pnmhdr);
    // 0 when width and length are in range, else the first bad field after its warning.
    int EnteredValuesAreValid();
    void UpdateDMFromControls();

    // Enables the user-defined papers button.
    BOOL m_bCustomMediaAllowed;

private:
    BOOL OnInitDialog();
    TVOFixed MinWidth() const;
    TVOFixed MaxWidth() const;
};
