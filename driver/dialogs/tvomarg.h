// TVOUnprintableDlg: the four unprintable margins of the sheet and the placement of the image,
// opened from the paper tab. It edits the record it is given in place; a distance is held in
// inches and shown in the record's display units.
#pragma once

#include "../framework/tvodialog.h"

class TVOUnprintableDlg : public TVODialog
{
public:
    TVOUnprintableDlg(TVOPrinterConfiguration* pConfig, DEVMODEEX* pDM);
    INT_PTR DialogProc(UINT message, WPARAM wParam, LPARAM lParam) override;
    void SetControlsFromDM() override;
    BOOL OnInitDialog();
    void OnCommand(int id, int code);
    LRESULT OnNotify(NMHDR* pnmhdr);
    // 0 when all six fields are in range, else the first bad field after its warning.
    int EnteredValuesAreValid();
    void UpdateDMFromControls();
    void SetPrinterDefaults();
    // The field's value against the limits; its warning names labelId. 0 or fieldId.
    int CheckDistance(int fieldId, int labelId);
};
