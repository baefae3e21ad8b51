// TVOPlotNestDlg: the margin between plots that the printer nests side by side. The record
// holds it in whole millimetres whatever the display units. It edits a copy of the record,
// which reaches the caller's record only on OK.
#pragma once

#include "../ui/tvodialog.h"

class TVOPlotNestDlg : public TVOWorkingCopyDialog
{
public:
    TVOPlotNestDlg(TVOPrinterConfiguration* pConfig, DEVMODEEX* pDM);

    INT_PTR DialogProc(UINT message, WPARAM wParam, LPARAM lParam) override;
    void SetControlsFromDM() override;
    BOOL OnInitDialog();
    void OnCommand(int id, int code);
    LRESULT OnNotify(const NMHDR* pnmhdr);
    // 0 when the margin is in range, else the field, after the warning.
    int EnteredValuesAreValid();
    void UpdateDMFromControls();

private:
    // The largest margin in the display units: 1 inch or 25 millimetres.
    TVOFixed Maximum() const;
};
