// TVOFinishDlg: the finishing program of a job. It lists the programs of the finisher that the
// record describes, tells what the chosen one does, offers what it can do as check boxes, and
// takes the output bin and the fold option. It works on values of its own until OK.
#pragma once

#include "../framework/tvodialog.h"

constexpr int kFINISH_DESCRIPTION_CCH = 1024;

class TVOFinishDlg : public TVODialog
{
public:
    TVOFinishDlg(TVOPrinterConfiguration* pConfig, DEVMODEEX* pDM);
    ~TVOFinishDlg() override;

    INT_PTR DialogProc(UINT message, WPARAM wParam, LPARAM lParam) override;
    void SetControlsFromDM() override;
    BOOL OnInitDialog();
    void OnCommand(int id, int code);
    void SetPrinterDefaults();

    void setDialogTitle();
    void SetupProgram();
    void SetupDescription();
    void SetupCheckBoxes();
    void SetupBin();

    // The working values, taken from the record by the constructor and written back on OK.
    WORD m_wProgram = 0;
    WORD m_wBin = 0;
    DWORD m_dwFoldOption = 0;
    DWORD m_dwCrossOff = 0;
    DWORD m_dwMarginFlag = 0;
    DWORD m_dwPunchFlag = 0;
    DWORD m_dwTabFlag = 0;
    DWORD m_dwOption = 0;
    WCHAR* m_pszDescription = nullptr;

private:
    // The program that the working value names, or the block's first when it names none.
    const TVOFinisherProgram& Program() const;
    // Whether the finisher's version is exactly "0.0": its FOLD_ names are translated and it
    // can neither cross fold nor leave a margin by the user's choice.
    BOOL IsVersionZero() const;
    void UpdateDMFromControls();
};
