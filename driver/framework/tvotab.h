// TVOTab: the base of the property-sheet tabs. All tabs of a sheet edit one record, the
// dialog-info record's lpDM; a tab tells the sheet of a change (Apply lights), shows the record
// anew when it becomes active, and on OK or Apply carries the record to the caller and, in the
// device sheet, into the printer's stored settings, telling the other tabs.
#pragma once

#include "tvodialog.h"
#include "tvodialoginfo.h"

class TVOTab : public TVODialog
{
public:
    TVOTab(TVODialogInfo* lpdi, TVOPrinterConfiguration* pConfig, int resourceId);
    ~TVOTab() override;

    void OnDMChange() override;
    virtual BOOL OnSetActive();

    // Lights (or clears) the sheet's Apply button, while changes are tracked.
    void SetModified(BOOL bModified);
    // SetControlsFromDM with change tracking off: the handlers that the filling sets off see
    // the record's own values, which are no change of the user's.
    void RefillControls();
    // Carries the edited record out of the tabs. The argument is not read.
    void BroadcastDMChange(BOOL bApply);
    // PSN_RESET, PSN_APPLY and PSN_SETACTIVE; anything else goes to DefWindowProcW.
    LRESULT OnNotify(HWND hWnd, WPARAM wParam, NMHDR* pnmhdr);

    HBITMAP m_hLogoBitmap = nullptr;
    TVODialogInfo* m_pDialogInfo = nullptr;
    BOOL m_bTrackChanges = 1;
};

// The window procedure of every page: the page's lParam is the tab object.
extern "C" QLM_PROC_EXPORT INT_PTR CALLBACK TVOTabProcedure(HWND hWnd, UINT message, WPARAM wParam,
                                                            LPARAM lParam);

// The message by which one tab tells another that the record changed.
#ifndef WM_DEVMODECHANGE
#define WM_DEVMODECHANGE 0x001B
#endif
