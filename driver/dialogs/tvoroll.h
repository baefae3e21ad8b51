// TVORollConfigDlg: what each roll and the sheet feed hold. On a printer that answers
// (dmxBiDi) it shows what the refresh found, read-only, with each roll's status; otherwise the
// user says what is loaded. It lays itself out to the number of rolls: the rows behind the
// last roll vanish and the sheet feed row, the buttons and the dialog's bottom move up.
#pragma once

#include "../framework/tvodialog.h"

class TVORollConfigDlg : public TVODialog
{
public:
    // On a port that cannot answer, the record's roll count becomes the model's.
    TVORollConfigDlg(TVOPrinterConfiguration* pConfig, DEVMODEEX* pDM);
    ~TVORollConfigDlg() override;
    INT_PTR DialogProc(UINT message, WPARAM wParam, LPARAM lParam) override;
    void SetControlsFromDM() override;
    // Puts control srcId under control destId, gap pixels below it, at its left edge.
    void MoveControlBelow(int srcId, int destId, int gap);
    void SetPrinterDefaults();
    void UpdateDMFromControls();
};

// Rolls of a model whose printer cannot be asked.
WORD QLMModelRollCount(DWORD model);
