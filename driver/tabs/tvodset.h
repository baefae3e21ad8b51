// TVODeviceTab: what the driver cannot know by itself, or shows of what it learned from the
// printer: the display units, whether to ask the printer when a sheet opens (and asking it now),
// accounting, the firmware level, the finisher, the rolls and the job's owner. On a port that
// can be asked (dmxBiDi) the firmware and finisher are the printer's answers and read-only;
// otherwise the user sets them.
#pragma once

#include "../framework/tvotab.h"

class TVODeviceTab : public TVOTab
{
public:
    // bMandatoryAccounting makes accounting identifiers compulsory; the sheet passes FALSE.
    TVODeviceTab(TVODialogInfo* lpdi, TVOPrinterConfiguration* pConfig, BOOL bMandatoryAccounting);
    INT_PTR DialogProc(UINT message, WPARAM wParam, LPARAM lParam) override;
    void SetControlsFromDM() override;
    BOOL OnSetActive() override;

    BOOL OnInitDialog();
    void OnCommand(int id, int code);
    // PSN_SETACTIVE looks at the port again first; every notice then goes to the tab base.
    LRESULT OnNotify(HWND hWnd, WPARAM wParam, NMHDR* pnmhdr);
    // The tab's fields back to their start; the port's state dmxBiDi stays.
    void SetPrinterDefaults();

    void SetDisplayUnits();
    void SetAccountingControls();
    void SetBiDi();
    void SetFirmwareRev();
    void SetFinisherList();
    void SetOwnerControls();
    void OnUseLoginName();
    void OnUserSpecifiedOwner();
    void SetAccounting(BOOL bEnable);
    void OnFirmwareCommand(int code);
    void OnFinisherCommand(int code);
    void OnUnits(int code);
    void SetDispUnits();
    void RefreshSettings();
    void NewRefresh();
    void DoRollConfigDlg();
    void DoAccountDlg();

    // Both identifiers are there: the texts from firmware level 6 on, the numbers below.
    BOOL AccountingIdsComplete() const;
    // The finisher list's row of dmxFinisherType: any finisher in the record is the row
    // behind the file row, or the first row when the list has none.
    int FindFinisherRow();
    // The printer handle of the sheet.
    HANDLE PrinterHandle() const;

    BOOL m_bMandatoryAccounting;
    DWORD m_iSavedAccountingMode;
};

// The characters of dmxOwner: a name of up to 63 and its terminator.
constexpr int kOWNER_CCH = 64;
