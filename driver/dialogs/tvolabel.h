// TVOLabelDlg: the text label a job prints on the plot: its text with special fields, its font,
// size, density and angle, and where it stands. It edits a copy of the record, which reaches
// the caller's record only on OK.
#pragma once

#include "../framework/tvodialog.h"

constexpr int kLABEL_TEXT_CCH = 1049; // the record's field, with its terminator

class TVOLabelDlg : public TVOWorkingCopyDialog
{
public:
    TVOLabelDlg(TVOPrinterConfiguration* pConfig, DEVMODEEX* pDM);

    void SetControlsFromDM() override;
    BOOL OnInitDialog() override;
    void OnCommand(int id, int code) override;
    LRESULT OnNotify(const NMHDR* pnmhdr) override;
    void OnDestroy() override;
    void SetPrinterDefaults();
    void UpdateDMFromControls();
    // 0 when every field is in range, else the first bad field, after its warning.
    int EnteredValuesAreValid();
    void UpdatePlacementButtonX();
    void UpdatePlacementButtonY();
    // The "Marlett" font that draws the special-field button's arrow.
    void SetLabelSpecialCharacter();
    // The special-field menu beside its button; a choice appends its field to the text.
    void OnSpecialLabel();
    // Appends at the end of the text, whatever the caret; a text that would not fit beeps and
    // changes nothing.
    void AppendToLabel(const WCHAR* text);
    void AppendToLabel(UINT stringId);

    HFONT m_hfn = nullptr;
};
