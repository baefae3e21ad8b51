// TVOStampDlg: the raster stamp that the printer itself puts on a job: which stamp, its scale,
// its layer, its place and its rotation. The printer's stamps come with a refresh; a name can
// also be typed. It edits a copy of the record, which reaches the caller's record only on OK.
#pragma once

#include "../framework/tvodialog.h"

class TVOStampDlg : public TVOWorkingCopyDialog
{
public:
    TVOStampDlg(TVOPrinterConfiguration* pConfig, DEVMODEEX* pDM);

    void SetControlsFromDM() override;
    BOOL OnInitDialog() override;
    void OnCommand(int id, int code) override;
    LRESULT OnNotify(const NMHDR* pnmhdr) override;
    void OnDestroy() override;
    void SetPrinterDefaults();
    void UpdateDMFromControls();
    // 0 when every field is in range, else the first bad field, after its warning. The
    // offsets are tested whether or not their fields are enabled.
    int EnteredValuesAreValid();
    void UpdatePlacementButtonX();
    void UpdatePlacementButtonY();
};
