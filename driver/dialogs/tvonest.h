// TVOPlotNestDlg: the margin between plots that the printer nests side by side. The record
// holds it in whole millimetres whatever the display units. It edits a copy of the record,
// which reaches the caller's record only on OK.
#pragma once

#include "../framework/tvodialog.h"

class TVOPlotNestDlg : public TVOWorkingCopyDialog
{
public:
    TVOPlotNestDlg(TVOPrinterConfiguration* pConfig, DEVMODEEX* pDM);

    void SetControlsFromDM() override;
    BOOL OnInitDialog() override;
    void OnCommand(int id, int code) override;
    LRESULT OnNotify(const NMHDR* pnmhdr) override;
    // 0 when the margin is in range, else the field, after the warning.
    int EnteredValuesAreValid();
    void UpdateDMFromControls();

private:
    // The largest margin in the display units: 1 inch or 25 millimetres.
    TVOFixed Maximum() const;
};
